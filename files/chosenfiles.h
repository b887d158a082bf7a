#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

/// What users choose, or drop, to be copied.
namespace chosenfiles {

/// How many files there are of which kind, as users tell kinds apart: see kindOf().
using Kinds = QMap<QString, int>;

/// The suffix with its point, as it is written, or words for a name without one.
QString kindOf(const QString &fileName);
/// What kindOf() is for a file that does not show itself in a folder.
QString hiddenKind();

/// ".xmp 12 个，.txt 1 个": the most frequent first.
QString kindsText(const Kinds &kinds);

/// What lies in dropped files and folders.
struct DropContents
{
    QStringList files;      ///< those that the filter takes, each once, in the order of their names
    QStringList unreadable; ///< folders, and entries without a proper name, that hide their files
    Kinds ignored;          ///< what the filter leaves out, and hidden files that it would take
};

/// The files among \a paths, and those in the folders among them and the folders below, as the
/// first filter of \a dialogFilter takes them. Hidden entries and links to folders below are left
/// out. Blocks; for worker threads.
DropContents expandDrop(const QStringList &paths, const QString &dialogFilter);

/// Tells that \a ignored was left out; empty when nothing was.
QString ignoredNotice(const Kinds &ignored);

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
