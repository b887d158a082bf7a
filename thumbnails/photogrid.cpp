#include "thumbnails/photogrid.h"

#include "thumbnails/photocell.h"
#include "widgets/theme/theme.h"

namespace photogrid {

namespace {

int columnWidth()
{
    return PhotoCell::cellSize().width() + theme::spacing();
}

} // namespace

int rowHeight()
{
    return PhotoCell::cellSize().height() + theme::spacing();
}

QPoint cellPosition(int index, int inRow)
{
    return {index % inRow * columnWidth(), index / inRow * rowHeight()};
}

int fittingColumns(int width)
{
    return qMax(1, (width + theme::spacing()) / columnWidth());
}

QSize contentSize(int cells, int inRow)
{
    const int rows = (cells + inRow - 1) / inRow;
    return {inRow * columnWidth() - theme::spacing(),
            qMax(0, rows * rowHeight() - theme::spacing())};
}

int keyTarget(int key, int current, int count, int rowsPerPage, int inRow)
{
    if (count == 0)
        return -1;
    const int page = rowsPerPage * inRow;
    const auto bounded = [count](int index) { return qBound(0, index, count - 1); };
    switch (key) {
    case Qt::Key_Left:
        return bounded(current - 1);
    case Qt::Key_Right:
        return bounded(current + 1);
    case Qt::Key_Up:
        return current < inRow ? current : current - inRow;
    case Qt::Key_Down:
        return current + inRow < count ? current + inRow : current;
    case Qt::Key_PageUp:
        return bounded(current - page);
    case Qt::Key_PageDown:
        return bounded(current + page);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return count - 1;
    default:
        return -1;
    }
}

} // namespace photogrid
