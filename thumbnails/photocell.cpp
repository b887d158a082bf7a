#include "thumbnails/photocell.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QPainter>
#include <QTextDocument>

namespace {

constexpr int cellWidthPx = 100;
constexpr int cellHeightPx = 125;
constexpr int paddingPx = 4;
constexpr int nameHeightPx = 22;
constexpr int buttonPx = 20;

int padding()
{
    return K::scaledPx(paddingPx);
}

/// A file's name, shortened in its middle where it does not fit.
class NameLabel : public PlainLabel
{
public:
    NameLabel(const QString &name, QWidget *parent) : PlainLabel(parent) { setText(name); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setPen(colours::toColor(colours::photoName));
        painter.drawText(rect(), Qt::AlignCenter,
                         fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
    }
};

/// A filled frame whose border lies inside \a rect.
void paintFrame(QPainter *painter, const QRect &rect, QRgb fill, QRgb border, int width)
{
    painter->setPen(Qt::NoPen);
    painter->setBrush(colours::toColor(border));
    painter->setRenderHint(QPainter::Antialiasing);
    painter->drawRoundedRect(rect, theme::radius(), theme::radius());
    painter->setBrush(colours::toColor(fill));
    const QRect inside = rect.adjusted(width, width, -width, -width);
    painter->drawRoundedRect(inside, theme::radius() - width, theme::radius() - width);
}

} // namespace

PhotoLabel::PhotoLabel(QWidget *parent) : PlainLabel(parent)
{
    setAlignment(Qt::AlignCenter);
    showPending();
}

void PhotoLabel::showPending()
{
    showText(Content::Pending, QStringLiteral("加载中..."));
}

void PhotoLabel::showFailed()
{
    showText(Content::Failed, QStringLiteral("加载失败"));
}

void PhotoLabel::showText(Content content, const QString &text)
{
    content_ = content;
    setText(text);
}

void PhotoLabel::showPicture(const QPixmap &picture)
{
    content_ = Content::Picture;
    setPixmap(picture);
}

void PhotoLabel::paintEvent(QPaintEvent *event)
{
    if (content_ == Content::Picture) {
        PlainLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    const bool failed = content_ == Content::Failed;
    paintFrame(&painter, rect(), failed ? colours::photoFailed : colours::photoPending,
               failed ? colours::photoFailedBorder : colours::divider, theme::hairline());
    painter.setPen(colours::toColor(failed ? colours::photoFailedText : colours::muted));
    painter.drawText(rect(), Qt::AlignCenter, text());
}

PhotoSelectButton::PhotoSelectButton(QWidget *parent) : QAbstractButton(parent)
{
    setCheckable(true);
    setFocusPolicy(Qt::NoFocus); // the grid has the keyboard
    setAttribute(Qt::WA_Hover);
}

void PhotoSelectButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool hovered = underMouse();
    const QRgb accent = hovered ? colours::photoSelectionHover : colours::photoSelection;
    QRgb fill = hovered ? colours::surface : colours::photoUnselected;
    if (isChecked())
        fill = accent;
    const qreal border = K::scaledPx(2);
    painter.setPen(QPen(colours::toColor(accent), border));
    painter.setBrush(colours::toColor(fill));
    painter.drawEllipse(QRectF(rect()).adjusted(border / 2, border / 2, -border / 2, -border / 2));
    if (!isChecked())
        return;
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(colours::toColor(colours::onFilled));
    painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("✓"));
}

PhotoCell::PhotoCell(const PhotoEntry &entry, int index, QWidget *parent)
    : QWidget(parent)
    , photoLabel_(new PhotoLabel(this))
    , selectButton_(new PhotoSelectButton(this))
    , index_(index)
{
    resize(cellSize());
    setAttribute(Qt::WA_Hover);
    photoLabel_->setGeometry(QRect(QPoint(padding(), padding()), photoSize()));
    const int button = K::scaledPx(buttonPx);
    selectButton_->setGeometry(width() - 2 * padding() - button, 2 * padding(), button, button);

    auto *nameLabel = new NameLabel(entry.imgName, this);
    nameLabel->setGeometry(padding(), height() - padding() - K::scaledPx(nameHeightPx),
                           width() - 2 * padding(), K::scaledPx(nameHeightPx));
    setAccessibleName(entry.imgName);
    setPlainTip(this, entry.imgName + QLatin1Char('\n') + kindText(entry.kind));

    setProperty("photoLabel", QVariant::fromValue<QWidget *>(photoLabel_));
    setProperty("nameLabel", QVariant::fromValue<QWidget *>(nameLabel));
    setProperty("selectButton", QVariant::fromValue<QWidget *>(selectButton_));
    setProperty("photoIndex", index);
}

QSize PhotoCell::cellSize()
{
    return {K::scaledPx(cellWidthPx), K::scaledPx(cellHeightPx)};
}

QSize PhotoCell::photoSize()
{
    return cellSize() - QSize(2 * padding(), 3 * padding() + K::scaledPx(nameHeightPx));
}

void PhotoCell::setCurrent(bool current)
{
    if (current_ == current)
        return;
    current_ = current;
    update();
}

void PhotoCell::enterEvent(QEvent *event)
{
    update();
    QWidget::enterEvent(event);
}

void PhotoCell::leaveEvent(QEvent *event)
{
    update();
    QWidget::leaveEvent(event);
}

void PhotoCell::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QRgb border = underMouse() ? colours::photoSelection : colours::divider;
    if (current_)
        border = colours::focusRing;
    paintFrame(&painter, rect(), colours::surface, border,
               current_ ? theme::focusWidth() : theme::hairline());
}
