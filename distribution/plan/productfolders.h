#pragma once

#include "distribution/plan/distributiontask.h"
#include "distribution/rules/orderdetail.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/// The folders of detail.products() below \a orderFolder, one each, all different; without a slash
/// at the end.
QStringList productFolderPaths(const OrderDetail &detail, const QString &ruleText,
                               const QString &orderFolder);

/// Makes the folders of one order's products below \a orderFolder (local) and copies each product's
/// photos into its own, and makes the folder for finished photos that no product uses.
/// \a ruleText is the branch's naming rule as JSON. Returns what went wrong, one line each; every
/// file that was to be copied is added to \a files. Nothing more is begun once \a stopped says so.
/// \a progress, when given, counts the photos. Blocks; for worker threads.
QStringList createProductFolders(const OrderDetail &detail, const QString &ruleText,
                                 const QString &orderFolder,
                                 const std::function<bool()> &stopped = {},
                                 StepProgress *progress = nullptr,
                                 QVector<FileOutcome> *files = nullptr);
