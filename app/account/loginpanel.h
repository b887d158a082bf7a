#pragma once

class QPainter;
class QWidget;

/// The rounded panel, pale blue above and white below, on which accounts are asked for: fills
/// \a window, which is to be translucent behind it. Leaves pen, brush and rendering hints changed.
void paintLoginPanel(QPainter *painter, const QWidget *window);
