#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/// The one way to have files or a folder chosen. Each call waits for the user in an event loop of
/// its own. Paths are in the form of this machine. \a folderKey names a purpose: the folder last
/// used for it is where the next dialog begins, until the program ends.
class FileDialog
{
public:
    FileDialog() = delete;

    /// Empty when the user cancelled. \a filter as QFileDialog words it.
    static QStringList openFiles(QWidget *parent, const QString &title, const QString &filter,
                                 const QString &folderKey);
    /// Where to save to, \a name being proposed; the user has agreed to replace a file of that
    /// name. Empty when the user cancelled.
    static QString saveFile(QWidget *parent, const QString &title, const QString &name,
                            const QString &filter, const QString &folderKey);
    /// Empty when the user cancelled.
    static QString existingFolder(QWidget *parent, const QString &title, const QString &folderKey);

    /// Where the next dialog for \a folderKey begins; empty when none was used yet.
    static QString lastFolder(const QString &folderKey);

    /// Tests: the next dialog is not shown and gives this; an empty one is the user's cancel. They
    /// queue up. For no dialogs at all see MessageBox::setScripted().
    static void setNextFiles(const QStringList &files);
    static void setNextFolder(const QString &folder);
};
