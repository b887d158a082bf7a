#pragma once

#include "distribution/files/fileoutcome.h"
#include "distribution/plan/plannedpictures.h"
#include "distribution/rules/orderdetail.h"
#include "distribution/rules/photorole.h"
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

/// What a task does.
enum class TaskType {
    DownloadRetouched,
    DownloadOriginals,
    CopyPhoto,
    StorePhoto,
    CreateProducts,
    MakeSheet,
    DeliverOriginals,
    DeliverPhotos,
};

/// As results and the log name it.
QString taskTypeText(TaskType type);

/// What is stored though no photo of it lies on the share.
enum class StoredImage {
    Barcode,
    Delivery, ///< a text
    Crop,
    Marked,
};

/// One file operation of a run, as plain values: what a task on the pool is given.
struct DistributionTask
{
    TaskType type = TaskType::CopyPhoto;
    PhotoRole role = PhotoRole::Finished;      ///< CopyPhoto: which the photo goes into
    StoredImage stored = StoredImage::Barcode; ///< StorePhoto
    QString sourcePath;                        ///< as the reply writes it
    QString targetFolder; ///< as this machine writes it; what the file goes into, or below
    QString imgName;      ///< as the reply writes it: made safe where it becomes a name on disk
    /// Handed back with the result; of all files that have to be there before the service is told
    /// that the photo was downloaded. Empty when nobody is told of this file.
    QString imageId;
    QByteArray image;      ///< StorePhoto: an image as it came
    QString data;          ///< StorePhoto: an image as a data URL, or the text of a text file
    OrderDetailPtr detail; ///< CreateProducts, MakeSheet: targetFolder is then the order's folder
    PlannedPictures pictures;               ///< MakeSheet: those that the sheet shows
    QString namingRule;                     ///< CreateProducts: the rule as JSON text
    std::shared_ptr<StepProgress> progress; ///< CreateProducts: photos copied; may be null
    StopFlag stopped; ///< what consists of several steps begins none once it is up
};

/// How one of them ended; what FJDataThread reports.
struct TaskResult
{
    bool success = false;
    TaskType type = TaskType::CopyPhoto; ///< the task's
    QString copyFile;                    ///< the file that was written, or was to be
    QString imgData;                     ///< the task's imageId
    QString errmsg;             ///< lines; may hold some although the task succeeded in the rest
    QVector<FileOutcome> files; ///< that it was to write
    QString missing;            ///< the source, when it is not there
};
Q_DECLARE_METATYPE(TaskResult)

/// Does what \a task says; blocks, for worker threads.
using PerformTask = std::function<TaskResult(const DistributionTask &task)>;
