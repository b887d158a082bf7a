#include "orderbrowser/rules/orderarrangement.h"

#include "orderbrowser/rules/fieldfilter.h"
#include "orderbrowser/rules/fieldvalues.h"

#include <algorithm>
#include <numeric>

namespace orderarrangement {

namespace {

using Sorting = OrderArrangement::Sorting;

QVector<int> passing(const OrderListing &listing, const OrderArrangement &arrangement)
{
    QVector<std::pair<int, FieldFilter>> filters;
    for (auto it = arrangement.filters.cbegin(); it != arrangement.filters.cend(); ++it) {
        const int field = orderfields::positionOf(listing.fields, it.key());
        if (field < 0)
            continue;
        const FieldFilter filter(listing.fields.at(field).kind, it.value(), arrangement.today);
        if (!filter.isEmpty())
            filters.append({field, filter});
    }
    QVector<int> rows;
    rows.reserve(listing.orders.size());
    for (int row = 0; row < listing.orders.size(); ++row) {
        const bool passes =
            std::all_of(filters.cbegin(), filters.cend(), [&listing, row](const auto &filter) {
                return filter.second.matches(listing.value(row, filter.first));
            });
        if (passes)
            rows.append(row);
    }
    return rows;
}

/// The least important first, each sorting keeping what the one before has done.
void sortBy(const OrderListing &listing, const Sorting &sorting, QVector<int> *rows)
{
    const int field = orderfields::positionOf(listing.fields, sorting.key);
    if (field < 0)
        return;
    const orderfields::Kind kind = listing.fields.at(field).kind;
    const QCollator names = fieldvalues::nameOrder();
    std::vector<std::pair<fieldvalues::SortKey, int>> keyed;
    keyed.reserve(size_t(rows->size()));
    for (const int row : qAsConst(*rows))
        keyed.emplace_back(fieldvalues::sortKey(kind, listing.value(row, field), names), row);
    std::stable_sort(keyed.begin(), keyed.end(), [&sorting](const auto &one, const auto &other) {
        return fieldvalues::compare(one.first, other.first, sorting.order) < 0;
    });
    std::transform(keyed.cbegin(), keyed.cend(), rows->begin(),
                   [](const auto &each) { return each.second; });
}

} // namespace

QVector<int> rows(const OrderListing &listing, const OrderArrangement &arrangement)
{
    QVector<int> rows = passing(listing, arrangement);
    for (int i = arrangement.sorting.size() - 1; i >= 0; --i)
        sortBy(listing, arrangement.sorting.at(i), &rows);
    return rows;
}

QVector<Sorting> clicked(QVector<Sorting> sorting, const QString &key, bool added)
{
    const auto found = std::find_if(sorting.begin(), sorting.end(),
                                    [&key](const Sorting &each) { return each.key == key; });
    const bool wasAscending = found != sorting.end() && found->order == Qt::AscendingOrder;
    const Sorting wanted{key, wasAscending ? Qt::DescendingOrder : Qt::AscendingOrder};
    if (!added)
        return {wanted};
    if (found != sorting.end())
        *found = wanted;
    else
        sorting.append(wanted);
    return sorting;
}

} // namespace orderarrangement
