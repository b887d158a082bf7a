#pragma once

#include "pending/pendinglines.h"

#include <QObject>
#include <QString>
#include <QVector>

class NoticeBar;

/// Shows in a tool's bar what waits from before, and hands on what the user chose to do about it.
/// Only while the branch is confirmed: before that nobody knows whose window it is. The bar's other
/// lines stay as they are. Interface thread.
class PendingBar : public QObject
{
    Q_OBJECT

public:
    /// \a window owns this; \a bar is of it.
    PendingBar(QWidget *window, NoticeBar *bar);

    /// The counts of one kind, by branch, take the place of those of that kind.
    void setCounts(pendinglines::Kind kind, const QVector<pendinglines::Count> &counts);
    /// The branch that the window works in; an empty one hides all.
    void setBranch(const QString &branch);

signals:
    /// The user chose it, and confirmed where that is asked for. \a branch is the line's.
    void taken(pendinglines::Kind kind, pendinglines::Offer offer, const QString &branch);

private:
    void show();
    void take(const pendinglines::Line &line, pendinglines::Offer offer);

    QWidget *window_;
    NoticeBar *bar_;
    QString branch_;
    QVector<pendinglines::Count> counts_;
    QStringList shownIds_;
};
