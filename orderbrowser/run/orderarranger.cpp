#include "orderbrowser/run/orderarranger.h"

#include "tasks/background.h"

void OrderArranger::arrange(const OrderListing &listing, const OrderArrangement &arrangement)
{
    onProcessor(
        this, [listing, arrangement] { return orderarrangement::rows(listing, arrangement); },
        latest_.only([this, listing](const QVector<int> &rows) { emit arranged(listing, rows); }));
}
