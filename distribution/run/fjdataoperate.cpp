#include "distribution/run/fjdataoperate.h"

#include "distribution/files/photowriting.h"
#include "distribution/files/rawfiles.h"
#include "distribution/naming/foldernames.h"
#include "distribution/plan/distributionplan.h"
#include "distribution/plan/productfolders.h"
#include "distribution/sheet/productionsheet.h"
#include "files/filewriting.h"
#include "files/paths.h"
#include "files/safename.h"
#include "platform/fileaccess.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>

namespace {

/// Of a task that has one file at most to write.
TaskResult resultOf(const DistributionTask &task, const FileOutcome &file,
                    const QString &error = {})
{
    return {error.isEmpty(), task.type, file.target, task.imageId, error, {file}, {}};
}

TaskResult made(const DistributionTask &task, const QString &target)
{
    return resultOf(task, photowriting::madeFile(target));
}

TaskResult failed(const DistributionTask &task, const QString &target, const QString &error)
{
    FileOutcome file;
    file.target = target;
    return resultOf(task, file, error);
}

TaskResult noFolder(const DistributionTask &task, const QString &file)
{
    return failed(task, file, task.imgName + QStringLiteral(" 路径创建失败/连接不上服务端"));
}

/// Where the photo of \a task goes in \a folder.
QString targetIn(const QString &folder, const DistributionTask &task)
{
    return joinLocalPath(folder, safeFileName(task.imgName));
}

/// How one kind of copying words its failures, behind the file's name.
struct CopyTexts
{
    QString missing;
    QString failed;
};

using CopyOperation = photowriting::CopyEnding (*)(FileOutcome *file);

photowriting::CopyEnding copyAsItIs(FileOutcome *file)
{
    return photowriting::copyOnto(file) ? photowriting::CopyEnding::Copied
                                        : photowriting::CopyEnding::Failed;
}

/// Copies one file into \a folder, which is made when missing.
TaskResult copyInto(const DistributionTask &task, const QString &source, const QString &folder,
                    const CopyTexts &texts, CopyOperation copy = copyAsItIs)
{
    FileOutcome file;
    file.target = targetIn(folder, task);
    file.source = source;
    const QString flaw = flawOfSource(source);
    if (!flaw.isEmpty())
        return resultOf(task, file, task.imgName + flaw);
    if (!QFileInfo(source).isFile()) {
        TaskResult result = resultOf(task, file, task.imgName + texts.missing);
        result.missing = source;
        return result;
    }
    if (!photowriting::ensureFolder(folder))
        return noFolder(task, file.target);
    if (platform::isSameFile(source, file.target)) {
        // Turning it would overwrite the only original.
        file.ending = FileOutcome::Ending::IsSource;
        TaskResult result = resultOf(task, file);
        result.errmsg = task.imgName + QStringLiteral("目标就是源文件，已跳过");
        return result;
    }
    const photowriting::CopyEnding ending = copy(&file);
    if (ending == photowriting::CopyEnding::Failed)
        return resultOf(task, file, task.imgName + texts.failed);
    TaskResult result = resultOf(task, file);
    if (ending == photowriting::CopyEnding::CopiedIncomplete)
        result.errmsg = task.imgName + QStringLiteral("图片不完整，已原样拷贝");
    return result;
}

TaskResult download(const DistributionTask &task)
{
    return copyInto(task, sourceOnDisk(task.sourcePath), task.targetFolder,
                    {QStringLiteral("照片不存在"), QStringLiteral("复制失败")});
}

TaskResult copyThumbnail(const DistributionTask &task, const QString &thumbnail)
{
    return copyInto(task, thumbnail, joinLocalPath(task.targetFolder, foldernames::thumbnails),
                    {QStringLiteral("缩略图不存在"), QStringLiteral("缩略图复制失败")});
}

TaskResult copyPhotoByRole(const DistributionTask &task)
{
    return copyInto(task, sourceOnDisk(task.sourcePath),
                    joinLocalPath(task.targetFolder, foldernames::roleFolder(task.role)),
                    {QStringLiteral("照片不存在"), QStringLiteral("照片复制失败")});
}

/// The photo and its thumbnail. Each is copied even if the other cannot be.
TaskResult copyPhotoAndThumbnail(const DistributionTask &task)
{
    TaskResult photo = copyPhotoByRole(task);
    const TaskResult thumbnail =
        copyThumbnail(task, photowriting::thumbnailOf(sourceOnDisk(task.sourcePath)));
    photo.files += thumbnail.files;
    if (thumbnail.success)
        return photo;
    photo.errmsg =
        photo.success ? thumbnail.errmsg : photo.errmsg + QLatin1Char('\n') + thumbnail.errmsg;
    photo.success = false;
    return photo;
}

TaskResult copyPhoto(const DistributionTask &task)
{
    switch (task.role) {
    case PhotoRole::Thumbnail:
        return copyThumbnail(task, sourceOnDisk(task.sourcePath));
    case PhotoRole::FinishedOnly:
        return copyPhotoAndThumbnail(task);
    case PhotoRole::Retouched:
    case PhotoRole::Finished:
    case PhotoRole::Rejected:
    case PhotoRole::Archive:
        return copyPhotoByRole(task);
    }
    Q_UNREACHABLE();
}

TaskResult storeText(const DistributionTask &task, const QString &target)
{
    QString text = task.data;
#ifdef Q_OS_WIN
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"))
        .replace(QLatin1Char('\n'), QLatin1String("\r\n"));
#endif
    const bool saved = writeBytes(target, text.toUtf8());
    qDebug().noquote() << (saved ? QStringLiteral("文件保存成功:") : QStringLiteral("保存失败:"))
                       << target;
    return saved ? made(task, target)
                 : failed(task, target, QStringLiteral("保存文件失败：") + target);
}

/// The bytes of an image in a data URL; empty when it is none.
QByteArray bytesOfDataUrl(const QString &dataUrl)
{
    static const QString marker = QStringLiteral("base64,");
    const int at = dataUrl.indexOf(marker);
    if (at < 0 || !dataUrl.startsWith(QLatin1String("data:image")))
        return {};
    return QByteArray::fromBase64(dataUrl.mid(at + marker.size()).toLatin1());
}

TaskResult storePhoto(const DistributionTask &task)
{
    const QString target = targetIn(task.targetFolder, task);
    if (!photowriting::ensureFolder(task.targetFolder))
        return noFolder(task, target);
    if (task.stored == StoredImage::Delivery)
        return storeText(task, target);
    QByteArray bytes = task.image.isEmpty() ? bytesOfDataUrl(task.data) : task.image;
    if (task.image.isEmpty() && task.data.isEmpty()) {
        const QString source = sourceOnDisk(task.sourcePath);
        QFile file(source);
        if (source.isEmpty() || !flawOfSource(source).isEmpty() || !file.open(QIODevice::ReadOnly))
            return failed(task, target, task.imgName + QStringLiteral("文件不存在"));
        bytes = file.readAll();
    }
    switch (photowriting::storeImage(bytes, target)) {
    case photowriting::StoreOutcome::Stored:
        return made(task, target);
    case photowriting::StoreOutcome::NoImage:
        return failed(task, target, task.imgName + QStringLiteral("无法从数据创建图像"));
    case photowriting::StoreOutcome::NotSaved:
        break;
    }
    return failed(task, target, QStringLiteral("保存文件失败：") + target);
}

TaskResult createProducts(const DistributionTask &task)
{
    const OrderDetail nothing;
    QVector<FileOutcome> files;
    const QStringList errors = createProductFolders(
        task.detail ? *task.detail : nothing, task.namingRule, task.targetFolder,
        [&task] { return task.stopped.isRaised(); }, task.progress.get(), &files);
    // The lines name what they are about.
    return {errors.isEmpty(),
            task.type,
            errors.isEmpty() ? task.targetFolder : QString(),
            task.imageId,
            errors.join(QLatin1Char('\n')),
            files,
            {}};
}

TaskResult makeSheet(const DistributionTask &task)
{
    const QString target = joinLocalPath(task.targetFolder, foldernames::sheetFile);
    const OrderDetail nothing;
    const QString error = printProductionSheet(task.detail ? *task.detail : nothing,
                                               task.targetFolder, task.pictures);
    return error.isEmpty() ? made(task, target) : failed(task, target, error);
}

TaskResult deliver(const DistributionTask &task, CopyOperation copy)
{
    return copyInto(task, sourceOnDisk(task.sourcePath), task.targetFolder,
                    {QStringLiteral(" 源文件不存在"), QStringLiteral(" 拷贝失败")}, copy);
}

TaskResult deliverUpright(const DistributionTask &task)
{
    const QString source = sourceOnDisk(task.sourcePath);
    if (!QFileInfo(source).isFile())
        qDebug().noquote() << QStringLiteral("源文件不存在:") << source;
    return deliver(task, photowriting::copyUprightOnto);
}

} // namespace

TaskResult FJDataOperate::perform(const DistributionTask &task)
{
    switch (task.type) {
    case TaskType::DownloadRetouched:
    case TaskType::DownloadOriginals:
        return download(task);
    case TaskType::CopyPhoto:
        return copyPhoto(task);
    case TaskType::StorePhoto:
        return storePhoto(task);
    case TaskType::CreateProducts:
        return createProducts(task);
    case TaskType::MakeSheet:
        return makeSheet(task);
    case TaskType::DeliverOriginals:
        return deliver(task, copyAsItIs);
    case TaskType::DeliverPhotos:
        return deliverUpright(task);
    }
    Q_UNREACHABLE();
}
