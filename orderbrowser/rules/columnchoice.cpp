#include "orderbrowser/rules/columnchoice.h"

#include <algorithm>

namespace columnchoice {

namespace {

using Column = OrderView::Column;

bool holds(const Columns &columns, const QString &key)
{
    return std::any_of(columns.cbegin(), columns.cend(),
                       [&key](const Column &column) { return column.key == key; });
}

} // namespace

QVector<orderfields::OrderField> available(const QVector<orderfields::OrderField> &fields,
                                           const Columns &columns, const QString &search)
{
    const QString wanted = search.trimmed();
    QVector<orderfields::OrderField> found;
    for (const orderfields::OrderField &field : fields) {
        const bool matches = field.heading.contains(wanted, Qt::CaseInsensitive) ||
                             field.key.contains(wanted, Qt::CaseInsensitive) ||
                             field.group.contains(wanted, Qt::CaseInsensitive);
        if (matches && !holds(columns, field.key))
            found.append(field);
    }
    return found;
}

Columns added(const Columns &columns, const QStringList &keys, int at)
{
    Columns all = columns;
    int place = qBound(0, at, all.size());
    for (const QString &key : keys) {
        if (!holds(all, key))
            all.insert(place++, {key, 0});
    }
    return all;
}

Columns removed(const Columns &columns, const QStringList &keys)
{
    Columns left;
    for (const Column &column : columns) {
        if (!keys.contains(column.key))
            left.append(column);
    }
    return left.isEmpty() ? columns.mid(0, 1) : left;
}

Columns moved(const Columns &columns, const QStringList &keys, bool down)
{
    Columns all = columns;
    if (down)
        std::reverse(all.begin(), all.end());
    for (int i = 1; i < all.size(); ++i) {
        if (keys.contains(all.at(i).key) && !keys.contains(all.at(i - 1).key))
            std::swap(all[i], all[i - 1]);
    }
    if (down)
        std::reverse(all.begin(), all.end());
    return all;
}

Columns arranged(const Columns &columns, const QStringList &keys)
{
    Columns all;
    for (const QString &key : keys) {
        const auto before =
            std::find_if(columns.cbegin(), columns.cend(),
                         [&key](const Column &column) { return column.key == key; });
        if (!holds(all, key))
            all.append(before == columns.cend() ? Column{key, 0} : *before);
    }
    return all.isEmpty() ? columns : all;
}

} // namespace columnchoice
