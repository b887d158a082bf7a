#pragma once

#include <QPoint>
#include <QRect>
#include <QWidget>

/// An invisible strip on an edge, or a square on a corner, of a frameless window; dragging it
/// resizes the window. The window places it and keeps it above its content.
class EdgeGrip : public QWidget
{
    Q_OBJECT

public:
    EdgeGrip(Qt::Edges edges, QWidget *window);

    /// Lies down on its edge of a window of the size \a window.
    void place(const QSize &window);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    Qt::Edges edges_;
    bool resizing_ = false;
    QPoint pressedAt_; ///< global
    QRect windowAtPress_;
};

/// \a geometry with \a edges moved by \a delta, never smaller than \a smallest: an edge that is
/// stopped by it stays where it is stopped, the opposite one does not move.
QRect resizedBy(const QRect &geometry, Qt::Edges edges, const QPoint &delta, const QSize &smallest);
