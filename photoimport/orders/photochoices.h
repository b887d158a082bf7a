#pragma once

#include "pending/pendingchoices.h"
#include "photoimport/orders/photoorder.h"

#include <QVector>

/// How files chosen for an order of the photo import are remembered, and come back. Pure functions.
namespace photochoices {

/// The order's files, of all modes, that are not imported in all their forms.
PendingChoices::Choice rememberedFiles(const PhotoOrder &order);

/// The \a listed orders and, where they are missing, the freshly \a found ones, each with the files
/// that were remembered of it. What has a listed file's name stays out.
QVector<PhotoOrder> restored(const QVector<PhotoOrder> &listed, const QVector<PhotoOrder> &found,
                             const QVector<PendingChoices::Choice> &choices);

} // namespace photochoices
