#pragma once

#include "distribution/files/fileoutcome.h"
#include "distribution/plan/plannedpictures.h"
#include "distribution/rules/orderdetail.h"
#include "tasks/stopflag.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

#include <atomic>
#include <functional>
#include <memory>

/// How far a task of many steps is; written by the task's thread, read by any.
struct StepProgress
{
    std::atomic<int> done{0};
    std::atomic<int> total{0};
};

/// One file operation of a run, as plain values: what a task on the pool is given.
struct DistributionTask
{
    QString type;         ///< one of tasktype
    QString subType;      ///< of photorole for "拷贝照片", of imagetype for "存储照片"
    QString sourcePath;   ///< as the reply writes it
    QString targetFolder; ///< as this machine writes it; what the file goes into, or below
    QString imgName;      ///< as the reply writes it: made safe where it becomes a name on disk
    /// Handed back with the result; of all files that have to be there before the service is told
    /// that the photo was downloaded. Empty when nobody is told of this file.
    QString imageId;
    QByteArray image;      ///< "存储照片": an image as it came
    QString data;          ///< "存储照片": an image as a data URL, or the text of a text file
    OrderDetailPtr detail; ///< "创建产品" and "生成Html"; targetFolder is then the order's folder
    PlannedPictures pictures;               ///< "生成Html": those that the sheet shows
    QString namingRule;                     ///< "创建产品": the rule as JSON text
    std::shared_ptr<StepProgress> progress; ///< "创建产品": photos copied; may be null
    StopFlag stopped; ///< what consists of several steps begins none once it is up
};

/// How one of them ended; what FJDataThread reports.
struct TaskResult
{
    bool success = false;
    QString type;               ///< the task's
    QString copyFile;           ///< the file that was written, or was to be
    QString imgData;            ///< the task's imageId
    QString errmsg;             ///< lines; may hold some although the task succeeded in the rest
    QVector<FileOutcome> files; ///< that it was to write
    QString missing;            ///< the source, when it is not there
};
Q_DECLARE_METATYPE(TaskResult)

/// Does what \a task says; blocks, for worker threads.
using PerformTask = std::function<TaskResult(const DistributionTask &task)>;

namespace tasktype {
inline const QString downloadRetouched = QStringLiteral("下载精修片");
inline const QString downloadOriginals = QStringLiteral("下载原始档");
inline const QString copyPhoto = QStringLiteral("拷贝照片");
inline const QString storePhoto = QStringLiteral("存储照片");
inline const QString createProducts = QStringLiteral("创建产品");
inline const QString makeSheet = QStringLiteral("生成Html");
inline const QString deliverOriginals = QStringLiteral("下载照片交付-拷贝原始档");
inline const QString deliverPhotos = QStringLiteral("下载照片交付-拷贝原片");
} // namespace tasktype

/// What is stored though no photo of it lies on the share.
namespace imagetype {
inline const QString barcode = QStringLiteral("条形码");
inline const QString delivery = QStringLiteral("快递信息"); ///< a text
inline const QString crop = QStringLiteral("裁剪");
inline const QString marked = QStringLiteral("标记");
} // namespace imagetype

namespace photorole {
inline const QString retouched = QStringLiteral("精修成品");
inline const QString thumbnail = QStringLiteral("成品缩略图");
inline const QString finishedOnly = QStringLiteral("只要成品");
inline const QString finished = QStringLiteral("成品");
inline const QString rejected = QStringLiteral("汰片");
inline const QString archive = QStringLiteral("入底");
} // namespace photorole
