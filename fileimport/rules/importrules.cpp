#include "fileimport/rules/importrules.h"

#include "files/chosenfiles.h"
#include "files/paths.h"
#include "net/orderfiles.h"
#include "platform/pathform.h"

#include <QSet>

#include <algorithm>
#include <numeric>

namespace importrules {

using orderfiles::originalsFolder;
using orderfiles::rawFolder;
using orderfiles::retouchedFolder;

QString toolName(ImportMode mode)
{
    switch (mode) {
    case ImportMode::Originals:
        return QStringLiteral("导入原片");
    case ImportMode::Retouched:
        return QStringLiteral("导入精修片");
    }
    Q_UNREACHABLE();
}

QString dialogFilter(ImportMode mode)
{
    switch (mode) {
    case ImportMode::Originals:
        return QStringLiteral(
            "图片文件 (*.jpg *.jpeg *raw *.cr2 *.cr3 *.nef *.arw *.raf);;所有文件 (*.*)");
    case ImportMode::Retouched:
        return QStringLiteral("图片文件 (*.jpg *.jpeg);;所有文件 (*.*)");
    }
    Q_UNREACHABLE();
}

QStringList subFolders(ImportMode mode)
{
    switch (mode) {
    case ImportMode::Originals:
        return {originalsFolder, rawFolder};
    case ImportMode::Retouched:
        return {retouchedFolder};
    }
    Q_UNREACHABLE();
}

QString subFolderFor(ImportMode mode, const QString &suffix)
{
    static const QStringList photoSuffixes = {QStringLiteral("jpg"), QStringLiteral("JPG"),
                                              QStringLiteral("jpeg"), QStringLiteral("JPGE")};
    switch (mode) {
    case ImportMode::Originals:
        return photoSuffixes.contains(suffix) ? originalsFolder : rawFolder;
    case ImportMode::Retouched:
        return retouchedFolder;
    }
    Q_UNREACHABLE();
}

bool isAnnounced(const ImportFile &file)
{
    return orderfiles::isAnnounced(file.targetFolder.section(QLatin1Char('\\'), -1),
                                   file.fileName());
}

QString unannouncedText(const QVector<ImportFile> &files)
{
    chosenfiles::Kinds kinds;
    for (const ImportFile &file : files) {
        if (file.state == ImportFile::Imported && !isAnnounced(file)) {
            const QString name = file.fileName();
            ++kinds[platform::isHiddenName(name) ? chosenfiles::hiddenKind()
                                                 : chosenfiles::kindOf(name)];
        }
    }
    if (kinds.isEmpty())
        return {};
    return QStringLiteral("未登记到服务端的类型: %1 个（%2）")
        .arg(std::accumulate(kinds.cbegin(), kinds.cend(), 0))
        .arg(chosenfiles::kindsText(kinds));
}

bool hasFolder(const ImportOrder &order)
{
    return !order.importPath.isEmpty() || !order.importPublicPath.isEmpty();
}

QString importPathOf(const ImportOrder &order)
{
    return orderqueries::importFolderOf(order, order.importPath, order.importPublicPath);
}

QStringList unchosenNames(const QVector<ImportFile> &files, const QStringList &chosenNames)
{
    const QSet<QString> chosen(chosenNames.cbegin(), chosenNames.cend());
    QStringList unchosen;
    for (const ImportFile &file : files) {
        if (!chosen.contains(file.baseName + QLatin1Char('.') + file.suffix.toLower()))
            unchosen.append(file.fileName());
    }
    return unchosen;
}

QString unchosenQuestion(const QStringList &names)
{
    QString question =
        QStringLiteral("要上传的精修照片与客人选中的照片名不一致，确认要继续上传吗？\n"
                       "下列是不一致的照片：");
    for (const QString &name : names)
        question += QLatin1Char('\n') + name;
    return question;
}

int unimportedWithout(const QVector<ImportFile> &files, const QStringList &paths)
{
    const QSet<QString> kept(paths.cbegin(), paths.cend());
    return int(std::count_if(files.cbegin(), files.cend(), [&kept](const ImportFile &file) {
        return file.state != ImportFile::Imported && !kept.contains(file.sourcePath);
    }));
}

QString leavingQuestion(const QVector<ImportOrder> &orders)
{
    const int lost =
        std::accumulate(orders.cbegin(), orders.cend(), 0, [](int sum, const ImportOrder &order) {
            return sum + unimportedWithout(order.files, {});
        });
    if (lost == 0)
        return {};
    return QStringLiteral(
               "有 %1 个已选的文件还没有导入，切换分店后它们只保留在提示栏中，确认要切换吗？")
        .arg(lost);
}

QString closingNotice(bool isRunning, int unregistered, bool isRemembered)
{
    if (isRunning)
        return QStringLiteral("正在导入，关闭窗口会停止导入，已拷贝的照片可能还没有登记到服务端。");
    if (unregistered == 0)
        return {};
    const QString later = isRemembered ? QStringLiteral("下次打开时可以重新登记。")
                                       : QStringLiteral("关闭窗口后要重新导入才能登记。");
    return QStringLiteral("有 %1 个订单的文件已导入，但尚未登记到服务端；").arg(unregistered) +
           later;
}

QVector<QStringList> sameTargetGroups(const QVector<ImportFile> &files)
{
    QVector<chosenfiles::Placement> placements;
    for (const ImportFile &file : files)
        placements.append({file.sourcePath, joinWirePath(file.targetFolder, file.targetName())});
    return chosenfiles::sameTargetGroups(placements);
}

QVector<int> ordersSharingFolder(const QVector<ImportOrder> &orders, int index)
{
    const QString folder = wirePathKey(importPathOf(orders.at(index)));
    QVector<int> sharing;
    for (int other = 0; other < orders.size(); ++other) {
        const ImportOrder &order = orders.at(other);
        if (other != index && hasFolder(order) && wirePathKey(importPathOf(order)) == folder)
            sharing.append(other);
    }
    return sharing;
}

} // namespace importrules
