#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// What users choose, or drop, to be copied.
namespace chosenfiles {

/// Whether \a fileName matches the first filter of \a dialogFilter (worded as for QFileDialog),
/// whatever its case.
bool matchesFilter(const QString &dialogFilter, const QString &fileName);

/// What lies in dropped files and folders.
struct DropContents
{
    QStringList files;      ///< those that the filter takes, each once, in the order of their names
    QStringList unreadable; ///< folders, and entries without a proper name, that hide their files
    int ignored = 0;        ///< files that the filter leaves out
};

/// The files among \a paths, and those in the folders among them and the folders below, as the
/// first filter of \a dialogFilter takes them. Hidden entries and links to folders below are left
/// out. Blocks; for worker threads.
DropContents expandDrop(const QStringList &paths, const QString &dialogFilter);

/// Asks whether to take the rest, above the names of what could not be read.
QString unreadableHeading();

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
