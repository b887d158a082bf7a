#include "widgets/boxes/noticebar.h"

#include "widgets/theme/theme.h"

#include <QAccessible>
#include <QApplication>
#include <QVBoxLayout>

#include <algorithm>

NoticeBar::NoticeBar(QWidget *parent) : QWidget(parent), layout_(new QVBoxLayout(this))
{
    setObjectName(QStringLiteral("noticeBar"));
    setAccessibleName(QStringLiteral("待处理事项"));
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(theme::hairline());
    hide();
}

void NoticeBar::setNotice(const Notice &notice)
{
    if (NoticeLine *line = lineOf(notice.id))
        line->setNotice(notice);
    else
        addLine(notice);
    orderTabs();
}

void NoticeBar::setNotices(const QVector<Notice> &notices)
{
    const QVector<NoticeLine *> before = lines_;
    for (NoticeLine *line : before) {
        const bool stays =
            std::any_of(notices.cbegin(), notices.cend(),
                        [line](const Notice &notice) { return notice.id == line->notice().id; });
        if (!stays)
            takeAway(line);
    }
    for (int place = 0; place < notices.size(); ++place) {
        setNotice(notices.at(place));
        NoticeLine *line = lineOf(notices.at(place).id);
        const int from = lines_.indexOf(line);
        if (from == place)
            continue;
        lines_.move(from, place);
        layout_->removeWidget(line);
        layout_->insertWidget(place, line);
    }
    orderTabs();
}

void NoticeBar::remove(const QString &id)
{
    if (NoticeLine *line = lineOf(id))
        takeAway(line);
}

QVector<Notice> NoticeBar::notices() const
{
    QVector<Notice> notices;
    for (const NoticeLine *line : lines_)
        notices.append(line->notice());
    return notices;
}

NoticeLine *NoticeBar::lineOf(const QString &id) const
{
    const auto found = std::find_if(lines_.cbegin(), lines_.cend(), [&id](const NoticeLine *line) {
        return line->notice().id == id;
    });
    return found == lines_.cend() ? nullptr : *found;
}

void NoticeBar::addLine(const Notice &notice)
{
    auto *line = new NoticeLine(notice);
    connect(line, &NoticeLine::dismissClicked, this, [this, line] {
        const auto dismissed = line->notice().dismissed;
        takeAway(line);
        dismissed();
    });
    lines_.append(line);
    layout_->addWidget(line);
    line->show(); // or the layout would, later, and it could not have the focus until then
    show();
    QAccessibleEvent alert(line, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void NoticeBar::takeAway(NoticeLine *line)
{
    const int place = lines_.indexOf(line);
    const bool hadFocus = line->isAncestorOf(QApplication::focusWidget());
    lines_.removeAt(place);
    if (hadFocus && !lines_.isEmpty()) {
        const auto buttons = lines_.at(std::min(place, lines_.size() - 1))->buttons();
        const auto next = std::find_if(buttons.cbegin(), buttons.cend(), [](const QWidget *button) {
            return button->isVisible() && button->isEnabled();
        });
        if (next != buttons.cend())
            (*next)->setFocus();
    }
    layout_->removeWidget(line);
    line->hide(); // the focus goes on to what comes next in the window
    line->deleteLater();
    if (lines_.isEmpty())
        hide();
}

/// What is made later would be reached after all else of the window.
void NoticeBar::orderTabs()
{
    QWidget *before = previousInFocusChain();
    while (before != this &&
           (before->focusPolicy() == Qt::NoFocus || before->focusProxy() || isAncestorOf(before)))
        before = before->previousInFocusChain();
    for (const NoticeLine *line : qAsConst(lines_)) {
        const QVector<QWidget *> buttons = line->buttons();
        for (QWidget *button : buttons) {
            setTabOrder(before, button);
            before = button;
        }
    }
}
