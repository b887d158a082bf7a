#pragma once

#include <QObject>

class QCalendarWidget;
class QToolButton;

/// Heads a calendar as dates are written here: the year before the month, "2026年 11月". The
/// framework would put the month's name in front. Belongs to its calendar; interface thread.
class CalendarHead : public QObject
{
    Q_OBJECT

public:
    /// The one of \a calendar, made when there is none yet.
    static CalendarHead *of(QCalendarWidget *calendar);

    /// The framework writes its own texts when the calendar's language is set.
    void writeAgain();

private:
    explicit CalendarHead(QCalendarWidget *calendar);

    QCalendarWidget *calendar_;
    QToolButton *year_;
    QToolButton *month_;
};
