#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// Other names for files whose own are taken. Pure functions.
namespace renaming {

/// One file of a choice.
struct File
{
    QString source;        ///< absolute, as this machine writes it
    QString name;          ///< that it would get in its target folder
    bool mayChange = true; ///< false once it is imported

    friend bool operator==(const File &one, const File &other)
    {
        return one.source == other.source && one.name == other.name &&
               one.mayChange == other.mayChange;
    }
};

/// \a name in the form in which two names are compared.
QString nameKey(const QString &name);
/// What \a names, listed from the target folders, keep any file from being called, with whatever
/// suffix.
QSet<QString> takenBases(const QStringList &names);

/// New names for the files with the \a sources, and for those that share the base name and the
/// source folder with one of them, such as the raw file and the side files of a photo: one number
/// for all of them, under whose base name nothing stands in \a taken and nothing else is chosen.
/// By source; only those that change.
QHash<QString, QString> renamed(const QVector<File> &files, const QSet<QString> &sources,
                                const QSet<QString> &taken);

/// Of each of the \a clashes (sources that share a target) all but the first.
QSet<QString> laterOnes(const QVector<QStringList> &clashes);

} // namespace renaming
