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

TaskResult succeeded(const DistributionTask &task, const QString &file)
{
    return {true, task.type, file, task.imageId, {}, {}, {}};
}

TaskResult failed(const DistributionTask &task, const QString &file, const QString &error)
{
    return {false, task.type, file, task.imageId, error, {}, {}};
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

using CopyOperation = photowriting::CopyEnding (*)(const QString &source, const QString &target);

photowriting::CopyEnding copyAsItIs(const QString &source, const QString &target)
{
    return photowriting::copyOnto(source, target) ? photowriting::CopyEnding::Copied
                                                  : photowriting::CopyEnding::Failed;
}

/// Copies one file into \a folder, which is made when missing.
TaskResult copyInto(const DistributionTask &task, const QString &source, const QString &folder,
                    const CopyTexts &texts, CopyOperation copy = copyAsItIs)
{
    const QString target = targetIn(folder, task);
    const QString flaw = flawOfSource(source);
    if (!flaw.isEmpty())
        return failed(task, target, task.imgName + flaw);
    if (!QFileInfo(source).isFile()) {
        TaskResult result = failed(task, target, task.imgName + texts.missing);
        result.missing = source;
        return result;
    }
    if (!photowriting::ensureFolder(folder))
        return noFolder(task, target);
    TaskResult result = succeeded(task, target);
    if (platform::isSameFile(source, target)) {
        // Turning it would overwrite the only original.
        result.errmsg = task.imgName + QStringLiteral("目标就是源文件，已跳过");
        return result;
    }
    switch (copy(source, target)) {
    case photowriting::CopyEnding::Copied:
        return result;
    case photowriting::CopyEnding::CopiedIncomplete:
        result.errmsg = task.imgName + QStringLiteral("图片不完整，已原样拷贝");
        return result;
    case photowriting::CopyEnding::Failed:
        break;
    }
    return failed(task, target, task.imgName + texts.failed);
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
                    joinLocalPath(task.targetFolder, roleFolder(task.subType)),
                    {QStringLiteral("照片不存在"), QStringLiteral("照片复制失败")});
}

/// The photo and its thumbnail. Each is copied even if the other cannot be.
TaskResult copyPhotoAndThumbnail(const DistributionTask &task)
{
    TaskResult photo = copyPhotoByRole(task);
    const TaskResult thumbnail =
        copyThumbnail(task, photowriting::thumbnailOf(sourceOnDisk(task.sourcePath)));
    if (thumbnail.success)
        return photo;
    photo.errmsg =
        photo.success ? thumbnail.errmsg : photo.errmsg + QLatin1Char('\n') + thumbnail.errmsg;
    photo.success = false;
    return photo;
}

TaskResult copyPhoto(const DistributionTask &task)
{
    const QString &role = task.subType;
    if (role == photorole::thumbnail)
        return copyThumbnail(task, sourceOnDisk(task.sourcePath));
    if (role == photorole::finishedOnly)
        return copyPhotoAndThumbnail(task);
    static const QStringList others = {photorole::retouched, photorole::finished,
                                       photorole::rejected, photorole::archive};
    return others.contains(role) ? copyPhotoByRole(task)
                                 : failed(task, targetIn(task.targetFolder, task),
                                          task.imgName + QStringLiteral("照片复制失败"));
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
    return saved ? succeeded(task, target)
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
    if (task.subType == imagetype::delivery)
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
        return succeeded(task, target);
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
    QStringList written;
    const QStringList errors = createProductFolders(
        task.detail ? *task.detail : nothing, task.namingRule, task.targetFolder,
        [&task] { return task.stopped.isRaised(); }, task.progress.get(), &written);
    // The lines name what they are about.
    TaskResult result = errors.isEmpty() ? succeeded(task, task.targetFolder)
                                         : failed(task, QString(), errors.join(QLatin1Char('\n')));
    result.written = written;
    return result;
}

TaskResult makeSheet(const DistributionTask &task)
{
    const QString target = joinLocalPath(task.targetFolder, foldernames::sheetFile);
    const OrderDetail nothing;
    const QString error = printProductionSheet(task.detail ? *task.detail : nothing,
                                               task.targetFolder, task.pictures);
    return error.isEmpty() ? succeeded(task, target) : failed(task, target, error);
}

} // namespace

TaskResult FJDataOperate::perform(const DistributionTask &task)
{
    if (task.type == tasktype::downloadRetouched || task.type == tasktype::downloadOriginals)
        return download(task);
    if (task.type == tasktype::copyPhoto)
        return copyPhoto(task);
    if (task.type == tasktype::storePhoto)
        return storePhoto(task);
    if (task.type == tasktype::createProducts)
        return createProducts(task);
    if (task.type == tasktype::makeSheet)
        return makeSheet(task);
    const CopyTexts delivery = {QStringLiteral(" 源文件不存在"), QStringLiteral(" 拷贝失败")};
    const QString source = sourceOnDisk(task.sourcePath);
    if (task.type == tasktype::deliverOriginals)
        return copyInto(task, source, task.targetFolder, delivery);
    if (task.type == tasktype::deliverPhotos) {
        if (!QFileInfo(source).isFile())
            qDebug().noquote() << QStringLiteral("源文件不存在:") << source;
        return copyInto(task, source, task.targetFolder, delivery, photowriting::copyUprightOnto);
    }
    return {};
}
