#include "photoimport/rules/photorules.h"

#include "files/filewriting.h"
#include "files/pathgate.h"
#include "files/paths.h"
#include "files/safename.h"
#include "platform/pathform.h"

#include <QDir>
#include <QFileInfo>

namespace photorules {

namespace {

PhotoInfo job(const QString &source, const QString &importFolder, int sourceIndex)
{
    PhotoInfo photo;
    photo.fileName = source.mid(source.lastIndexOf(QLatin1Char('/')) + 1);
    photo.sourcePath = source;
    photo.importFolder = importFolder;
    photo.sourceIndex = sourceIndex;
    return photo;
}

/// One form in which the sources of an order are imported.
struct Form
{
    QString kind;
    QString targetSize;
};

QVector<Form> formsOf(const OrderInfo &order, PhotoMode photoMode)
{
    QVector<Form> forms = {{mainKind(photoMode), QString()}};
    if (photoMode != PhotoMode::Photos)
        return forms;
    const auto addVariant = [&forms](const QString &kind, int size) {
        if (size > 0)
            forms.append({kind, QString::number(size)});
    };
    addVariant(smallKind, order.smallSize);
    addVariant(middleKind, order.middleSize);
    addVariant(bigKind, order.bigSize);
    return forms;
}

QString customerOf(const OrderInfo &order)
{
    return order.mname.isEmpty() ? order.wname : order.mname;
}

QString nameOf(const OrderInfo &order)
{
    return order.orderPayForKey + QLatin1Char('-') + customerOf(order);
}

bool isReachable(const QString &wirePath)
{
    const QString path = QDir::cleanPath(platform::toLocalPath(wirePath));
    return QFileInfo(path).isDir() || QFileInfo(path).dir().exists();
}

} // namespace

PhotoMode photoModeOf(int number)
{
    return number >= 0 && number < int(PhotoMode::Unknown) ? PhotoMode(number) : PhotoMode::Unknown;
}

QString mainKind(PhotoMode photoMode)
{
    switch (photoMode) {
    case PhotoMode::Photos:
        return originalKind;
    case PhotoMode::TrialVideos:
        return trialVideoKind;
    case PhotoMode::RetouchedVideos:
    case PhotoMode::Unknown:
        return retouchedVideoKind;
    }
    Q_UNREACHABLE();
}

QVector<PhotoInfo> jobsFor(const OrderInfo &order, const QStringList &sources, PhotoMode photoMode)
{
    const QVector<Form> forms = formsOf(order, photoMode);
    const QString importFolder = importFolderOf(order);
    QVector<PhotoInfo> photos;
    photos.reserve(sources.size() * forms.size());
    for (int index = 0; index < sources.size(); ++index) {
        PhotoInfo photo = job(sources.at(index), importFolder, index);
        for (const Form &form : forms) {
            photo.kind = form.kind;
            photo.targetSize = form.targetSize;
            photos.append(photo);
        }
    }
    return photos;
}

QString compressionFailure(const QString &targetSizes)
{
    return QStringLiteral("图片压缩失败 (目标尺寸: %1)").arg(targetSizes);
}

QString toolName()
{
    return QStringLiteral("导片工具");
}

QString importFolderOf(const OrderInfo &order)
{
    return orderqueries::importFolderOf(order, order.importPath, order.importPublicPath);
}

QString targetFolderOf(const QString &importFolder, const QString &kind)
{
    return joinWirePath(importFolder, safeFileName(kind));
}

QString outputPathOf(const QString &importFolder, const PhotoInfo &photo)
{
    return joinWirePath(targetFolderOf(importFolder, photo.kind), safeFileName(photo.fileName));
}

QStringList foldersOf(const QString &importFolder, const QVector<PhotoInfo> &photos)
{
    QStringList folders = {importFolder, targetFolderOf(importFolder, originalKind),
                           joinWirePath(importFolder, QStringLiteral("原始档"))};
    for (const PhotoInfo &photo : photos) {
        if (photo.kind.isEmpty() || photo.kind == originalKind)
            continue;
        const QString folder = targetFolderOf(importFolder, photo.kind);
        if (!folders.contains(folder))
            folders.append(folder);
    }
    return folders;
}

void prepareFolders(const QStringList &folders)
{
    for (const QString &folder : folders) {
        const QString path = platform::toLocalPath(folder);
        if (makeFolder(path))
            removeStaleTemporaries(path);
    }
}

PathProblem validatePaths(const QList<OrderInfo> &orders)
{
    for (const OrderInfo &order : orders) {
        const pathgate::Refusal refusal =
            pathgate::refusalOfImport(nameOf(order), order.importPath, order.importPublicPath);
        if (refusal.isRefused())
            return {refusal.text(), refusal.path};
    }
    for (const OrderInfo &order : orders) {
        if (order.importPath.isEmpty()) {
            if (order.importPublicPath.isEmpty()) {
                return {QStringLiteral("订单 %1-%2 的导入路径和公共导入路径都为空")
                            .arg(order.orderPayForKey, customerOf(order)),
                        QString()};
            }
            if (!isReachable(order.importPublicPath))
                return {QStringLiteral("公共导入路径无法访问，请检查路径是否正确"),
                        order.importPublicPath};
            continue;
        }
        if (isReachable(order.importPath))
            continue;
        if (!makeFolder(platform::toLocalPath(order.importPath)))
            return {QStringLiteral("导入路径无法访问并且无法创建，请检查局域网是否能连接"),
                    order.importPath};
        // A share that takes one new folder takes those of the other orders, too.
        return {};
    }
    return {};
}

} // namespace photorules
