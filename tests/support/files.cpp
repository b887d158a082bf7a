#include "tests/support/files.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

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
    return QProcess::execute(QStringLiteral("cmd"),
                             {QStringLiteral("/c"), QStringLiteral("mklink"), QStringLiteral("/J"),
                              native(link), native(target)}) == 0 &&
           QFileInfo(link).isDir();
#else
    return QFile::link(target, link);
#endif
}

QString wireForm(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}
