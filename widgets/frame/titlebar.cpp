#include "widgets/frame/titlebar.h"

#include "look/colours.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QToolButton>
#include <QWindow>

TitleBar::TitleBar(QWidget *parent) : QWidget(parent), titleLabel_(new PlainLabel(this))
{
    setObjectName(QStringLiteral("titleBar"));
    setFixedHeight(theme::titleBarHeight());
    titleLabel_->setObjectName(QStringLiteral("titleLabel"));
    // The label must never hold up the narrowing of the window: what does not fit is elided.
    titleLabel_->setMinimumWidth(1);
    titleLabel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(theme::margin(), 0, theme::spacing(), 0);
    layout->setSpacing(theme::titleButtonSpacing());
    layout->addWidget(titleLabel_, 1);
    layout->addStretch(); // keeps the buttons at the right where no title is shown
    minimizeButton_ =
        addButton(QStringLiteral("−"), QStringLiteral("minimizeButton"), QStringLiteral("最小化"));
    closeButton_ =
        addButton(QStringLiteral("×"), QStringLiteral("closeButton"), QStringLiteral("关闭"));
    setStyleSheet(theme::titleBarStyle());
    setPlain(false);
    connect(minimizeButton_, &QToolButton::clicked, this, &TitleBar::minimizeRequested);
    connect(closeButton_, &QToolButton::clicked, this, &TitleBar::closeRequested);
}

QToolButton *TitleBar::addButton(const QString &text, const QString &name, const QString &meaning)
{
    auto *button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(text);
    setPlainTip(button, meaning);
    button->setAccessibleName(meaning);
    button->setFixedSize(theme::titleButtonSize(), theme::titleButtonSize());
    button->setFocusPolicy(Qt::TabFocus);
    layout()->addWidget(button);
    return button;
}

void TitleBar::setTitle(const QString &title)
{
    title_ = title;
    showTitle();
}

void TitleBar::setCard(const QString &card)
{
    card_ = card;
    showTitle();
}

void TitleBar::setBranch(const QString &branch)
{
    branch_ = branch.simplified();
    showTitle();
}

QString TitleBar::wholeTitle() const
{
    QStringList parts{title_};
    if (card_ != title_)
        parts.append(card_);
    parts.append(branch_);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

void TitleBar::showTitle()
{
    const QString whole = wholeTitle();
    const QString shown =
        titleLabel_->fontMetrics().elidedText(whole, Qt::ElideRight, titleLabel_->width());
    titleLabel_->setText(shown);
    titleLabel_->setAccessibleName(whole);
    setPlainTip(titleLabel_, shown == whole ? QString() : whole);
}

void TitleBar::setMaximizable(bool maximizable)
{
    maximizable_ = maximizable;
}

void TitleBar::setMinimizable(bool minimizable)
{
    minimizeButton_->setVisible(minimizable);
}

void TitleBar::setPlain(bool plain)
{
    QPalette colours = palette();
    colours.setColor(QPalette::Window, colours::toColor(colours::surfaceAlternate));
    setPalette(colours);
    setAutoFillBackground(!plain);
    titleLabel_->setVisible(!plain);
}

void TitleBar::showAction(QAction *action)
{
    auto *button = new QToolButton(this);
    button->setObjectName(QStringLiteral("titleAction"));
    button->setText(action->text());
    setPlainTip(button, action->shortcut().toString(QKeySequence::NativeText));
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QToolButton::clicked, action, &QAction::trigger);
    auto *row = static_cast<QHBoxLayout *>(layout());
    row->insertWidget(row->indexOf(minimizeButton_), button);
}

QWidget *TitleBar::minimizeButton() const
{
    return minimizeButton_;
}

QWidget *TitleBar::closeButton() const
{
    return closeButton_;
}

void TitleBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    drag_ = Drag::Pressed;
    pressedAt_ = event->globalPos();
}

void TitleBar::mouseMoveEvent(QMouseEvent *event)
{
    if (drag_ == Drag::Pressed &&
        (event->globalPos() - pressedAt_).manhattanLength() >= QApplication::startDragDistance())
        startMoving(event->globalPos());
    if (drag_ == Drag::Moving)
        window()->move(windowOrigin_ + event->globalPos() - pressedAt_);
}

/// The window system moves windows best (snapping, several screens). Where it does not, we follow
/// the mouse.
void TitleBar::startMoving(const QPoint &cursor)
{
    QWidget *top = window();
    if (top->isMaximized()) {
        if (!maximizable_)
            return;
        // Restored under the cursor, which keeps its relative place on the title bar.
        const double share = double(cursor.x() - top->x()) / qMax(1, top->width());
        const int top0 = top->y();
        top->showNormal();
        top->move(cursor.x() - int(share * top->width()), top0);
    }
    windowOrigin_ = top->pos();
    drag_ = Drag::Moving;
    if (QWindow *handle = top->windowHandle(); handle && handle->startSystemMove())
        drag_ = Drag::None;
}

void TitleBar::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        drag_ = Drag::None;
}

void TitleBar::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !maximizable_)
        return;
    drag_ = Drag::None;
    QWidget *top = window();
    if (top->isMaximized())
        top->showNormal();
    else
        top->showMaximized();
}

void TitleBar::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    // Only the layout's next pass gives the label its width.
    layout()->activate();
    showTitle();
}

bool TitleBar::event(QEvent *event)
{
    const bool handled = QWidget::event(event);
    // Only from its first showing on does the label have the font of the style sheet.
    if (event->type() == QEvent::Polish || event->type() == QEvent::Show)
        showTitle();
    return handled;
}
