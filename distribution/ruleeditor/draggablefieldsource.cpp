#include "distribution/ruleeditor/draggablefieldsource.h"

#include "app/context/k.h"
#include "distribution/ruleeditor/fielddrag.h"
#include "look/colours.h"
#include "widgets/theme/theme.h"

#include <QApplication>
#include <QDrag>
#include <QMouseEvent>

namespace {

constexpr int paddingPx = 10;

} // namespace

DraggableFieldSource::DraggableFieldSource(const QString &label, const QString &key,
                                           QWidget *parent)
    : QPushButton(label, parent), label_(label), key_(key)
{
    setStyleSheet(theme::fieldSourceStyle());
    setCursor(Qt::OpenHandCursor);
    setToolTip(QStringLiteral("拖到下方添加；点击或按回车添加到末尾"));
    setAutoDefault(true);
}

QSize DraggableFieldSource::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(label_) + 2 * K::scaledPx(paddingPx),
            theme::controlHeight()};
}

QMimeData *DraggableFieldSource::dragData() const
{
    const QString payload = label_ + QLatin1Char('|') + key_;
    auto *carried = new QMimeData;
    carried->setText(payload);
    carried->setData(fielddrag::itemType, payload.toUtf8());
    return carried;
}

QPixmap DraggableFieldSource::dragImage() const
{
    return fielddrag::image(
        this, label_, font(),
        {colours::toColor(colours::fieldDrag), Qt::NoPen, colours::toColor(colours::onFilled)});
}

void DraggableFieldSource::mousePressEvent(QMouseEvent *event)
{
    pressedAt_ = event->pos();
    QPushButton::mousePressEvent(event);
}

void DraggableFieldSource::mouseMoveEvent(QMouseEvent *event)
{
    const int distance = (event->pos() - pressedAt_).manhattanLength();
    if (!(event->buttons() & Qt::LeftButton) || distance < QApplication::startDragDistance()) {
        QPushButton::mouseMoveEvent(event);
        return;
    }
    setDown(false);
    auto *drag = new QDrag(this);
    drag->setMimeData(dragData());
    drag->setPixmap(dragImage());
    drag->setHotSpot(pressedAt_);
    fielddrag::run(drag, Qt::CopyAction);
}
