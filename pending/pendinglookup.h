#pragma once

#include "net/orderlookup.h"
#include "pending/pendingdesk.h"

#include <QStringList>
#include <QVector>

#include <algorithm>

struct ServiceReply;
class QWidget;

/// How the orders of what waits are asked for anew.
namespace pendinglookup {

/// The orders that \a rows are about, each once. A row has an OrderKey, "order".
template <typename Order, typename Row>
QVector<typename OrderLookup<Order>::Wanted> wantedOf(const QVector<Row> &rows)
{
    using Wanted = typename OrderLookup<Order>::Wanted;
    QVector<Wanted> wanted;
    for (const Row &row : rows) {
        const bool isKnown =
            std::any_of(wanted.cbegin(), wanted.cend(),
                        [&row](const Wanted &each) { return each.order == row.order.identity; });
        if (!isKnown)
            wanted.append({row.order.identity, searchedNumber(row.order.number)});
    }
    return wanted;
}

/// What to tell of an order, called \a order, that is not registered since its files were copied to
/// \a target and it has another folder now.
QString movedText(const QString &order, const QString &target);

/// Tells in a box of \a window that asking has failed, or which orders, by \a numbers, are missing;
/// nothing when all is well.
void tellMissing(QWidget *window, const ServiceReply &reply, const QStringList &numbers);

template <typename Answer> void tellMissing(QWidget *window, const Answer &answer)
{
    QStringList numbers;
    for (const auto &each : answer.missing)
        numbers.append(each.number);
    tellMissing(window, answer.reply, numbers);
}

} // namespace pendinglookup
