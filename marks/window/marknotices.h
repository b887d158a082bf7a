#pragma once

#include "marks/rules/marklines.h"

#include <QObject>
#include <QStringList>
#include <QVector>

class NoticeBar;
class QWidget;

/// Shows in a bar what the marks mean for the next start, with the ways out. Interface thread.
class MarkNotices : public QObject
{
    Q_OBJECT

public:
    /// \a bar, and dialogs, belong to \a window.
    MarkNotices(QWidget *window, NoticeBar *bar, QObject *parent);

    /// \a mayRename: whether files may get other names than their own.
    void show(const QVector<marks::OrderLook> &looks, bool mayRename);

signals:
    /// The files at \a line are to be left out of the choice, or to be imported under other names.
    void skipped(const marks::Line &line);
    void renamed(const marks::Line &line);

private:
    void take(const marks::Line &line, marks::Way way);

    QWidget *window_;
    NoticeBar *bar_;
    QVector<marks::OrderLook> looks_;
    QStringList shown_; ///< ids of the lines in the bar, which others use, too
};
