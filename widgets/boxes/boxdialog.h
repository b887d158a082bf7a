#pragma once

#include "widgets/boxes/boxscript.h"
#include "widgets/boxes/boxtext.h"

#include <QDialog>
#include <QList>
#include <QString>

class QAbstractScrollArea;
class QHBoxLayout;
class QPushButton;

/// The dialog behind message boxes and confirmations: a symbol, a text that scrolls when it is long
/// and can be selected, and buttons with Chinese texts; "复制" when the text is not all. Escape and
/// "×" give the safe answer. It is shown by BoxQueue.
class BoxDialog : public QDialog
{
    Q_OBJECT

public:
    /// The text of \a box is \a text as shown.
    BoxDialog(const BoxRecord &box, const BoxText &text, QWidget *parent);

    /// The button that Enter presses at first; otherwise the one that agrees. Where one is
    /// dangerous, it is the safe one whatever is set here.
    void setDefaultButton(QMessageBox::StandardButton button);
    QPushButton *button(QMessageBox::StandardButton button) const;

    /// The answer once the dialog was closed; the safe one before.
    QMessageBox::StandardButton answer() const { return answer_; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Choice
    {
        QMessageBox::StandardButton which;
        QPushButton *button;
    };

    QAbstractScrollArea *textArea(const QString &text, Qt::TextFormat format);
    QHBoxLayout *addButtons(QMessageBox::StandardButtons buttons, const QHash<int, QString> &names);
    void addCopyButton(QHBoxLayout *row, const std::function<QString()> &whole);
    void addAction(QHBoxLayout *row, const BoxAction &action);
    QPushButton *addBesides(QHBoxLayout *row, const QString &text);
    void warnOf(QMessageBox::StandardButton danger);

    QList<Choice> choices_;
    QMessageBox::StandardButton answer_;
    bool isDangerous_ = false;
};
