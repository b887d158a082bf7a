#pragma once

#include <QPoint>
#include <QSize>

/// Where the cells of the imported-photo grid lie in its content, in pixels of the screen, and
/// where keys lead from one to another. Pure functions.
namespace photogrid {

constexpr int columns = 5;

/// From one row to the next.
int rowHeight();
QPoint cellPosition(int index);
QSize contentSize(int cells);

/// The cell that \a key moves to from \a current among \a count; -1 when it is no such key.
int keyTarget(int key, int current, int count, int rowsPerPage);

} // namespace photogrid
