#include "app/diagnosis/masking.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

using Match = QRegularExpressionMatch;

template <typename With>
QString replaced(const QString &text, const QRegularExpression &what, With with)
{
    QString made;
    int from = 0;
    QRegularExpressionMatchIterator found = what.globalMatch(text);
    while (found.hasNext()) {
        const Match match = found.next();
        made += text.midRef(from, match.capturedStart() - from);
        made += with(match);
        from = match.capturedEnd();
    }
    return made + text.midRef(from);
}

/// Names of customers are Chinese. A few words of the log's own follow paths in its lines.
QString withoutNames(const QString &text)
{
    static const QRegularExpression names(QStringLiteral("\\p{Han}+"));
    static const QStringList own{QStringLiteral("状态"), QStringLiteral("成功"),
                                 QStringLiteral("失败"), QStringLiteral("信息"),
                                 QStringLiteral("错误"), QStringLiteral("耗时")};
    return replaced(text, names, [](const Match &match) {
        return own.contains(match.captured()) ? match.captured() : QStringLiteral("某");
    });
}

/// One value of a form body. What a user typed or a customer is called is in words; ids, counts
/// and dates are not.
QString maskedValue(const Match &match)
{
    static const QRegularExpression harmless(QStringLiteral("^[0-9.,:_ -]*$"));
    const QString value = match.captured(2);
    return match.captured(1) + (harmless.match(value).hasMatch() ? value : QStringLiteral("***"));
}

QString withoutValues(const QString &line)
{
    static const QRegularExpression body(QStringLiteral("(?<=paras: ).*"));
    static const QRegularExpression field(QStringLiteral("([A-Za-z_][A-Za-z0-9_]*=)([^&\"\\n]*)"));
    return replaced(line, body, [](const Match &match) {
        return replaced(match.captured(), field, maskedValue);
    });
}

QString withoutSecrets(const QString &line)
{
    static const QRegularExpression secret(
        QStringLiteral("((?:password|token|passwd|pwd)\"?\\s*[=:]\\s*\"?)[^&\"\\s,}]+"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression digest(QStringLiteral("\\b[0-9a-fA-F]{32,}\\b"));
    const QString shorter = replaced(
        line, secret, [](const Match &match) { return match.captured(1) + QStringLiteral("***"); });
    return replaced(shorter, digest, [](const Match &) { return QStringLiteral("***"); });
}

QString withoutNumbers(const QString &line)
{
    static const QRegularExpression mail(QStringLiteral("[\\w.+-]+@[\\w-]+\\.[\\w.-]+"));
    // Mobile numbers, with or without the country's, and those with an area code.
    static const QRegularExpression telephone(
        QStringLiteral("(?<![0-9])(?:\\+?86[ -]?)?1[3-9][0-9](?:[ -]?[0-9]{4}){2}(?![0-9])"
                       "|(?<![0-9])0[0-9]{2,3}-[0-9]{7,8}(?![0-9])"));
    const auto stars = [](const Match &) { return QStringLiteral("***"); };
    return replaced(replaced(line, mail, stars), telephone, stars);
}

/// From where a path begins, to the end of its line or of the quotes round it; and names of photos
/// that stand alone.
QString withoutPathNames(const QString &line)
{
    static const QRegularExpression user(
        QStringLiteral("([\\\\/](?:Users|home|Documents and Settings)[\\\\/]+)[^\\\\/\"]+"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression path(QStringLiteral("(?:[A-Za-z]:)?[\\\\/][^\"\\n]*"));
    static const QRegularExpression photo(
        QStringLiteral("[^\\s\":：,，]*\\p{Han}[^\\s\":：,，]*\\.[A-Za-z0-9]{2,4}(?![A-Za-z0-9])"));
    const auto nameless = [](const Match &match) { return withoutNames(match.captured()); };
    const QString stranger = replaced(
        line, user, [](const Match &match) { return match.captured(1) + QStringLiteral("***"); });
    return replaced(replaced(stranger, path, nameless), photo, nameless);
}

} // namespace

QString masked(const QString &text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = withoutNumbers(withoutPathNames(withoutSecrets(withoutValues(line))));
    return lines.join(QLatin1Char('\n'));
}
