#pragma once

#include "fileimport/imported/originalrequests.h"
#include "fileimport/rules/importrecords.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// Where the imported photos of one order may lie, judged by the text of paths alone. A reply may
/// name any path: what lies elsewhere is another order's, or nobody's business.
class PhotoPlace
{
public:
    /// Holds nothing.
    PhotoPlace() = default;
    /// All in Windows form. \a otherFolders are the import folders of the other listed orders.
    PhotoPlace(const QString &folder, const QString &publicRoot, const QStringList &otherFolders);

    /// Whether \a wirePath can be a photo of the order: of the order's folder, the other orders'
    /// and the branch's public root, the innermost that it lies below is the order's or the root.
    bool holds(const QString &wirePath) const;

private:
    QString folder_;
    QString publicRoot_;
    QSet<QString> others_;
};

/// The place of \a order among the \a listed ones. Composes the folder of each: for thousands of
/// orders not on the interface thread.
PhotoPlace photoPlaceOf(const originalrequests::OrderMap &order,
                        const QVector<ImportOrder> &listed);
