#include "cardcheck/rules/places.h"

#include "files/paths.h"

#include <algorithm>

namespace places {

using evidence::Place;

namespace {

constexpr qint64 hourMs = 3600000;

QString nameOf(const QString &target)
{
    return target.section(QLatin1Char('\\'), -1).toLower();
}

bool isImport(ledger::Work work)
{
    return work == ledger::Work::ImportOriginals || work == ledger::Work::ImportRetouched ||
           work == ledger::Work::PhotoImport;
}

} // namespace

QVector<ledger::FileStamp> stampsOf(const cardfiles::CardFile &file)
{
    QVector<ledger::FileStamp> stamps;
    for (const qint64 shift : {qint64(0), hourMs, -hourMs})
        stamps.append({file.name(), file.bytes, file.modifiedMs + shift});
    return stamps;
}

QVector<Place> ofCopies(const QVector<ledger::Copy> &copies)
{
    QVector<Place> found;
    for (const ledger::Copy &copy : copies) {
        const bool isUpright = copy.kind == ledger::CopyKind::Upright;
        if (!isImport(copy.work) || !(isUpright || copy.kind == ledger::CopyKind::Bytes))
            continue;
        found = joined(found, {{copy.order, copy.target, copy.id, isUpright, copy.sourceHash,
                                copy.targetHash}});
    }
    return found;
}

void FolderIndex::add(const ledger::OrderKey &order, const QString &target, qint64 bytes)
{
    const int position = files_.size();
    files_.append({{order, target, 0, false, {}, {}}, nameOf(target)});
    bySize_.insert(bytes, position);
    byName_.insert(files_.last().name, position);
}

QVector<Place> FolderIndex::placesOf(const cardfiles::CardFile &file) const
{
    const QString name = file.name().toLower();
    QList<int> positions = bySize_.values(file.bytes);
    if (positions.isEmpty())
        positions = byName_.values(name);
    std::sort(positions.begin(), positions.end());
    std::stable_partition(positions.begin(), positions.end(),
                          [&](int position) { return files_.at(position).name == name; });
    QVector<Place> found;
    for (const int position : qAsConst(positions))
        found.append(files_.at(position).place);
    return found;
}

QVector<Place> joined(QVector<Place> first, const QVector<Place> &more)
{
    for (const Place &place : more) {
        const QString key = wirePathKey(place.target);
        const bool isKnown = std::any_of(first.cbegin(), first.cend(), [&key](const Place &known) {
            return wirePathKey(known.target) == key;
        });
        if (!isKnown)
            first.append(place);
    }
    return first;
}

} // namespace places
