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

QPoint cellPosition(int index)
{
    return {index % columns * columnWidth(), index / columns * rowHeight()};
}

QSize contentSize(int cells)
{
    const int rows = (cells + columns - 1) / columns;
    return {columns * columnWidth() - theme::spacing(),
            qMax(0, rows * rowHeight() - theme::spacing())};
}

int keyTarget(int key, int current, int count, int rowsPerPage)
{
    if (count == 0)
        return -1;
    const int page = rowsPerPage * columns;
    const auto bounded = [count](int index) { return qBound(0, index, count - 1); };
    switch (key) {
    case Qt::Key_Left:
        return bounded(current - 1);
    case Qt::Key_Right:
        return bounded(current + 1);
    case Qt::Key_Up:
        return current < columns ? current : current - columns;
    case Qt::Key_Down:
        return current + columns < count ? current + columns : current;
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
