#pragma once

#include "distribution/proof/oldfiles.h"
#include "distribution/proof/orderproof.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// What the comparison at the end of a run found, in words. Pure functions.
namespace prooftext {

/// "42/42 在位", and what is remarkable, over all orders.
QString headline(const QVector<ProvedOrder> &orders);
/// Each order with the files that are missing or left of earlier runs below it; of a long list the
/// first \a most files.
QStringList lines(const QVector<ProvedOrder> &orders, int most);

/// How many files may be put away.
int earlierCount(const QVector<ProvedOrder> &orders);
/// Whether every file of every order is in its place.
bool isComplete(const QVector<ProvedOrder> &orders);

/// What the end box says of files that the run did not write; empty when there are none.
QString otherFiles(const QVector<ProvedOrder> &orders);

/// "已将 12 个文件移到 …"
QString putAway(const QVector<PutAway> &results);

} // namespace prooftext
