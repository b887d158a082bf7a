#pragma once

#include "widgets/boxes/boxscript.h"

#include <QDialog>
#include <QList>
#include <QString>

class QAbstractScrollArea;
class QPushButton;

/// The dialog behind message boxes and confirmations: a symbol, a text that scrolls when it is long
/// and can be selected, and buttons with Chinese texts. Escape and "×" give the safe answer.
class NoticeDialog : public QDialog
{
    Q_OBJECT

public:
    NoticeDialog(const BoxRecord &box, Qt::TextFormat format, QWidget *parent);

    /// The button that Enter presses at first; otherwise the one that agrees.
    void setDefaultButton(QMessageBox::StandardButton button);
    QPushButton *button(QMessageBox::StandardButton button) const;

    /// The answer once the dialog was closed; the safe one before.
    QMessageBox::StandardButton answer() const { return answer_; }

    /// The answer that the script gives, or else the user.
    static QMessageBox::StandardButton
    ask(const BoxRecord &box, Qt::TextFormat format, QWidget *parent,
        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Choice
    {
        QMessageBox::StandardButton which;
        QPushButton *button;
    };

    QAbstractScrollArea *textArea(const QString &text, Qt::TextFormat format);
    void addButtons(QMessageBox::StandardButtons buttons);

    QList<Choice> choices_;
    QMessageBox::StandardButton answer_;
};
