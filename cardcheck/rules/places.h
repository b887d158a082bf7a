#pragma once

#include "cardcheck/rules/evidence.h"

#include <QHash>
#include <QString>
#include <QVector>

/// Where files of a card may stand. Pure functions.
namespace places {

/// An order in whose folder is looked, whoever imported it.
struct SoughtOrder
{
    ledger::OrderKey order;
    QString folder; ///< wire form
};

/// A file that lies in an order's folder.
struct FolderFile
{
    QString path; ///< wire form
    qint64 bytes = 0;
};

/// How the ledger is asked for \a file: its time as it is, and as a clock change moves the times of
/// cards, which keep local time. What it names is compared byte by byte anyway.
QVector<ledger::FileStamp> stampsOf(const cardfiles::CardFile &file);

/// What imports made of one file, from the ledger's \a copies of it, newest first.
QVector<evidence::Place> ofCopies(const QVector<ledger::Copy> &copies);

/// The files that lie in orders' folders.
class FolderIndex
{
public:
    void add(const ledger::OrderKey &order, const QString &target, qint64 bytes);

    /// The files that may be \a file: those of its name and size, then those of its size alone;
    /// when there are none, those of its name.
    QVector<evidence::Place> placesOf(const cardfiles::CardFile &file) const;

private:
    struct Found
    {
        evidence::Place place;
        QString name; ///< in small letters
    };
    QVector<Found> files_;
    QMultiHash<qint64, int> bySize_;
    QMultiHash<QString, int> byName_;
};

/// \a first and what of \a more is not among them.
QVector<evidence::Place> joined(QVector<evidence::Place> first,
                                const QVector<evidence::Place> &more);

} // namespace places
