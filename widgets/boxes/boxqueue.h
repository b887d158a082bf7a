#pragma once

#include "widgets/boxes/boxscript.h"
#include "widgets/boxes/boxtext.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>

class BoxDialog;
class QWidget;

/// The boxes of one window: they come up one after the other, in the order in which they were asked
/// for, and stop nothing but their window. While the window is minimised they wait, and its entry
/// in the task bar flashes. A window that has been closed is asked nothing more: what was open or
/// waiting gets the safe answer. Interface thread.
class BoxQueue : public QObject
{
    Q_OBJECT

public:
    using Answered = std::function<void(QMessageBox::StandardButton answer)>;

    struct Request
    {
        BoxRecord box;
        BoxText text;
        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
        Answered then; ///< may be empty
    };

    /// Shows the box when its turn comes. \a asker is a widget of the window, or none. Its answer
    /// always arrives from the event loop, never within this call, and not at all when \a asker has
    /// died before.
    static void add(QWidget *asker, Request request);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Waiting
    {
        QPointer<QWidget> asker;
        bool hasAsker;
        Request request;

        bool isOrphaned() const { return hasAsker && !asker; }
    };

    explicit BoxQueue(QWidget *window);
    static BoxQueue *of(QWidget *window);

    void comeUp();
    void open(const Waiting &box);
    void answerLater(QMessageBox::StandardButton answer);
    void finish(QMessageBox::StandardButton answer);
    bool hasGone() const;
    bool isUsed() const;
    QWidget *minimisedWindow() const;

    QWidget *window_; ///< parent; none for the boxes that have no window
    QList<Waiting> boxes_;
    bool up_ = false;       ///< the first is open, or its answer is on its way
    bool scripted_ = false; ///< that answer is a script's
    QPointer<BoxDialog> dialog_;
};
