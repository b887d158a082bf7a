#pragma once

#include "orderbrowser/rules/orderfields.h"
#include "orderbrowser/rules/orderviews.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// Choosing a view's columns. Pure functions.
namespace columnchoice {

using Columns = QVector<OrderView::Column>;

/// Fields that are not among \a columns and whose heading, key or group holds \a search.
QVector<orderfields::OrderField> available(const QVector<orderfields::OrderField> &fields,
                                           const Columns &columns, const QString &search);
/// With \a keys, those that are there already left where they are, before position \a at.
Columns added(const Columns &columns, const QStringList &keys, int at);
/// One column always stays.
Columns removed(const Columns &columns, const QStringList &keys);
/// With \a keys one place further up or down, as far as there is one.
Columns moved(const Columns &columns, const QStringList &keys, bool down);
/// Exactly \a keys, in that order, those of \a columns with their widths.
Columns arranged(const Columns &columns, const QStringList &keys);

} // namespace columnchoice
