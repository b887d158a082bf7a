#pragma once

#include "orderbrowser/rules/orderarrangement.h"
#include "orderbrowser/rules/orderlisting.h"
#include "tasks/latest.h"

#include <QObject>
#include <QVector>

/// Filters and sorts the listed orders on a thread, so that typing never waits: only the latest
/// arrangement asked for is announced. Interface thread.
class OrderArranger : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// arranged() follows, unless another call comes first.
    void arrange(const OrderListing &listing, const OrderArrangement &arrangement);

signals:
    /// \a rows are positions in \a listing, the one that was asked for.
    void arranged(const OrderListing &listing, const QVector<int> &rows);

private:
    Latest latest_;
};
