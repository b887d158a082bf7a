#include "marks/window/markfilter.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "marks/window/marktag.h"
#include "widgets/inputs/flowlayout.h"
#include "widgets/theme/theme.h"

#include <QAbstractButton>
#include <QPainter>

using marks::Mark;

namespace {

constexpr int chipHeightPx = 24;
constexpr int shapePx = 10;

} // namespace

/// Painted by itself: a style sheet knows no shapes.
class MarkChip : public QAbstractButton
{
public:
    MarkChip(Mark mark, QWidget *parent) : QAbstractButton(parent), mark_(mark)
    {
        setCheckable(true);
        setCursor(Qt::PointingHandCursor);
        setObjectName(QStringLiteral("markChip%1").arg(int(mark)));
    }

    Mark mark() const { return mark_; }

    void setCount(int count)
    {
        setText(QStringLiteral("%1 %2").arg(marks::textOf(mark_)).arg(count));
        setAccessibleName(QStringLiteral("只显示: ") + text());
        updateGeometry();
    }

    QSize sizeHint() const override
    {
        return {fontMetrics().horizontalAdvance(text()) + K::scaledPx(shapePx) +
                    3 * theme::spacing(),
                K::scaledPx(chipHeightPx)};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor colour = colours::toColor(marks::colourOf(mark_));
        const double line = hasFocus() ? theme::focusWidth() : theme::hairline();
        const QRectF frame = QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2);
        QColor ground = colour;
        ground.setAlphaF(isChecked() ? 0.25 : underMouse() ? 0.12 : 0.0);
        const QRgb edge = hasFocus()    ? colours::focusRing
                          : isChecked() ? marks::colourOf(mark_)
                                        : colours::outline;
        painter.setPen(QPen(colours::toColor(edge), line));
        painter.setBrush(ground);
        painter.drawRoundedRect(frame, frame.height() / 2, frame.height() / 2);
        const int shape = K::scaledPx(shapePx);
        marktag::paintShape(
            &painter, QRectF(theme::spacing(), (height() - shape) / 2.0, shape, shape), mark_);
        painter.setPen(colours::toColor(colours::heading));
        painter.drawText(rect().adjusted(shape + 2 * theme::spacing(), 0, 0, 0),
                         Qt::AlignLeft | Qt::AlignVCenter, text());
    }

private:
    Mark mark_;
};

MarkFilter::MarkFilter(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("markFilter"));
    auto *layout = new FlowLayout(this, theme::spacing(), theme::spacing() / 2);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const Mark mark : marks::filterMarks()) {
        auto *chip = new MarkChip(mark, this);
        chip->hide();
        chips_.append(chip);
        layout->addWidget(chip);
        connect(chip, &QAbstractButton::clicked, this, [this, chip](bool checked) {
            for (MarkChip *other : qAsConst(chips_))
                other->setChecked(other == chip && checked);
            emit chosen(this->mark());
        });
    }
    hide();
}

void MarkFilter::setCounts(const QHash<Mark, int> &counts)
{
    const Mark before = mark();
    bool any = false;
    for (MarkChip *chip : qAsConst(chips_)) {
        const int count = counts.value(chip->mark());
        chip->setCount(count);
        chip->setVisible(count > 0);
        if (count == 0)
            chip->setChecked(false);
        any = any || count > 0;
    }
    setVisible(any);
    if (mark() != before)
        emit chosen(mark());
}

Mark MarkFilter::mark() const
{
    for (const MarkChip *chip : chips_) {
        if (chip->isChecked())
            return chip->mark();
    }
    return Mark::None;
}
