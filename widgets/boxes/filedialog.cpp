#include "widgets/boxes/filedialog.h"

#include "files/paths.h"
#include "widgets/boxes/boxscript.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <QList>

namespace {

struct Session
{
    QHash<QString, QString> folders;
    QList<QStringList> nextFiles;
    QStringList nextFolders;
};

Session &session()
{
    static Session instance;
    return instance;
}

} // namespace

QStringList FileDialog::openFiles(QWidget *parent, const QString &title, const QString &filter,
                                  const QString &folderKey)
{
    QStringList files;
    if (!session().nextFiles.isEmpty())
        files = session().nextFiles.takeFirst();
    else if (!boxscript::isScripted())
        files = QFileDialog::getOpenFileNames(parent, title, lastFolder(folderKey), filter);
    if (!files.isEmpty())
        session().folders[folderKey] = QFileInfo(files.first()).path();
    return files;
}

QString FileDialog::saveFile(QWidget *parent, const QString &title, const QString &name,
                             const QString &filter, const QString &folderKey)
{
    QString file;
    if (!session().nextFiles.isEmpty()) {
        file = session().nextFiles.takeFirst().value(0);
    } else if (!boxscript::isScripted()) {
        const QString folder = lastFolder(folderKey);
        const QString proposed = folder.isEmpty() ? name : joinLocalPath(folder, name);
        file = QFileDialog::getSaveFileName(parent, title, proposed, filter);
    }
    if (!file.isEmpty())
        session().folders[folderKey] = QFileInfo(file).path();
    return file;
}

QString FileDialog::existingFolder(QWidget *parent, const QString &title, const QString &folderKey)
{
    QString folder;
    if (!session().nextFolders.isEmpty())
        folder = session().nextFolders.takeFirst();
    else if (!boxscript::isScripted())
        folder = QFileDialog::getExistingDirectory(parent, title, lastFolder(folderKey));
    if (!folder.isEmpty())
        session().folders[folderKey] = folder;
    return folder;
}

QString FileDialog::lastFolder(const QString &folderKey)
{
    return session().folders.value(folderKey);
}

void FileDialog::setNextFiles(const QStringList &files)
{
    session().nextFiles.append(files);
}

void FileDialog::setNextFolder(const QString &folder)
{
    session().nextFolders.append(folder);
}
