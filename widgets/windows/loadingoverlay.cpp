#include "widgets/windows/loadingoverlay.h"

#include "look/colours.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/framelesswindow.h"
#include "widgets/windows/spinner.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int barSteps = 1000;

} // namespace

LoadingOverlay::LoadingOverlay(QWidget *parent)
    : QWidget(parent)
    , panel_(new QWidget(this))
    , spinner_(new Spinner(panel_))
    , mark_(new PlainLabel(panel_))
    , label_(new PlainLabel(panel_))
    , bar_(new QProgressBar(panel_))
    , cancelButton_(new QPushButton(QStringLiteral("取消"), panel_))
{
    setObjectName(QStringLiteral("loadingOverlay"));
    setAccessibleName(QStringLiteral("请稍候"));
    setFocusPolicy(Qt::StrongFocus);
    setStyleSheet(theme::windowStyle() + theme::progressBarStyle());
    label_->setObjectName(QStringLiteral("loadingText"));
    label_->setAlignment(Qt::AlignCenter);
    label_->setWordWrap(true);
    mark_->setAlignment(Qt::AlignCenter);
    bar_->setTextVisible(false);
    bar_->setRange(0, barSteps);
    bar_->setFixedWidth(theme::progressBarWidth());
    cancelButton_->setObjectName(QStringLiteral("loadingCancelButton"));
    cancelButton_->setStyleSheet(theme::secondaryButtonStyle());

    auto *lines = new QVBoxLayout(panel_);
    const int margin = 2 * theme::margin();
    lines->setContentsMargins(margin, margin, margin, margin);
    lines->setSpacing(theme::margin());
    lines->addWidget(spinner_, 0, Qt::AlignHCenter);
    lines->addWidget(mark_, 0, Qt::AlignHCenter);
    lines->addWidget(label_);
    lines->addWidget(bar_, 0, Qt::AlignHCenter);
    lines->addWidget(cancelButton_, 0, Qt::AlignHCenter);
    panel_->setMinimumWidth(bar_->maximumWidth() + 2 * margin);
    auto *middle = new QVBoxLayout(this);
    middle->addWidget(panel_, 0, Qt::AlignCenter);

    goAway_.setSingleShot(true);
    connect(&goAway_, &QTimer::timeout, this, &LoadingOverlay::hideOverlay);
    connect(cancelButton_, &QPushButton::clicked, this, &LoadingOverlay::cancel);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { keepFocus(now); });
    parent->installEventFilter(this);
    hide();
}

void LoadingOverlay::showText(const QString &text, bool cancellable)
{
    goAway_.stop();
    cancellable_ = cancellable;
    cancelButton_->setVisible(cancellable);
    cancelButton_->setEnabled(true);
    mark_->hide();
    setProgress(0, 0);
    setText(text);
    appear();
}

void LoadingOverlay::setText(const QString &text)
{
    label_->setText(text);
    setAccessibleName(text);
}

QString LoadingOverlay::text() const
{
    return label_->text();
}

void LoadingOverlay::setProgress(qint64 done, qint64 total)
{
    const bool known = total > 0;
    spinner_->setVisible(!known);
    bar_->setVisible(known);
    if (known)
        bar_->setValue(int(double(qBound(qint64(0), done, total)) / double(total) * barSteps));
}

void LoadingOverlay::showResult(const QString &text, Result result, int ms)
{
    const bool succeeded = result == Result::Success;
    cancellable_ = false;
    cancelButton_->hide();
    spinner_->hide();
    bar_->hide();
    mark_->setText(succeeded ? QStringLiteral("✓") : QStringLiteral("!"));
    mark_->setStyleSheet(theme::resultMarkStyle(succeeded ? colours::success : colours::failure));
    mark_->show();
    setText(text);
    appear();
    goAway_.start(ms);
}

void LoadingOverlay::appear()
{
    if (isHidden())
        focusBefore_ = window()->focusWidget();
    cover();
    show();
    raise();
    setFocus();
}

void LoadingOverlay::hideOverlay()
{
    goAway_.stop();
    if (isHidden())
        return;
    const QWidget *focus = window()->focusWidget();
    const bool hadFocus = focus == this || isAncestorOf(focus);
    hide();
    if (hadFocus && focusBefore_ && focusBefore_->isVisible() && focusBefore_->isEnabled())
        focusBefore_->setFocus();
    focusBefore_.clear();
}

void LoadingOverlay::cover()
{
    if (const auto *frameless = qobject_cast<FramelessWindow *>(parentWidget()))
        setGeometry(frameless->contentArea());
    else
        setGeometry(parentWidget()->rect());
}

void LoadingOverlay::cancel()
{
    if (!cancellable_)
        return;
    cancellable_ = false;
    cancelButton_->setEnabled(false);
    setFocus();
    emit cancelled();
}

/// Whatever is covered cannot have the focus, however it came by it.
void LoadingOverlay::keepFocus(const QWidget *now)
{
    if (!now || isHidden() || now == this || isAncestorOf(now))
        return;
    if (!parentWidget()->isAncestorOf(now) || now->window() != window())
        return;
    const QRect area(now->mapTo(parentWidget(), QPoint(0, 0)), now->size());
    if (geometry().intersects(area))
        setFocus();
}

bool LoadingOverlay::event(QEvent *event)
{
    // Claims every key before the shortcuts of the covered window see it; only the keys that close
    // the window go through.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool closes = key->key() == Qt::Key_F4 && key->modifiers() == Qt::AltModifier;
        event->setAccepted(!closes);
        return true;
    }
    return QWidget::event(event);
}

bool LoadingOverlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && !isHidden())
        cover();
    return QWidget::eventFilter(watched, event);
}

bool LoadingOverlay::focusNextPrevChild(bool)
{
    if (cancelButton_->isVisible() && cancelButton_->isEnabled() && !cancelButton_->hasFocus())
        cancelButton_->setFocus(Qt::TabFocusReason);
    else
        setFocus(Qt::TabFocusReason);
    return true;
}

void LoadingOverlay::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape || (enter && cancelButton_->hasFocus()))
        cancel();
    event->accept();
}

void LoadingOverlay::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void LoadingOverlay::wheelEvent(QWheelEvent *event)
{
    event->accept();
}

void LoadingOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), colours::toColor(colours::veil));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colours::toColor(colours::outline), theme::hairline()));
    painter.setBrush(colours::toColor(colours::surface));
    painter.drawRoundedRect(QRectF(panel_->geometry()).adjusted(0.5, 0.5, -0.5, -0.5),
                            2 * theme::radius(), 2 * theme::radius());
}
