#pragma once

#include "widgets/boxes/boxscript.h"

#include <QList>
#include <QMessageBox>
#include <QString>

/// The one way to tell or ask the user something in a box. Each call waits for the answer in an
/// event loop of its own: whatever lives on the interface thread goes on meanwhile, so callers that
/// may be deleted by it guard themselves. Escape and "×" give the answer that changes nothing.
/// Long texts scroll. Texts are plain unless another format is told; what comes from the service
/// is escaped before it becomes part of rich text.
class MessageBox
{
public:
    MessageBox() = delete;

    using Kind = BoxRecord::Kind;
    using Shown = BoxRecord;

    static QString defaultTitle() { return QStringLiteral("温馨提示"); }

    static QMessageBox::StandardButton
    information(QWidget *parent, const QString &text, const QString &title = defaultTitle(),
                QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                Qt::TextFormat format = Qt::PlainText);
    static QMessageBox::StandardButton
    warning(QWidget *parent, const QString &text, const QString &title = defaultTitle(),
            QMessageBox::StandardButtons buttons = QMessageBox::Ok,
            Qt::TextFormat format = Qt::PlainText);
    static QMessageBox::StandardButton
    question(QWidget *parent, const QString &text, const QString &title = defaultTitle(),
             QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::Cancel,
             Qt::TextFormat format = Qt::PlainText);

    /// Tests: the next box, of any kind, is not shown and answers \a button. Answers queue up.
    static void setNextAnswer(QMessageBox::StandardButton button);
    /// Tests: no box or file dialog is shown; those without a queued answer give the safe one
    /// (Cancel when offered, otherwise Ok; file dialogs: nothing chosen). Turning it off drops what
    /// is still queued.
    static void setScripted(bool scripted);
    /// Tests: what was, or would have been, shown since the last call, oldest first.
    static QList<Shown> takeShown();
};
