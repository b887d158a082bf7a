#include "fileimport/window/rowactions.h"

#include "look/colours.h"
#include "widgets/tables/frozentable.h"
#include "widgets/theme/theme.h"

#include <QEvent>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <utility>

RowActions::RowActions(FrozenTable *table, int actionsColumn, Row row)
    : QWidget(table->viewport()), table_(table), column_(actionsColumn), kind_(row)
{
    setObjectName(kind_ == Row::Current ? QStringLiteral("currentRowActions")
                                        : QStringLiteral("hoveredRowActions"));
    setMouseTracking(true);
    hide();
    table_->viewport()->installEventFilter(this);
    for (const QScrollBar *bar : {table_->horizontalScrollBar(), table_->verticalScrollBar()})
        connect(bar, &QScrollBar::valueChanged, this, &RowActions::place);
    const QHeaderView *header = table_->horizontalHeader();
    connect(header, &QHeaderView::sectionResized, this, &RowActions::place, Qt::QueuedConnection);
    connect(header, &QHeaderView::sectionMoved, this, &RowActions::place, Qt::QueuedConnection);
    const QAbstractItemModel *model = table_->model();
    connect(model, &QAbstractItemModel::modelReset, this, &RowActions::place);
    connect(model, &QAbstractItemModel::layoutChanged, this, &RowActions::place);
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &RowActions::place);
}

bool RowActions::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
    case QEvent::HoverLeave:
        if (kind_ == Row::Current)
            break;
        [[fallthrough]];
    case QEvent::Resize:
    case QEvent::Show:
        place();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

bool RowActions::isColumnInSight() const
{
    const QHeaderView *header = table_->horizontalHeader();
    if (header->isSectionHidden(column_))
        return false;
    const int left = header->sectionViewportPosition(column_);
    const int right = left + header->sectionSize(column_);
    return left >= table_->frozenWidth() && right <= table_->viewport()->width();
}

QModelIndex RowActions::wantedRow() const
{
    const QModelIndex current = table_->currentIndex();
    if (kind_ == Row::Current)
        return current;
    const QWidget *area = table_->viewport();
    if (!area->underMouse())
        return {};
    const int row = table_->rowAt(area->mapFromGlobal(QCursor::pos()).y());
    return row == current.row() ? QModelIndex() : table_->model()->index(row, column_);
}

void RowActions::place()
{
    const QModelIndex row = isColumnInSight() ? QModelIndex() : wantedRow();
    row_ = row;
    setVisible(row.isValid());
    if (!row.isValid())
        return;
    QFont font = table_->font();
    font.setPixelSize(theme::textSize());
    const int width = OrderActionsDelegate::cellWidth(font);
    setGeometry(table_->viewport()->width() - width, table_->rowViewportPosition(row.row()), width,
                table_->rowHeight(row.row()));
    raise();
    update();
}

void RowActions::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    const bool isSelected = table_->selectionModel()->isRowSelected(row_.row(), {});
    const QRgb usual = row_.row() % 2 == 0 ? colours::surface : colours::surfaceAlternate;
    painter.fillRect(rect(), colours::toColor(isSelected ? colours::accentTint : usual));
    painter.setFont(table_->font());
    OrderActionsDelegate::paintButtons(&painter, rect(), mapFromGlobal(QCursor::pos()));
}

std::optional<OrderActionsDelegate::Action> RowActions::actionAt(const QPoint &position) const
{
    for (int index = 0; index < OrderActionsDelegate::ActionCount; ++index) {
        const auto action = OrderActionsDelegate::Action(index);
        if (OrderActionsDelegate::buttonRect(rect(), action).contains(position))
            return action;
    }
    return std::nullopt;
}

void RowActions::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    pressedRow_ = event->button() == Qt::LeftButton ? row_ : QPersistentModelIndex();
    pressed_ = actionAt(event->pos());
}

/// The row becomes the current one, as it does where its own cell is pressed.
void RowActions::mouseReleaseEvent(QMouseEvent *event)
{
    const QPersistentModelIndex pressedRow = std::exchange(pressedRow_, QPersistentModelIndex());
    if (event->button() != Qt::LeftButton || !row_.isValid() || row_ != pressedRow)
        return;
    const auto action = actionAt(event->pos());
    const int row = row_.row();
    table_->selectRow(row); // which may move this to it
    if (action && action == pressed_)
        emit actionClicked(row, *action);
}

void RowActions::mouseMoveEvent(QMouseEvent *event)
{
    QWidget::mouseMoveEvent(event);
    update();
}

void RowActions::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    update();
}
