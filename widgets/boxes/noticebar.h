#pragma once

#include "widgets/boxes/noticeline.h"

#include <QString>
#include <QVector>
#include <QWidget>

class QVBoxLayout;

/// What waits for the user, within a window: one line each, below the other in the order in which
/// they came, with the ways out in it. Nothing is stopped by it; without lines it takes no room.
/// All of it is reached by the tab key; Escape puts a line away that can be. Interface thread.
class NoticeBar : public QWidget
{
    Q_OBJECT

public:
    explicit NoticeBar(QWidget *parent = nullptr);

    /// Shows \a notice in the place of the line that has its id, or else below the others. A new
    /// line is announced to screen readers.
    void setNotice(const Notice &notice);
    /// Shows exactly these, in this order; lines that stay keep the focus.
    void setNotices(const QVector<Notice> &notices);
    void remove(const QString &id);
    void clear() { setNotices({}); }

    /// What is shown, in its order.
    QVector<Notice> notices() const;

private:
    NoticeLine *lineOf(const QString &id) const;
    void addLine(const Notice &notice);
    void takeAway(NoticeLine *line);
    void orderTabs();

    QVBoxLayout *layout_;
    QVector<NoticeLine *> lines_;
};
