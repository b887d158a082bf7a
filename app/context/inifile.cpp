#include "app/context/inifile.h"

#include "app/context/logging.h"

#include <QFile>
#include <QTextStream>

namespace {

/// Far more than anybody writes into such a file.
constexpr qint64 largestFile = qint64(64) * 1024;

bool isComment(const QString &line)
{
    return line.isEmpty() || line.startsWith(QLatin1Char(';')) || line.startsWith(QLatin1Char('#'));
}

bool isEnclosed(const QString &text, QLatin1Char first, QLatin1Char last)
{
    return text.size() >= 2 && text.startsWith(first) && text.endsWith(last);
}

QString withoutQuotes(const QString &value)
{
    const QLatin1Char quote('"');
    return isEnclosed(value, quote, quote) ? value.mid(1, value.size() - 2) : value;
}

} // namespace

QMap<QString, QString> readIniFile(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile) {
        qCWarning(lcTessavo) << "not read:" << path << file.errorString();
        return {};
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    QMap<QString, QString> settings;
    QString section;
    QString line;
    while (stream.readLineInto(&line)) {
        line = line.trimmed();
        const int equals = line.indexOf(QLatin1Char('='));
        if (isComment(line))
            continue;
        if (isEnclosed(line, QLatin1Char('['), QLatin1Char(']')))
            section = line.mid(1, line.size() - 2).trimmed().toLower();
        else if (equals > 0)
            settings.insert(section + QLatin1Char('/') + line.left(equals).trimmed().toLower(),
                            withoutQuotes(line.mid(equals + 1).trimmed()));
        else
            qCWarning(lcTessavo) << "no setting in" << path << ":" << line;
    }
    return settings;
}
