#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Fixtures on disk. What cannot be written ends the test program: nothing after it would mean
/// anything.

/// Writes the file, and the folders above it where they lack; returns its path.
QString writeFile(const QString &path, const QByteArray &content = QByteArray());

/// "(no file)" when there is none.
QByteArray readFile(const QString &path);

/// Every file below \a folder, hidden, temporary and broken ones too, as its path from there;
/// sorted.
QStringList filesBelow(const QString &folder);

/// What an absolute path begins with: a drive's name, nothing elsewhere than on Windows.
#ifdef Q_OS_WIN
inline QString drive()
{
    return QStringLiteral("C:");
}
#else
inline QString drive()
{
    return {};
}
#endif

/// Whether QFile::link() makes a shortcut, which is a file like any other, and no link.
#ifdef Q_OS_WIN
constexpr bool shortcutsForLinks = true;
#else
constexpr bool shortcutsForLinks = false;
#endif

/// Makes \a link lead to the folder \a target: a junction on Windows, elsewhere a symbolic link.
/// False where the system makes none.
bool linkFolder(const QString &target, const QString &link);

/// A folder that nobody can list, not even an administrator: its name is no text. Only some systems
/// have such; elsewhere the path is empty.
class UnreadableFolder
{
public:
    explicit UnreadableFolder(const QString &above);
    ~UnreadableFolder();
    Q_DISABLE_COPY_MOVE(UnreadableFolder)

    QString path; ///< as far as it can be told

private:
    QByteArray made_;
};

/// As the service writes paths.
QString wireForm(QString path);
