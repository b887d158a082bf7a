#pragma once

#include "widgets/boxes/boxqueue.h"

#include <QList>
#include <QMessageBox>
#include <QString>

/// The one way to tell or ask the user something in a box. Every call returns at once; the box
/// stops its own window and no other, and several of one window come up one after the other.
///
/// What is to follow an answer is the continuation, the last argument. It runs from the event loop,
/// and never when \a parent has died before. The world goes on while a box is open (a run ends, a
/// list becomes another), so it looks again at what it acts on, by identity and not by row. Escape,
/// "×" and a window that closes give the answer that changes nothing.
class MessageBox
{
public:
    MessageBox() = delete;

    using Kind = BoxRecord::Kind;
    using Shown = BoxRecord;
    using Answered = BoxQueue::Answered;

    static QString defaultTitle() { return QStringLiteral("温馨提示"); }

    static void information(QWidget *parent, const BoxText &text,
                            const QString &title = defaultTitle());
    static void warning(QWidget *parent, const BoxText &text,
                        const QString &title = defaultTitle());

    /// As a warning that leaves a choice.
    static void warning(QWidget *parent, const BoxText &text, QMessageBox::StandardButtons buttons,
                        Answered then);
    static void question(QWidget *parent, const BoxText &text, QMessageBox::StandardButtons buttons,
                         Answered then);

    /// Tests: the next box, of any kind, is not shown and answers \a button. Answers queue up.
    static void setNextAnswer(QMessageBox::StandardButton button);
    /// Tests: no box or file dialog is shown; those without a queued answer give the safe one
    /// (Cancel when offered, otherwise Ok; file dialogs: nothing chosen). Turning it off drops what
    /// is still queued.
    static void setScripted(bool scripted);
    /// Tests: the boxes that a script answered since the last call, oldest first. Those answers go
    /// through the event loop as a user's do; what is on its way arrives first, and continuations
    /// have run.
    static QList<Shown> takeShown();
};
