#include "thumbnails/photoentry.h"

#include <QHash>

#include <algorithm>
#include <iterator>

QString kindText(PhotoEntry::Kind kind)
{
    return kind == PhotoEntry::Kind::RawFile ? QStringLiteral("原始档") : QStringLiteral("原片");
}

QVector<int> laterPositions(const QVector<PhotoEntry> &before, const QVector<PhotoEntry> &later)
{
    QHash<QString, int> known;
    for (int index = 0; index < later.size(); ++index)
        known.insert(later.at(index).id, index);
    known.remove(QString());
    QVector<int> positions;
    positions.reserve(before.size());
    for (const PhotoEntry &entry : before) {
        const int position = known.value(entry.id, -1);
        const bool isSame = position >= 0 && later.at(position).imgName == entry.imgName;
        positions.append(isSame ? position : -1);
    }
    return positions;
}

int nearestKept(const QVector<int> &positions, int from)
{
    const auto isKept = [](int position) { return position >= 0; };
    const auto start = positions.cbegin() + qBound(0, from, positions.size());
    const auto next = std::find_if(start, positions.cend(), isKept);
    if (next != positions.cend())
        return int(next - positions.cbegin());
    const auto before = std::find_if(std::make_reverse_iterator(start), positions.crend(), isKept);
    return int(positions.crend() - before) - 1;
}
