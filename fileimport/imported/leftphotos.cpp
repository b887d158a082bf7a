#include "fileimport/imported/leftphotos.h"

#include "files/pathgate.h"

#include <QSet>

#include <algorithm>
#include <iterator>

namespace leftphotos {

namespace {

QString folderOf(const QString &wirePath)
{
    const int end =
        qMax(wirePath.lastIndexOf(QLatin1Char('\\')), wirePath.lastIndexOf(QLatin1Char('/')));
    return wirePath.left(qMax(0, end));
}

QString lineOf(const DeleteFileResult &left)
{
    if (left.message.isEmpty())
        return left.photo.imgName;
    const bool namesIt = left.success || left.message.contains(left.photo.imgName);
    return namesIt ? left.message : left.photo.imgName + QLatin1Char(' ') + left.message;
}

} // namespace

QStringList lines(const QVector<DeleteFileResult> &left)
{
    QStringList folders;
    QHash<QString, QStringList> linesOf;
    for (const DeleteFileResult &each : left) {
        const QString folder = folderOf(each.photo.localPath);
        if (!linesOf.contains(folder))
            folders.append(folder);
        linesOf[folder].append(lineOf(each));
    }
    QStringList lines = linesOf.value(QString()); // of no folder, and so below none
    folders.removeAll(QString());
    for (const QString &folder : qAsConst(folders))
        lines += QStringList(folder) + linesOf.value(folder);
    return lines;
}

QString folderToShow(const QVector<DeleteFileResult> &left, const QString &importPath)
{
    if (left.isEmpty() || pathgate::flawOf(importPath) != pathgate::Flaw::None)
        return {};
    const QString folder = folderOf(left.constFirst().photo.localPath);
    const bool isCommon =
        std::all_of(left.cbegin(), left.cend(), [&folder](const DeleteFileResult &each) {
            return folderOf(each.photo.localPath) == folder;
        });
    return isCommon && pathgate::isBelow(folder, importPath) ? folder : importPath;
}

} // namespace leftphotos

void DeletionDoubts::add(const OrderIdentity &order, const QVector<PhotoEntry> &entries)
{
    settle(order, entries);
    doubts_[order] += entries;
}

void DeletionDoubts::settle(const OrderIdentity &order, const QVector<PhotoEntry> &entries)
{
    QSet<QString> settled;
    for (const PhotoEntry &entry : entries)
        settled.insert(entry.id);
    QVector<PhotoEntry> &doubts = doubts_[order];
    doubts.erase(
        std::remove_if(doubts.begin(), doubts.end(),
                       [&settled](const PhotoEntry &entry) { return settled.contains(entry.id); }),
        doubts.end());
    if (doubts.isEmpty())
        doubts_.remove(order);
}

QVector<PhotoEntry> DeletionDoubts::takeForgotten(const OrderIdentity &order,
                                                  const QVector<PhotoEntry> &listing)
{
    QSet<QString> known;
    for (const PhotoEntry &entry : listing)
        known.insert(entry.id);
    const QVector<PhotoEntry> doubts = doubts_.take(order);
    QVector<PhotoEntry> forgotten;
    QVector<PhotoEntry> open;
    for (const PhotoEntry &entry : doubts)
        (known.contains(entry.id) ? open : forgotten).append(entry);
    if (!open.isEmpty())
        doubts_.insert(order, open);
    return forgotten;
}
