#include "widgets/frame/edgegrip.h"

#include "widgets/theme/theme.h"

#include <QMouseEvent>
#include <QWindow>

namespace {

Qt::CursorShape cursorFor(Qt::Edges edges)
{
    if (edges == (Qt::TopEdge | Qt::LeftEdge) || edges == (Qt::BottomEdge | Qt::RightEdge))
        return Qt::SizeFDiagCursor;
    if (edges == (Qt::TopEdge | Qt::RightEdge) || edges == (Qt::BottomEdge | Qt::LeftEdge))
        return Qt::SizeBDiagCursor;
    return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

} // namespace

EdgeGrip::EdgeGrip(Qt::Edges edges, QWidget *window) : QWidget(window), edges_(edges)
{
    setCursor(cursorFor(edges));
}

void EdgeGrip::place(const QSize &window)
{
    const int width = theme::gripWidth();
    QRect area(QPoint(0, 0), window);
    if (edges_ & Qt::LeftEdge)
        area.setRight(width - 1);
    else if (edges_ & Qt::RightEdge)
        area.setLeft(window.width() - width);
    else
        area.adjust(width, 0, -width, 0);
    if (edges_ & Qt::TopEdge)
        area.setBottom(width - 1);
    else if (edges_ & Qt::BottomEdge)
        area.setTop(window.height() - width);
    else
        area.adjust(0, width, 0, -width);
    setGeometry(area);
}

void EdgeGrip::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (QWindow *handle = window()->windowHandle(); handle && handle->startSystemResize(edges_))
        return;
    resizing_ = true;
    pressedAt_ = event->globalPos();
    windowAtPress_ = window()->geometry();
}

void EdgeGrip::mouseMoveEvent(QMouseEvent *event)
{
    if (!resizing_)
        return;
    const QSize smallest = window()->minimumSize().expandedTo(window()->minimumSizeHint());
    window()->setGeometry(
        resizedBy(windowAtPress_, edges_, event->globalPos() - pressedAt_, smallest));
}

void EdgeGrip::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        resizing_ = false;
}

QRect resizedBy(const QRect &geometry, Qt::Edges edges, const QPoint &delta, const QSize &smallest)
{
    QRect result = geometry;
    if (edges & Qt::LeftEdge)
        result.setLeft(qMin(geometry.left() + delta.x(), geometry.right() + 1 - smallest.width()));
    if (edges & Qt::RightEdge)
        result.setWidth(qMax(geometry.width() + delta.x(), smallest.width()));
    if (edges & Qt::TopEdge)
        result.setTop(qMin(geometry.top() + delta.y(), geometry.bottom() + 1 - smallest.height()));
    if (edges & Qt::BottomEdge)
        result.setHeight(qMax(geometry.height() + delta.y(), smallest.height()));
    return result;
}
