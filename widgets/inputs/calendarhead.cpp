#include "widgets/inputs/calendarhead.h"

#include "widgets/theme/theme.h"

#include <QBoxLayout>
#include <QCalendarWidget>
#include <QMenu>
#include <QSpinBox>
#include <QToolButton>

namespace {

QString monthText(int month)
{
    return QStringLiteral("%1月").arg(month);
}

/// The style's pictures keep their size at every scale; characters grow with the text.
void useText(QCalendarWidget *calendar, const QString &button, const QString &text,
             const QString &meaning)
{
    if (auto *found = calendar->findChild<QToolButton *>(button)) {
        found->setIcon(QIcon());
        found->setText(text);
        found->setAccessibleName(meaning);
    }
}

} // namespace

CalendarHead *CalendarHead::of(QCalendarWidget *calendar)
{
    auto *head = calendar->findChild<CalendarHead *>({}, Qt::FindDirectChildrenOnly);
    return head ? head : new CalendarHead(calendar);
}

CalendarHead::CalendarHead(QCalendarWidget *calendar)
    : QObject(calendar)
    , calendar_(calendar)
    , year_(calendar->findChild<QToolButton *>(QStringLiteral("qt_calendar_yearbutton")))
    , month_(calendar->findChild<QToolButton *>(QStringLiteral("qt_calendar_monthbutton")))
{
    if (!year_ || !month_)
        return;
    if (auto *row = qobject_cast<QBoxLayout *>(year_->parentWidget()->layout())) {
        row->removeWidget(year_);
        row->insertWidget(row->indexOf(month_), year_);
        QWidget::setTabOrder(year_, month_);
    }
    if (month_->menu())
        month_->menu()->setStyleSheet(theme::menuStyle());
    // The button comes back, with the bare number, after a year was typed in its place.
    if (auto *typed = calendar->findChild<QSpinBox *>(QStringLiteral("qt_calendar_yearedit"))) {
        typed->setAccessibleName(QStringLiteral("年份"));
        connect(typed, &QSpinBox::editingFinished, this, &CalendarHead::writeAgain);
    }
    connect(calendar, &QCalendarWidget::currentPageChanged, this, &CalendarHead::writeAgain);
}

void CalendarHead::writeAgain()
{
    useText(calendar_, QStringLiteral("qt_calendar_prevmonth"), QStringLiteral("‹"),
            QStringLiteral("上个月"));
    useText(calendar_, QStringLiteral("qt_calendar_nextmonth"), QStringLiteral("›"),
            QStringLiteral("下个月"));
    if (!year_ || !month_)
        return;
    year_->setText(QStringLiteral("%1年").arg(calendar_->yearShown()));
    month_->setText(monthText(calendar_->monthShown()));
    if (!month_->menu())
        return;
    const QList<QAction *> months = month_->menu()->actions();
    for (int index = 0; index < months.size(); ++index)
        months.at(index)->setText(monthText(index + 1));
}
