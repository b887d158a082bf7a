#include "photoimport/imported/tfphotoview.h"

#include "look/colours.h"
#include "photoimport/imported/tfphotodelegate.h"
#include "widgets/tables/filedroptable.h"
#include "widgets/theme/theme.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>

namespace {

constexpr int laidOutAtOnce = 500; // so that an order of thousands does not hold the interface up

} // namespace

tfphotoview::tfphotoview(QWidget *parent) : PlainTips(parent), delegate_(new tfphotodelegate(this))
{
    setItemDelegate(delegate_);
    setStyleSheet(theme::listStyle());
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformItemSizes(true);
    setLayoutMode(QListView::Batched);
    setBatchSize(laidOutAtOnce);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabKeyNavigation(false);
    setAcceptDrops(true);
    setGrid(true);
}

void tfphotoview::setGrid(bool grid)
{
    const QModelIndex current = currentIndex();
    delegate_->setGrid(grid);
    setViewMode(grid ? QListView::IconMode : QListView::ListMode);
    setFlow(grid ? QListView::LeftToRight : QListView::TopToBottom);
    setWrapping(grid);
    setResizeMode(QListView::Adjust);
    setMovement(QListView::Static);
    setDragEnabled(false);
    setGridSize(grid ? tfphotodelegate::cellSize(true) : QSize());
    verticalScrollBar()->setSingleStep(tfphotodelegate::cellSize(grid).height() / 3);
    setAcceptDrops(true); // setting the movement takes drops away
    viewport()->setAcceptDrops(true);
    if (current.isValid())
        scrollTo(current);
}

bool tfphotoview::isGrid() const
{
    return delegate_->isGrid();
}

void tfphotoview::setEmptyText(const QString &text)
{
    emptyText_ = text;
    viewport()->update();
}

tfphotoview::Range tfphotoview::visibleRows() const
{
    const int rows = model() ? model()->rowCount() : 0;
    const auto place = [this](int row) { return visualRect(model()->index(row, 0)); };
    // Rows lie from top to bottom, so the first one in sight is found by halving.
    int first = 0;
    int beyond = rows;
    while (first < beyond) {
        const int middle = (first + beyond) / 2;
        const QRect cell = place(middle); // not valid while it is not laid out yet
        if (cell.isValid() && cell.bottom() < 0)
            first = middle + 1;
        else
            beyond = middle;
    }
    int last = first - 1;
    while (last + 1 < rows && place(last + 1).isValid() &&
           place(last + 1).top() < viewport()->height())
        ++last;
    return {first, last};
}

void tfphotoview::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void tfphotoview::dragMoveEvent(QDragMoveEvent *event)
{
    // Only a copy is ever made of what is dropped, whatever the source proposes.
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(event->mimeData()->hasUrls());
}

void tfphotoview::dropEvent(QDropEvent *event)
{
    const QStringList paths = droppedPaths(event->mimeData());
    if (paths.isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    emit filesDropped(paths);
}

void tfphotoview::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    if (emptyText_.isEmpty() || (model() && model()->rowCount() > 0))
        return;
    QPainter painter(viewport());
    painter.setPen(colours::toColor(colours::placeholder));
    const QRect area = viewport()->rect().adjusted(theme::margin(), 0, -theme::margin(), 0);
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
}

void tfphotoview::resizeEvent(QResizeEvent *event)
{
    QListView::resizeEvent(event);
    emit sightChanged();
}

void tfphotoview::scrollContentsBy(int dx, int dy)
{
    QListView::scrollContentsBy(dx, dy);
    emit sightChanged();
}
