#pragma once

#include "orderbrowser/rules/orderlisting.h"

#include <QDate>
#include <QHash>
#include <QString>
#include <QVector>

/// Which orders of a listing are shown, and in what order.
struct OrderArrangement
{
    struct Sorting
    {
        QString key; ///< of a field
        Qt::SortOrder order = Qt::AscendingOrder;

        friend bool operator==(const Sorting &one, const Sorting &other)
        {
            return one.key == other.key && one.order == other.order;
        }
    };

    QVector<Sorting> sorting;        ///< the first decides first
    QHash<QString, QString> filters; ///< by the key of their field, as typed
    QDate today;
};

namespace orderarrangement {

/// Positions in the listing. Fields that it does not have do not count; orders that are equal stay
/// as they came. Thousands of orders take their time: for a thread.
QVector<int> rows(const OrderListing &listing, const OrderArrangement &arrangement);

/// What a click on a heading makes of \a sorting: alone, or \a added to what is sorted by already.
QVector<OrderArrangement::Sorting> clicked(QVector<OrderArrangement::Sorting> sorting,
                                           const QString &key, bool added);

} // namespace orderarrangement
