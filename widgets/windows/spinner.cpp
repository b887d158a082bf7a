#include "widgets/windows/spinner.h"

#include "look/colours.h"
#include "widgets/theme/theme.h"

#include <QPainter>

namespace {

constexpr int turnMs = 1000;
constexpr int arcDegrees = 100;
constexpr int sixteenths = 16; ///< QPainter counts angles in sixteenths of a degree

} // namespace

Spinner::Spinner(QWidget *parent) : QWidget(parent)
{
    setFixedSize(Spinner::sizeHint());
    turning_.setStartValue(0);
    turning_.setEndValue(360);
    turning_.setDuration(turnMs);
    turning_.setLoopCount(-1);
    connect(&turning_, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

QSize Spinner::sizeHint() const
{
    return {theme::spinnerSize(), theme::spinnerSize()};
}

void Spinner::showEvent(QShowEvent *)
{
    turning_.start();
}

void Spinner::hideEvent(QHideEvent *)
{
    turning_.stop();
}

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = theme::spinnerSize() / 10.0;
    const QRectF circle = QRectF(rect()).adjusted(width, width, -width, -width);
    painter.setPen(QPen(colours::toColor(colours::divider), width));
    painter.drawEllipse(circle);
    painter.setPen(QPen(colours::toColor(colours::accent), width, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(circle, -turning_.currentValue().toInt() * sixteenths, arcDegrees * sixteenths);
}
