#include "cardcheck/window/lightpanel.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>

using verdict::Light;

namespace {

constexpr int signPx = 72;
constexpr int headlinePx = 22;

/// Round for go, a triangle for caution, an octagon for stop: as on the road.
QPolygonF corners(Light light)
{
    if (light == Light::Amber)
        return {{{0.5, 0.04}, {0.98, 0.92}, {0.02, 0.92}}};
    constexpr double cut = 0.29;
    return {{{cut, 0.0},
             {1 - cut, 0.0},
             {1.0, cut},
             {1.0, 1 - cut},
             {1 - cut, 1.0},
             {cut, 1.0},
             {0.0, 1 - cut},
             {0.0, cut}}};
}

QString markOf(Light light)
{
    switch (light) {
    case Light::None:
        return QStringLiteral("?");
    case Light::Green:
        return QStringLiteral("✓");
    case Light::Amber:
        return QStringLiteral("!");
    case Light::Red:
        return QStringLiteral("✗");
    }
    Q_UNREACHABLE();
}

} // namespace

LightSign::LightSign(QWidget *parent) : QWidget(parent)
{
    setFixedSize(K::scaledPx(signPx), K::scaledPx(signPx));
    showLight(Light::None);
}

void LightSign::showLight(Light light)
{
    light_ = light;
    setAccessibleName(verdict::lightText(light));
    update();
}

void LightSign::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor colour = colours::toColor(verdict::lightColour(light_));
    const QRectF area = QRectF(rect()).adjusted(2, 2, -2, -2);
    const bool isFilled = light_ != Light::None;
    painter.setPen(isFilled ? Qt::NoPen : QPen(colour, theme::focusWidth()));
    painter.setBrush(isFilled ? QBrush(colour) : Qt::NoBrush);
    if (light_ == Light::Amber || light_ == Light::Red) {
        QPolygonF shape;
        const QPolygonF units = corners(light_);
        for (const QPointF &corner : units)
            shape.append(
                {area.x() + corner.x() * area.width(), area.y() + corner.y() * area.height()});
        painter.drawPolygon(shape);
    } else {
        painter.drawEllipse(area);
    }
    QFont font = painter.font();
    font.setPixelSize(height() / 2);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(isFilled ? colours::toColor(colours::onFilled) : colour);
    const QRectF text = light_ == Light::Amber ? area.adjusted(0, area.height() / 5, 0, 0) : area;
    painter.drawText(text, Qt::AlignCenter, markOf(light_));
}

LightPanel::LightPanel(QWidget *parent)
    : QWidget(parent)
    , sign_(new LightSign(this))
    , headline_(new PlainLabel(this))
    , notes_(new PlainLabel(this))
{
    headline_->setObjectName(QStringLiteral("lightLabel"));
    notes_->setObjectName(QStringLiteral("notesLabel"));
    notes_->setStyleSheet(theme::hintStyle());
    for (QLabel *label : {headline_, notes_}) {
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    auto *words = new QVBoxLayout;
    words->setSpacing(theme::spacing() / 2);
    words->addStretch();
    words->addWidget(headline_);
    words->addWidget(notes_);
    words->addStretch();
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::margin());
    layout->addWidget(sign_, 0, Qt::AlignTop);
    layout->addLayout(words, 1);
}

void LightPanel::showVerdict(const verdict::Verdict &verdict)
{
    sign_->showLight(verdict.light);
    headline_->setText(verdict.headline);
    headline_->setStyleSheet(QStringLiteral("font-size: %1px; font-weight: 600; color: %2;")
                                 .arg(K::scaledPxString(headlinePx),
                                      colours::css(verdict.light == verdict::Light::None
                                                       ? colours::heading
                                                       : verdict::lightColour(verdict.light))));
    notes_->setText(verdict.notes.join(QLatin1Char('\n')));
    notes_->setVisible(!verdict.notes.isEmpty());
}
