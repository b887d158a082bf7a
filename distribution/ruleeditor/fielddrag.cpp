#include "distribution/ruleeditor/fielddrag.h"

#include "app/context/k.h"

#include <QDrag>
#include <QPainter>
#include <QWidget>

#include <utility>

namespace fielddrag {

namespace {

constexpr int radiusPx = 6;

std::function<void(const QMimeData *data)> &dragScript()
{
    static std::function<void(const QMimeData *data)> script;
    return script;
}

} // namespace

void run(QDrag *drag, Qt::DropAction action)
{
    if (!dragScript()) {
        drag->exec(action);
        return;
    }
    dragScript()(drag->mimeData());
    drag->deleteLater();
}

void setScript(std::function<void(const QMimeData *data)> script)
{
    dragScript() = std::move(script);
}

QPixmap image(const QWidget *button, const QString &label, const QFont &font, const Look &look)
{
    const qreal ratio = button->devicePixelRatioF();
    QPixmap pixmap(button->size() * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(look.fill);
    painter.setPen(look.border);
    const qreal inset = look.border.style() == Qt::NoPen ? 0 : look.border.widthF() / 2;
    const QRectF area(QPointF(0, 0), QSizeF(button->size()));
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), K::scaledPx(radiusPx),
                            K::scaledPx(radiusPx));
    painter.setPen(look.text);
    painter.setFont(font);
    painter.drawText(area, Qt::AlignCenter, label);
    return pixmap;
}

} // namespace fielddrag
