#include "tests/support/files.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>

#ifdef Q_OS_LINUX
#include <sys/stat.h>
#include <unistd.h>
#endif

QString writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(content) != content.size())
        qFatal("fixture not written: %s", qPrintable(path));
    return path;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator each(folder, QDir::Files | QDir::Hidden | QDir::System,
                      QDirIterator::Subdirectories);
    while (each.hasNext())
        files.append(QDir(folder).relativeFilePath(each.next()));
    files.sort();
    return files;
}

bool linkFolder(const QString &target, const QString &link)
{
#ifdef Q_OS_WIN
    const auto native = QDir::toNativeSeparators;
    QProcess::execute(QStringLiteral("cmd"), {QStringLiteral("/c"), QStringLiteral("mklink"),
                                              QStringLiteral("/J"), native(link), native(target)});
    if (!QFileInfo(link).isDir()) {
        // Wine makes no junctions, but shows the links of the system below as some.
        constexpr int drive = 2;
        QProcess::execute(QStringLiteral("start"),
                          {QStringLiteral("/unix"), QStringLiteral("/bin/ln"), QStringLiteral("-s"),
                           target.mid(drive), link.mid(drive)});
        constexpr int patienceMs = 20000;
        const QDeadlineTimer patience(patienceMs); // nobody tells when it has been made
        while (!QFileInfo(link).isDir() && !patience.hasExpired())
            QThread::yieldCurrentThread();
    }
    return QFileInfo(link).isDir();
#else
    return QFile::link(target, link);
#endif
}

QString wireForm(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

UnreadableFolder::UnreadableFolder(const QString &above)
{
#ifdef Q_OS_LINUX
    made_ = QFile::encodeName(above) + "/caf\xe9";
    if (mkdir(made_.constData(), 0777) == 0)
        path = QFile::decodeName(made_);
#else
    Q_UNUSED(above)
#endif
}

UnreadableFolder::~UnreadableFolder()
{
#ifdef Q_OS_LINUX
    rmdir(made_.constData());
#endif
}
