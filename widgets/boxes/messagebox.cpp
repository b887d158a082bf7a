#include "widgets/boxes/messagebox.h"

#include "widgets/boxes/noticedialog.h"

QMessageBox::StandardButton MessageBox::information(QWidget *parent, const QString &text,
                                                    const QString &title,
                                                    QMessageBox::StandardButtons buttons,
                                                    Qt::TextFormat format)
{
    return NoticeDialog::ask({Kind::Information, title, text, buttons}, format, parent);
}

QMessageBox::StandardButton MessageBox::warning(QWidget *parent, const QString &text,
                                                const QString &title,
                                                QMessageBox::StandardButtons buttons,
                                                Qt::TextFormat format)
{
    return NoticeDialog::ask({Kind::Warning, title, text, buttons}, format, parent);
}

QMessageBox::StandardButton MessageBox::question(QWidget *parent, const QString &text,
                                                 const QString &title,
                                                 QMessageBox::StandardButtons buttons,
                                                 Qt::TextFormat format)
{
    return NoticeDialog::ask({Kind::Question, title, text, buttons}, format, parent);
}

void MessageBox::setNextAnswer(QMessageBox::StandardButton button)
{
    boxscript::queueAnswer(button);
}

void MessageBox::setScripted(bool scripted)
{
    boxscript::setScripted(scripted);
}

QList<MessageBox::Shown> MessageBox::takeShown()
{
    return boxscript::takeShown();
}
