#include "marks/window/marknotices.h"

#include "marks/window/markdetails.h"
#include "widgets/boxes/noticebar.h"

using marks::Line;
using marks::Way;

MarkNotices::MarkNotices(QWidget *window, NoticeBar *bar, QObject *parent)
    : QObject(parent), window_(window), bar_(bar)
{
}

void MarkNotices::show(const QVector<marks::OrderLook> &looks, bool mayRename)
{
    looks_ = looks;
    QStringList ids;
    const QVector<Line> lines = marks::linesOf(looks, mayRename);
    for (const Line &line : lines) {
        Notice notice;
        notice.id = QStringLiteral("marks.") + line.id;
        notice.severity = line.topic == Line::Topic::Imported ? Notice::Severity::Information
                                                              : Notice::Severity::Warning;
        notice.text = line.text;
        for (const Way way : line.ways)
            notice.actions.append({marks::textOf(way), [this, line, way] { take(line, way); }});
        bar_->setNotice(notice);
        ids.append(notice.id);
    }
    for (const QString &id : qAsConst(shown_)) {
        if (!ids.contains(id))
            bar_->remove(id);
    }
    shown_ = ids;
}

void MarkNotices::take(const Line &line, Way way)
{
    switch (way) {
    case Way::View:
        (new MarkDetails(window_, line.text, marks::detailsOf(line, looks_)))->open();
        break;
    case Way::Skip:
        emit skipped(line);
        break;
    case Way::Rename:
        emit renamed(line);
        break;
    }
}
