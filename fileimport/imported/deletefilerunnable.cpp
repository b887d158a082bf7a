#include "fileimport/imported/deletefilerunnable.h"

#include "platform/fileaccess.h"
#include "platform/pathform.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>

DeleteFileRunnable::DeleteFileRunnable(PhotoEntry photo, PhotoPlace place, StopFlag stopped,
                                       RemoveFunction remove)
    : photo_(std::move(photo))
    , place_(std::move(place))
    , stopped_(std::move(stopped))
    , remove_(std::move(remove))
{
    // It gets no events, and is deleted by whichever thread lets go of it last.
    moveToThread(nullptr);
}

DeleteFileRunnable::~DeleteFileRunnable()
{
    qDebug() << "DeleteFileRunnable 析构";
}

void DeleteFileRunnable::perform()
{
    emit deleteFinished(process());
}

void DeleteFileRunnable::failed(const QString &problem)
{
    emit deleteFinished({false, problem, photo_});
}

DeleteFileResult DeleteFileRunnable::process() const
{
    if (stopped_.isRaised())
        return {false, QStringLiteral("任务已中止，不执行删除"), photo_};
    QStringList problems;
    if (photo_.localPath.isEmpty()) {
        problems.append(photo_.imgName + QStringLiteral(" 文件路径为空"));
    } else if (!leadsToPhoto(photo_.localPath)) {
        problems.append(photo_.imgName + QStringLiteral(" 的路径错误"));
    } else {
        problems.append(removeOne(platform::toLocalPath(photo_.localPath), photo_.imgName,
                                  QStringLiteral(" 删除失败:")));
    }
    const bool success = problems.constFirst().isEmpty();
    for (QString path : photo_.variants) {
        path.replace(QLatin1Char('\\'), QLatin1Char('/'));
        if (leadsToPhoto(path))
            problems.append(removeOne(path, path, QStringLiteral(" 删除失败 ")));
        else
            problems.append(path + QStringLiteral(" 的路径错误"));
    }
    problems.removeAll(QString());
    return {success, problems.join(QLatin1Char('\n')), photo_, success || isGone()};
}

/// A share that went away shows no file either.
bool DeleteFileRunnable::isGone() const
{
    const QFileInfo file(platform::toLocalPath(photo_.localPath));
    return leadsToPhoto(photo_.localPath) && !file.exists() && !file.isSymLink() &&
           QFileInfo(file.path()).isDir();
}

bool DeleteFileRunnable::leadsToPhoto(const QString &path) const
{
    return place_.holds(path) && !QFileInfo(platform::toLocalPath(path)).isDir();
}

QString DeleteFileRunnable::removeOne(const QString &path, const QString &name,
                                      const QString &failedText) const
{
    const QFileInfo file(path);
    if (!file.exists() && !file.isSymLink())
        return name + QStringLiteral(" 文件不存在");
    if (!platform::mayBeRemoved(path))
        return name + QStringLiteral(" 没有删除权限");
    QString error;
    if (!remove_(path, &error)) {
        qDebug() << "文件删除失败:" << path << "错误:" << error;
        return name + failedText + error;
    }
    qDebug() << "文件删除成功:" << path;
    return {};
}

bool DeleteFileRunnable::removeFile(const QString &path, QString *error)
{
    QFile file(path);
    if (file.remove())
        return true;
    *error = file.errorString();
    return false;
}
