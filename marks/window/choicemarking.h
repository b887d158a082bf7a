#pragma once

#include "marks/run/choicemarks.h"
#include "marks/window/marknotices.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVector>

#include <functional>

class NoticeBar;
class QWidget;

/// The marks of the files chosen in a window that imports: has them looked at whenever a choice
/// changes, tells those of the order shown, and says in the bar above the start button what they
/// mean. While an import runs it does nothing. Interface thread.
class ChoiceMarking : public QObject
{
    Q_OBJECT

public:
    using Choices = std::function<QVector<marks::Choice>()>;

    /// \a choices: what waits to be imported now, of all orders. \a bar, and dialogs, belong to
    /// \a window, which owns this.
    ChoiceMarking(QWidget *window, NoticeBar *bar, Choices choices);

    /// Whether files may get other names than their own.
    void setRenaming(bool mayRename) { mayRename_ = mayRename; }
    /// The order whose files the window shows now; empty for none.
    void setShown(const OrderIdentity &order);
    void setImporting(bool importing);
    /// Orders or their files may be others than before.
    void refresh();

signals:
    /// Of the order shown, by source.
    void marked(const QHash<QString, marks::Mark> &fileMarks);
    /// How many files of the order shown have each mark; none when another order comes, since a
    /// filter by marks is for the order that it was chosen in.
    void counted(const QHash<marks::Mark, int> &counts);
    /// The user wants these files, by their orders, left out of the choice, or imported under other
    /// names.
    void skipped(const QHash<OrderIdentity, QSet<QString>> &sources);
    void renamed(const QHash<OrderIdentity, QSet<QString>> &sources);

private:
    void showMarks();
    void showNotices();

    const Choices choices_;
    bool mayRename_ = true;
    bool importing_ = false;
    OrderIdentity shown_;
    ChoiceMarks marks_;
    MarkNotices notices_;
};
