#include "widgets/boxes/messagebox.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

void MessageBox::information(QWidget *parent, const BoxText &text, const QString &title)
{
    BoxQueue::add(parent, {{Kind::Information, title, text.shown, QMessageBox::Ok}, text, {}, {}});
}

void MessageBox::warning(QWidget *parent, const BoxText &text, const QString &title)
{
    BoxQueue::add(parent, {{Kind::Warning, title, text.shown, QMessageBox::Ok}, text, {}, {}});
}

void MessageBox::warning(QWidget *parent, const BoxText &text, QMessageBox::StandardButtons buttons,
                         Answered then)
{
    BoxQueue::add(
        parent, {{Kind::Warning, defaultTitle(), text.shown, buttons}, text, {}, std::move(then)});
}

void MessageBox::question(QWidget *parent, const BoxText &text,
                          QMessageBox::StandardButtons buttons, Answered then)
{
    BoxQueue::add(
        parent, {{Kind::Question, defaultTitle(), text.shown, buttons}, text, {}, std::move(then)});
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
    QList<Shown> all;
    for (;;) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
        const QList<Shown> more = boxscript::takeShown();
        if (more.isEmpty())
            return all;
        all += more;
    }
}
