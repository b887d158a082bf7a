#include "marks/rules/marklines.h"

#include <QMap>

#include <tuple>

namespace marks {

namespace {

/// What lines are made of: one order's files of one topic.
void collect(Line *line, const OrderLook &look, const MarkedFile &file)
{
    line->sources[look.marks.order].insert(file.file.source);
}

int countOf(const Line &line)
{
    int count = 0;
    for (const QSet<QString> &sources : line.sources)
        count += sources.size();
    return count;
}

Line lineOf(Line::Topic topic, const QString &id, const QVector<Way> &ways)
{
    Line line;
    line.topic = topic;
    line.id = id;
    line.ways = ways;
    return line;
}

/// With the year when that is not this one's.
QString importDayText(const QDate &day)
{
    const bool isThisYear = day.year() == QDate::currentDate().year();
    return day.toString(isThisYear ? QStringLiteral("MM-dd") : QStringLiteral("yyyy-MM-dd"));
}

QVector<Line> otherOrderLines(const QVector<OrderLook> &looks)
{
    QMap<std::tuple<QDate, QString>, Line> lines;
    for (const OrderLook &look : looks) {
        for (const MarkedFile &file : look.marks.files) {
            if (!file.elsewhere || file.mark == Mark::Imported)
                continue;
            const std::tuple key(file.elsewhere->day, file.elsewhere->orderNumber);
            if (!lines.contains(key)) {
                lines.insert(
                    key, lineOf(Line::Topic::OtherOrder,
                                QStringLiteral("other %1 %2")
                                    .arg(std::get<0>(key).toString(Qt::ISODate), std::get<1>(key)),
                                {Way::View}));
            }
            collect(&lines[key], look, file);
        }
    }
    QVector<Line> all;
    for (auto line = lines.begin(); line != lines.end(); ++line) {
        line->text = QStringLiteral("%1 个文件 %2 已导入 %3")
                         .arg(QString::number(countOf(*line)),
                              importDayText(std::get<0>(line.key())), std::get<1>(line.key()));
        all.append(*line);
    }
    return all;
}

QVector<Line> captureLines(const QVector<OrderLook> &looks)
{
    QVector<Line> lines;
    for (const OrderLook &look : looks) {
        const QString sentence = captureSentence(look.captures, look.shootingDay, look.fileWord);
        if (sentence.isEmpty())
            continue;
        Line line = lineOf(Line::Topic::Captured,
                           QStringLiteral("captured ") + look.marks.order.branch +
                               QLatin1Char(' ') + look.marks.order.orderPhotoId,
                           {Way::View});
        // Where several are about to start, which one is meant has to be said.
        line.text =
            looks.size() > 1 ? look.marks.orderNumber + QLatin1Char(' ') + sentence : sentence;
        const auto others = takenElsewhen(look.captures, look.shootingDay);
        for (const Capture &capture : others)
            line.sources[look.marks.order].insert(capture.source);
        lines.append(line);
    }
    return lines;
}

QString noteOf(Line::Topic topic, const OrderLook &look, const MarkedFile &file)
{
    if (topic != Line::Topic::Captured)
        return file.elsewhere && topic == Line::Topic::OtherOrder ? file.elsewhere->orderNumber
                                                                  : QString();
    for (const Capture &capture : look.captures.photos) {
        if (capture.source == file.file.source) {
            return capture.taken.toString(QStringLiteral("yyyy-MM-dd HH:mm")) +
                   (capture.isFileTime ? QStringLiteral("（文件时间）") : QString());
        }
    }
    return {};
}

} // namespace

QString textOf(Way way)
{
    switch (way) {
    case Way::View:
        return QStringLiteral("查看");
    case Way::Skip:
        return QStringLiteral("跳过");
    case Way::Rename:
        return QStringLiteral("改名导入");
    }
    Q_UNREACHABLE();
}

QVector<Line> linesOf(const QVector<OrderLook> &looks, bool mayRename)
{
    QVector<Way> waysOfDiffering = {Way::View, Way::Skip};
    if (mayRename)
        waysOfDiffering.append(Way::Rename);
    Line differs = lineOf(Line::Topic::Differs, QStringLiteral("differs"), waysOfDiffering);
    Line imported = lineOf(Line::Topic::Imported, QStringLiteral("imported"), {Way::Skip});
    for (const OrderLook &look : looks) {
        for (const MarkedFile &file : look.marks.files) {
            if (file.mark == Mark::Differs)
                collect(&differs, look, file);
            else if (file.mark == Mark::Imported)
                collect(&imported, look, file);
        }
    }
    QVector<Line> lines;
    if (countOf(differs) > 0) {
        differs.text = QStringLiteral("%1 个同名文件内容不同，导入将替换").arg(countOf(differs));
        lines.append(differs);
    }
    if (countOf(imported) > 0) {
        imported.text = QStringLiteral("%1 个已导入").arg(countOf(imported));
        lines.append(imported);
    }
    return lines + otherOrderLines(looks) + captureLines(looks);
}

QVector<Detail> detailsOf(const Line &line, const QVector<OrderLook> &looks)
{
    QVector<Detail> details;
    for (const OrderLook &look : looks) {
        const QSet<QString> sources = line.sources.value(look.marks.order);
        for (const MarkedFile &file : look.marks.files) {
            if (!sources.contains(file.file.source))
                continue;
            Detail detail;
            detail.orderNumber = look.marks.orderNumber;
            detail.file = file.file;
            detail.note = noteOf(line.topic, look, file);
            if (line.topic == Line::Topic::OtherOrder) {
                detail.other = file.elsewhere->standing;
                detail.otherPath = file.elsewhere->target;
            } else if (line.topic != Line::Topic::Captured && file.standing) {
                detail.other = file.standing;
                detail.otherPath = file.standing->path;
            }
            details.append(detail);
        }
    }
    return details;
}

} // namespace marks
