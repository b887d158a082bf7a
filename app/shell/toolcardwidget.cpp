#include "app/shell/toolcardwidget.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSvgRenderer>
#include <QVBoxLayout>

namespace {

/// Drawn by us rather than through an icon: those need a plug-in for SVG that may not be installed.
QPixmap drawn(const QString &svgPath, int size, qreal density)
{
    QPixmap pixmap(qRound(size * density), qRound(size * density));
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(svgPath);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(density);
    return pixmap;
}

} // namespace

ToolCardWidget::ToolCardWidget(const QString &name, const QString &iconPath, QWidget *parent)
    : QWidget(parent), name_(name), icon_(new PlainLabel(this)), label_(new PlainLabel(name, this))
{
    setObjectName(name);
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setFixedSize(K::scaledPx(136), K::scaledPx(136));

    icon_->setAlignment(Qt::AlignCenter);
    icon_->setFixedSize(K::scaledPx(92), K::scaledPx(92));
    icon_->setPixmap(drawn(iconPath, K::scaledPx(56), devicePixelRatioF()));
    label_->setAlignment(Qt::AlignCenter);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addStretch();
    layout->addWidget(icon_, 0, Qt::AlignHCenter);
    layout->addWidget(label_);
    layout->addStretch();
    showState();
}

void ToolCardWidget::showState()
{
    label_->setStyleSheet(
        QStringLiteral("color: %1; font-size: %2px;")
            .arg(colours::css(isEnabled() ? colours::heading : colours::disabledText),
                 QString::number(theme::textSize())));
    update();
}

/// The icon's frame. A style sheet would draw its translucent corners twice where they meet the
/// sides.
void ToolCardWidget::paintEvent(QPaintEvent *)
{
    constexpr qreal border = 2.0;
    const bool focused = isEnabled() && hasFocus();
    const bool marked = focused || (isEnabled() && hovered_);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(
        QPen(colours::toColor(marked ? colours::cardBorderHover : colours::cardBorder), border));
    painter.setBrush(colours::toColor(focused ? colours::accentTint : colours::surface));
    const qreal inset = border / 2;
    const qreal radius = K::scaledPx(18);
    painter.drawRoundedRect(QRectF(icon_->geometry()).adjusted(inset, inset, -inset, -inset),
                            radius, radius);
}

void ToolCardWidget::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::EnabledChange)
        return;
    setCursor(isEnabled() ? Qt::PointingHandCursor : Qt::ArrowCursor);
    hovered_ = false;
    showState();
}

void ToolCardWidget::enterEvent(QEvent *event)
{
    QWidget::enterEvent(event);
    hovered_ = true;
    showState();
}

void ToolCardWidget::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    hovered_ = false;
    showState();
}

void ToolCardWidget::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    showState();
}

void ToolCardWidget::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    showState();
}

void ToolCardWidget::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!event->isAutoRepeat())
            emit doubleClicked(name_);
        break;
    default:
        QWidget::keyPressEvent(event); // the grid moves the focus
    }
}

void ToolCardWidget::mousePressEvent(QMouseEvent *event)
{
    pressed_ = event->button() == Qt::LeftButton;
}

void ToolCardWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && pressed_ && rect().contains(event->pos()))
        emit clicked(name_);
    pressed_ = false;
}

void ToolCardWidget::mouseDoubleClickEvent(QMouseEvent *event)
{
    pressed_ = false; // the release that follows is no click of its own
    if (event->button() == Qt::LeftButton)
        emit doubleClicked(name_);
}
