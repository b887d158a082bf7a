#include "widgets/tables/frozentable.h"

#include "widgets/theme/theme.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFrame>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <initializer_list>
#include <utility>

namespace {

/// Of the table's width, in percent.
constexpr int widestFrozen = 60;

} // namespace

FrozenTable::FrozenTable(QWidget *parent)
    : EmptyStateTable(parent), over_(new EmptyStateTable(this)), edge_(new QFrame(this))
{
    prepareTable(over_);
    over_->setObjectName(QStringLiteral("frozenView"));
    over_->setAttribute(Qt::WA_TransparentForMouseEvents);
    over_->setFocusPolicy(Qt::NoFocus);
    over_->setPointerArea(viewport());
    over_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    over_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    over_->horizontalHeader()->setStretchLastSection(false);
    over_->horizontalHeader()->hide();
    over_->setAutoScroll(false);
    over_->hide();
    edge_->setAttribute(Qt::WA_TransparentForMouseEvents);
    edge_->setStyleSheet(theme::dividerStyle());
    edge_->hide();
    // Its range may come later than the place that it is to be at.
    connect(over_->verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this] { over_->verticalScrollBar()->setValue(verticalScrollBar()->value()); });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, over_->verticalScrollBar(),
            &QScrollBar::setValue);
}

void FrozenTable::setFrozenHeader(QHeaderView *header)
{
    header_ = header;
    header->setParent(this);
    header->setModel(model());
    header->setStretchLastSection(false);
    header->setMinimumSectionSize(horizontalHeader()->minimumSectionSize());
    header->hide();
    over_->horizontalHeader()->setMinimumSectionSize(horizontalHeader()->minimumSectionSize());
    connect(header, &QHeaderView::sectionResized, this, [this](int section, int, int size) {
        if (!mirroring_ && size > 0)
            horizontalHeader()->resizeSection(section, size);
    });
    connect(header, &QHeaderView::sectionMoved, this, [this](int, int from, int to) {
        if (!mirroring_)
            horizontalHeader()->moveSection(from, to);
    });
    connect(horizontalHeader(), &QHeaderView::sectionMoved, this, &FrozenTable::mirror);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, &FrozenTable::mirror);
}

void FrozenTable::setModel(QAbstractItemModel *model)
{
    EmptyStateTable::setModel(model);
    QItemSelectionModel *own = over_->selectionModel();
    over_->setModel(model);
    delete own;
    setSelectionModel(selectionModel());
    if (header_)
        header_->setModel(model);
}

void FrozenTable::setSelectionModel(QItemSelectionModel *selectionModel)
{
    EmptyStateTable::setSelectionModel(selectionModel);
    QItemSelectionModel *own = over_->selectionModel();
    if (over_->model() != model() || own == selectionModel)
        return;
    over_->setSelectionModel(selectionModel);
    if (own && own->parent() == over_)
        delete own;
}

void FrozenTable::freeze(int count)
{
    wanted_ = count;
    const QString style = styleSheet() + QStringLiteral("QTableView { border: none; }");
    if (over_->styleSheet() != style)
        over_->setStyleSheet(style);
    over_->setAlternatingRowColors(alternatingRowColors());
    for (int column = 0; column < horizontalHeader()->count(); ++column)
        over_->setItemDelegateForColumn(column, itemDelegateForColumn(column));
    mirror();
}

int FrozenTable::widthOf(int columns) const
{
    int width = 0;
    for (int place = 0; place < columns; ++place)
        width += horizontalHeader()->sectionSize(horizontalHeader()->logicalIndex(place));
    return width;
}

int FrozenTable::fitting() const
{
    const int columns = qMin(wanted_, horizontalHeader()->count());
    return widthOf(columns) * 100 > viewport()->width() * widestFrozen ? 0 : columns;
}

bool FrozenTable::isFrozen(int column) const
{
    return column >= 0 && horizontalHeader()->visualIndex(column) < frozen_;
}

void FrozenTable::shadeHoveredRow(QRgb colour)
{
    EmptyStateTable::shadeHoveredRow(colour);
    over_->shadeHoveredRow(colour);
}

/// What is under the pointer looks so in the frozen columns, too, though the mouse is this table's.
bool FrozenTable::viewportEvent(QEvent *event)
{
    const bool isHandled = EmptyStateTable::viewportEvent(event);
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
    case QEvent::HoverLeave:
        if (frozen_ > 0) {
            QCoreApplication::sendEvent(over_->viewport(), event);
            over_->viewport()->update();
        }
        break;
    default:
        break;
    }
    return isHandled;
}

void FrozenTable::updateGeometries()
{
    EmptyStateTable::updateGeometries();
    mirror();
}

void FrozenTable::mirror()
{
    if (mirroring_ || !header_)
        return;
    const QScopedValueRollback<bool> guard(mirroring_, true);
    const int before = std::exchange(frozen_, fitting());
    mirrorHeader(over_->horizontalHeader());
    mirrorHeader(header_);
    const QRect area = viewport()->geometry();
    const int width = frozenWidth();
    header_->setGeometry(area.left(), horizontalHeader()->y(), width, horizontalHeader()->height());
    over_->setGeometry(area.left(), area.top(), width, area.height());
    edge_->setGeometry(area.left() + width, header_->y(), theme::hairline(),
                       area.bottom() + 1 - header_->y());
    header_->setVisible(width > 0);
    edge_->setVisible(width > 0);
    // Over an empty table it would cover what says why.
    over_->setVisible(width > 0 && model() && model()->rowCount() > 0);
    for (QWidget *each : std::initializer_list<QWidget *>{over_, header_, edge_})
        each->raise();
    if (frozen_ != before)
        emit frozenChanged(frozen_);
}

void FrozenTable::mirrorHeader(QHeaderView *copy) const
{
    const QHeaderView *header = horizontalHeader();
    if (copy->count() != header->count())
        return; // it has yet to hear of other columns
    for (int place = 0; place < header->count(); ++place) {
        const int section = header->logicalIndex(place);
        copy->moveSection(copy->visualIndex(section), place);
        copy->setSectionHidden(section, place >= frozen_);
        if (place < frozen_)
            copy->resizeSection(section, header->sectionSize(section));
    }
}

// Where cells are: those that are frozen stand where they are painted.

QModelIndex FrozenTable::indexAt(const QPoint &position) const
{
    return position.x() < frozenWidth() ? over_->indexAt(position)
                                        : EmptyStateTable::indexAt(position);
}

QRect FrozenTable::visualRect(const QModelIndex &index) const
{
    return isFrozen(index.column()) ? over_->visualRect(index) : EmptyStateTable::visualRect(index);
}

void FrozenTable::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    QScrollBar *sideways = horizontalScrollBar();
    const int before = sideways->value();
    EmptyStateTable::scrollTo(index, hint);
    if (isFrozen(index.column()))
        sideways->setValue(before);
    else if (const int left = visualRect(index).left(); index.isValid() && left < frozenWidth())
        sideways->setValue(sideways->value() - (frozenWidth() - left));
}
