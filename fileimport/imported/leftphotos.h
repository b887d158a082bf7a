#pragma once

#include "app/context/orderidentity.h"
#include "fileimport/imported/deletefileresult.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

/// What is left on disk of photos that the service has forgotten, as users are told of it. Pure
/// functions.
namespace leftphotos {

/// A line for each file, in their order, below the folder that they lie in.
QStringList lines(const QVector<DeleteFileResult> &left);

/// The folder to show for them: the one that they all lie in, or else \a importPath, where
/// something of the order lies elsewhere. Nothing outside of \a importPath is ever shown. All in
/// Windows form; empty when there is none.
QString folderToShow(const QVector<DeleteFileResult> &left, const QString &importPath);

} // namespace leftphotos

/// Photos that the service was asked to forget without ever answering. Only a later list of the
/// order tells what became of them.
class DeletionDoubts
{
public:
    void add(const OrderIdentity &order, const QVector<PhotoEntry> &entries);
    /// About these the service has answered after all.
    void settle(const OrderIdentity &order, const QVector<PhotoEntry> &entries);
    /// Those of the order's that are not in its \a listing any more: the service did forget them.
    /// Each is told once.
    QVector<PhotoEntry> takeForgotten(const OrderIdentity &order,
                                      const QVector<PhotoEntry> &listing);

private:
    QHash<OrderIdentity, QVector<PhotoEntry>> doubts_;
};
