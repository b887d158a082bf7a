#include "app/account/credentials.h"

#include "app/context/logging.h"
#include "app/context/ownerfile.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTextStream>

namespace {

/// Far more than the file ever holds.
constexpr qint64 largestFile = qint64(64) * 1024;

const QLatin1String accountKey("username=");
const QLatin1String passwordKey("password=");
const QLatin1String rememberKey("remember=");

QString encoded(const QString &password)
{
    return QString::fromLatin1(password.toUtf8().toBase64());
}

/// Empty unless \a text is the whole encoding of a password: somebody who logs in with half a
/// password is told that it is wrong, and sees only dots.
QString decoded(const QString &text)
{
    const QString password = QString::fromUtf8(QByteArray::fromBase64(text.toLatin1()));
    return encoded(password) == text ? password : QString();
}

/// A line break would turn the rest of the account into lines of their own.
QString onOneLine(QString text)
{
    return text.replace(QLatin1Char('\n'), QLatin1Char(' '))
        .replace(QLatin1Char('\r'), QLatin1Char(' '));
}

} // namespace

CredentialsFile::CredentialsFile(const QString &folder) : folder_(folder)
{
}

QString CredentialsFile::standardFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
}

QString CredentialsFile::path() const
{
    return folder_ + QStringLiteral("/login_config.txt");
}

Credentials CredentialsFile::read() const
{
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text) || file.size() > largestFile)
        return {};
    keepToOwner(file.fileName());
    Credentials credentials;
    QString password;
    QTextStream stream(&file);
    QString line;
    while (stream.readLineInto(&line)) {
        if (line.startsWith(accountKey))
            credentials.account = line.mid(accountKey.size());
        else if (line.startsWith(passwordKey))
            password = line.mid(passwordKey.size());
        else if (line.startsWith(rememberKey))
            credentials.remembered = line.mid(rememberKey.size()) == QLatin1String("1");
    }
    if (credentials.remembered)
        credentials.password = decoded(password);
    return credentials;
}

bool CredentialsFile::write(const Credentials &credentials) const
{
    qDebug() << "文件保存路径：" << folder_;
    QDir().mkpath(folder_);
    QSaveFile file(path());
    // Closed to others before the secret is in it.
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) {
        qCWarning(lcTessavo) << "credentials not saved:" << file.errorString();
        return false;
    }
    QTextStream stream(&file);
    stream << accountKey << onOneLine(credentials.account) << '\n';
    if (credentials.remembered)
        stream << passwordKey << encoded(credentials.password) << '\n';
    stream << rememberKey << (credentials.remembered ? '1' : '0') << '\n';
    stream.flush();
    if (stream.status() == QTextStream::Ok && file.commit())
        return true;
    qCWarning(lcTessavo) << "credentials not saved:" << file.errorString();
    return false;
}
