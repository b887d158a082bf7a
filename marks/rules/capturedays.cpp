#include "marks/rules/capturedays.h"

#include "files/paths.h"

#include <QSet>

#include <algorithm>

namespace marks {

namespace {

constexpr int lastHourOfNight = 6;
constexpr int daysListed = 3;

/// With the year where that of \a beside is another one.
QString dayText(const QDate &day, const QDate &beside)
{
    return day.toString(day.year() == beside.year() ? QStringLiteral("MM-dd")
                                                    : QStringLiteral("yyyy-MM-dd"));
}

QString daysText(const QVector<Capture> &photos, const QDate &beside)
{
    QSet<QDate> found;
    for (const Capture &photo : photos)
        found.insert(photo.taken.date());
    QVector<QDate> days(found.cbegin(), found.cend());
    std::sort(days.begin(), days.end());
    if (days.size() > daysListed)
        return QStringLiteral("%1 至 %2")
            .arg(dayText(days.first(), beside), dayText(days.last(), beside));
    QStringList texts;
    for (const QDate &day : qAsConst(days))
        texts.append(dayText(day, beside));
    return texts.join(QStringLiteral("、"));
}

} // namespace

QVector<int> sampleOf(int count, int most)
{
    const int taken = std::min(count, most);
    QVector<int> positions;
    for (int step = 0; step < taken; ++step)
        positions.append(taken == 1 ? 0 : int(qint64(step) * (count - 1) / (taken - 1)));
    return positions;
}

QDate shootingDayOf(const QString &shotDate)
{
    const ShootDate parts = parseShootDate(shotDate.trimmed().section(QLatin1Char(' '), 0, 0));
    const QDate day(parts.year.toInt(), parts.month.toInt(), parts.day.toInt());
    return day.year() > 1970 ? day : QDate(); // what cannot be read is the first day of 1970
}

bool belongsTo(const QDateTime &taken, const QDate &day)
{
    return taken.date() == day ||
           (taken.date() == day.addDays(1) && taken.time().hour() < lastHourOfNight);
}

QVector<Capture> takenElsewhen(const Captures &captures, const QDate &day)
{
    QVector<Capture> others;
    if (!day.isValid())
        return others;
    for (const Capture &photo : captures.photos) {
        if (!belongsTo(photo.taken, day))
            others.append(photo);
    }
    return others;
}

QString captureSentence(const Captures &captures, const QDate &day, const QString &what)
{
    const QVector<Capture> others = takenElsewhen(captures, day);
    if (others.isEmpty())
        return {};
    const bool isPart = others.size() < captures.photos.size();
    const QDate first = others.first().taken.date();
    QString sentence = (isPart ? QStringLiteral("部分") : QString()) +
                       QStringLiteral("%1拍摄于 %2，订单拍照日期 %3")
                           .arg(what, daysText(others, day), dayText(day, first));
    if (captures.lookedAt < captures.chosen)
        sentence += QStringLiteral("（抽查 %1/%2）").arg(captures.lookedAt).arg(captures.chosen);
    return sentence;
}

} // namespace marks
