#pragma once

#include "marks/rules/filemark.h"
#include "widgets/tables/tables.h"

#include <QFont>
#include <QRect>

class QPainter;

/// A mark as tables and buttons show it: a shape of its own, its colour and its text.
namespace marktag {

/// Pixels; 0 for a mark that is not shown.
int widthOf(marks::Mark mark, const QFont &font);
/// What a tag lies on.
enum class Ground { Cell, Picture };
/// At the left of \a room, in the middle of its height. Leaves pen, brush and rendering hints
/// changed.
void paint(QPainter *painter, const QRect &room, marks::Mark mark, Ground ground = Ground::Cell);
/// The shape alone, as large as \a box.
void paintShape(QPainter *painter, const QRectF &box, marks::Mark mark);

} // namespace marktag

/// A cell with a name and the mark behind it.
class TaggedNameDelegate : public ElidedTextDelegate
{
    Q_OBJECT

public:
    /// \a markRole: a marks::Mark as an integer.
    TaggedNameDelegate(int markRole, QObject *parent);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

private:
    int markRole_;
};
