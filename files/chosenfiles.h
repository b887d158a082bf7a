#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// What users choose, or drop, to be copied.
namespace chosenfiles {

/// Whether \a fileName matches the first filter of \a dialogFilter (worded as for QFileDialog),
/// whatever its case.
bool matchesFilter(const QString &dialogFilter, const QString &fileName);

/// The dropped files, and those in dropped folders and the folders below, that the first filter of
/// \a dialogFilter takes, each once, in the order of their names. \a ignored counts the others.
/// Blocks; for worker threads.
QStringList expandDrop(const QStringList &paths, const QString &dialogFilter, int *ignored);

/// A file to be copied and where to; the target in Windows form.
struct Placement
{
    QString source;
    QString target;
};

/// Sources that would land on one target (names compared without case), grouped.
QVector<QStringList> sameTargetGroups(const QVector<Placement> &placements);

/// Tells which files of \a groups stand in each other's way.
QString sameTargetNotice(const QVector<QStringList> &groups);

} // namespace chosenfiles
