#include "files/safename.h"

#include "platform/pathform.h"

#include <QStringList>

#include <algorithm>

namespace {

bool isIllegal(QChar character)
{
    static const QString forbidden = QStringLiteral("<>:\"/\\|?*");
    return character < QLatin1Char(' ') || character == QChar(0x7F) ||
           forbidden.contains(character);
}

/// Half a character has no name on a disk: it would become another one on the way there.
void replaceHalfCharacters(QString *name)
{
    for (int at = 0; at < name->size(); ++at) {
        const bool isPair = name->at(at).isHighSurrogate() && at + 1 < name->size() &&
                            name->at(at + 1).isLowSurrogate();
        if (isPair)
            ++at;
        else if (name->at(at).isSurrogate())
            (*name)[at] = QLatin1Char('_');
    }
}

/// What stands before the first dot: the part of a name that decides whether it is a device.
QString stemOf(const QString &name)
{
    return name.left(name.indexOf(QLatin1Char('.')));
}

QString withoutTrailingDotsAndBlanks(QString name)
{
    while (name.endsWith(QLatin1Char('.')) || name.endsWith(QLatin1Char(' ')))
        name.chop(1);
    return name;
}

/// Cuts \a name before its suffix until it fits; never through the middle of a character.
QString shortened(const QString &name)
{
    constexpr int longestSuffix = 16;
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const bool hasSuffix = dot > 0 && name.size() - dot <= longestSuffix;
    const QString suffix = hasSuffix ? name.mid(dot) : QString();
    const QString base = platform::fittingStart(hasSuffix ? name.left(dot) : name, suffix);
    return withoutTrailingDotsAndBlanks(base) + suffix;
}

QString withoutDevice(QString name)
{
    if (isDeviceName(name))
        name.insert(stemOf(name).size(), QLatin1Char('_'));
    return name;
}

} // namespace

bool isDeviceName(const QString &component)
{
    static const QStringList devices = {
        QStringLiteral("CON"),    QStringLiteral("PRN"),    QStringLiteral("AUX"),
        QStringLiteral("NUL"),    QStringLiteral("CONIN$"), QStringLiteral("CONOUT$"),
        QStringLiteral("CLOCK$"),
    };
    const QString name = stemOf(component).trimmed().toUpper();
    if (devices.contains(name))
        return true;
    static const QString portDigits = QStringLiteral("0123456789¹²³");
    return name.size() == 4 &&
           (name.startsWith(QLatin1String("COM")) || name.startsWith(QLatin1String("LPT"))) &&
           portDigits.contains(name.at(3));
}

QString safeFileName(const QString &name)
{
    QString safe = name;
    std::replace_if(safe.begin(), safe.end(), isIllegal, QLatin1Char('_'));
    replaceHalfCharacters(&safe);
    // At its start it is taken for a mark of the encoding when the name is read again, and dropped.
    if (safe.startsWith(QChar(QChar::ByteOrderMark)))
        safe[0] = QLatin1Char('_');
    safe = withoutTrailingDotsAndBlanks(safe);
    // Before it is cut, and after: cutting may leave a device's name of a longer one.
    safe = withoutDevice(safe);
    if (!platform::nameFits(safe))
        safe = withoutDevice(shortened(safe));
    return safe.isEmpty() ? QStringLiteral("_") : safe;
}
