#pragma once

#include <QPoint>
#include <QSize>

/// Where the cells of the imported-photo grid lie in its content, in pixels of the screen, and
/// where keys lead from one to another. Pure functions.
namespace photogrid {

/// In a row, unless a grid says otherwise.
constexpr int columns = 5;

/// From one row to the next.
int rowHeight();
QPoint cellPosition(int index, int inRow = columns);
QSize contentSize(int cells, int inRow = columns);
/// How many columns \a width has room for, one at least.
int fittingColumns(int width);

/// The cell that \a key moves to from \a current among \a count; -1 when it is no such key.
int keyTarget(int key, int current, int count, int rowsPerPage, int inRow = columns);

} // namespace photogrid
