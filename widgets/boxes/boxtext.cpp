#include "widgets/boxes/boxtext.h"

#include <utility>

namespace {

/// Of a text without lines to count by.
constexpr int shownCharacters = 20000;

/// Where the line with that number, from 0, begins; the text's length when there are fewer.
int startOfLine(const QString &text, int number)
{
    int start = 0;
    for (; number > 0; --number) {
        const int end = text.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            return text.size();
        start = end + 1;
    }
    return start;
}

} // namespace

BoxText::BoxText(const QString &plain) : shown(plain)
{
    const int end = startOfLine(plain, shownLines);
    if (end == plain.size() && end <= shownCharacters)
        return;
    shown = plain.left(qMin(end, shownCharacters));
    if (!shown.endsWith(QLatin1Char('\n')))
        shown += QLatin1Char('\n');
    shown += QStringLiteral("… 共 %1 行").arg(plain.count(QLatin1Char('\n')) + 1);
    whole = [plain] { return plain; };
}

BoxText::BoxText(const QString &heading, const QStringList &lines)
    : BoxText(list(
          heading, lines.toVector(), [](const QString &) { return true; },
          [](const QString &line) { return line; }))
{
}

BoxText::BoxText(QString shownText, std::nullptr_t) : shown(std::move(shownText))
{
}

BoxText BoxText::rich(const QString &html, const std::function<QString()> &whole)
{
    BoxText text(html, nullptr);
    text.format = Qt::RichText;
    text.whole = whole;
    return text;
}

BoxText BoxText::copyable() const
{
    BoxText text = *this;
    if (!text.whole)
        text.whole = [all = shown] { return all; };
    return text;
}

BoxText BoxText::withAction(const BoxAction &action) const
{
    BoxText text = *this;
    text.actions.append(action);
    return text;
}

BoxText BoxText::explained(const QString &below) const
{
    BoxText text = *this;
    text.explanation = below;
    return text;
}

BoxText BoxText::answering(int button, const QString &words) const
{
    BoxText text = *this;
    text.answers.insert(button, words);
    return text;
}

BoxText BoxText::endangering(int button, const QString &verb) const
{
    BoxText text = answering(button, verb);
    text.danger = button;
    return text;
}

QString BoxText::countLine(int count)
{
    return QStringLiteral("… 共 %1 条").arg(count);
}

QString BoxText::shownList(const QString &heading, const QStringList &first, int count)
{
    QStringList lines = QStringList(heading) + first;
    if (count > first.size())
        lines.append(countLine(count));
    return lines.join(QLatin1Char('\n'));
}
