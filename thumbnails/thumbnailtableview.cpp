#include "thumbnails/thumbnailtableview.h"

#include "look/colours.h"
#include "thumbnails/photocell.h"
#include "widgets/theme/theme.h"

#include <QDebug>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace {

using photogrid::rowHeight;

constexpr int batchSize = 8;
constexpr int batchIntervalMs = 50;
constexpr int visibilityIntervalMs = 100;

/// Changes a part of a cell that is not on the screen. Asked to repaint, it would look through
/// thousands of siblings for one that lies over it; it is painted anyway when it is scrolled to.
template <typename Change> void changeUnseen(QWidget *part, Change change)
{
    part->setAttribute(Qt::WA_UpdatesDisabled, true);
    change();
    part->setAttribute(Qt::WA_UpdatesDisabled, false);
}

} // namespace

ThumbnailTableView::ThumbnailTableView(QWidget *parent, const ThumbnailLimits &limits)
    : QAbstractScrollArea(parent), limits_(limits), content_(new QWidget(viewport()))
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("已导入照片"));
    setMinimumWidth(photogrid::contentSize(0).width() + theme::scrollBarWidth());
    verticalScrollBar()->setSingleStep(rowHeight() / 4);
    horizontalScrollBar()->setSingleStep(PhotoCell::cellSize().width() / 4);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this,
            &ThumbnailTableView::onScrollValueChanged);

    visibilityTimer_.setSingleShot(true);
    visibilityTimer_.setInterval(visibilityIntervalMs);
    connect(&visibilityTimer_, &QTimer::timeout, this, &ThumbnailTableView::loadVisiblePhotos);
    batchTimer_.setInterval(batchIntervalMs);
    connect(&batchTimer_, &QTimer::timeout, this, &ThumbnailTableView::createPhotoItemsBatch);
    thread_.setObjectName(QStringLiteral("thumbnails"));
    connect(&thread_, &QThread::finished, this, &ThumbnailTableView::stopped);
}

ThumbnailTableView::~ThumbnailTableView()
{
    stop();
    thread_.wait();
}

void ThumbnailTableView::setReadOnly()
{
    readOnly_ = true;
    setMinimumWidth(photogrid::contentSize(0, 1).width() + theme::scrollBarWidth());
    fitColumns();
}

void ThumbnailTableView::startWorker()
{
    auto *worker = new ThumbnailLoadWorker(PhotoCell::photoSize(), limits_);
    worker->moveToThread(&thread_);
    connect(&thread_, &QThread::finished, worker, &QObject::deleteLater);
    connect(this, &ThumbnailTableView::loadPhotoRequest, worker, &ThumbnailLoadWorker::loadPhoto);
    connect(this, &ThumbnailTableView::cancelAllPhotoRequests, worker,
            &ThumbnailLoadWorker::cancelAllRequests);
    connect(worker, &ThumbnailLoadWorker::photoLoaded, this, &ThumbnailTableView::onPhotoLoaded);
    connect(worker, &ThumbnailLoadWorker::photoLoadFailed, this,
            &ThumbnailTableView::onPhotoLoadFailed);
    connect(worker, &ThumbnailLoadWorker::requestsCancelled, this, [this] { --pendingCancels_; });
    thread_.start();
}

void ThumbnailTableView::stop()
{
    if (ending_)
        return;
    ending_ = true;
    visibilityTimer_.stop();
    batchTimer_.stop();
    ++pendingCancels_;
    emit cancelAllPhotoRequests();
    thread_.quit();
}

// The list and its cells.

void ThumbnailTableView::setEntries(const QVector<PhotoEntry> &entries)
{
    const QVector<int> positions = laterPositions(entries_, entries);
    const int top = verticalScrollBar()->value();
    const int shown = nearestKept(positions, onScreen().first);
    const int at = nearestKept(positions, current_);
    entries_ = entries;
    ++generation_;
    visibilityTimer_.stop();
    batchTimer_.stop();
    if (thread_.isRunning() && !ending_) {
        ++pendingCancels_;
        emit cancelAllPhotoRequests();
    }
    retireCells();
    cells_.resize(entries_.size());
    current_ = anchor_ = positions.value(at, 0);
    updateScrollBars();
    if (shown < 0)
        verticalScrollBar()->setValue(0);
    else if (top > 0)
        verticalScrollBar()->setValue(top + (positions.at(shown) / columns_ - shown / columns_) *
                                                rowHeight());
    placeContent();
    viewport()->update();
    qDebug() << "缩略图刷新了：" << entries_.isEmpty();
    keepSelection(positions);
    if (entries_.isEmpty() || ending_)
        return;
    batchGeneration_ = generation_;
    batchTimer_.start();
}

void ThumbnailTableView::keepSelection(const QVector<int> &positions)
{
    const QSet<int> before = selected_;
    selected_.clear();
    for (const int index : before) {
        if (positions.at(index) >= 0)
            selected_.insert(positions.at(index));
    }
    if (selected_.size() != before.size())
        emit selectedCountChanged(selected_.size());
}

void ThumbnailTableView::retireCells()
{
    cells_.clear();
    nextCell_ = 0;
    if (createdCells_ == 0)
        return;
    createdCells_ = 0;
    pictured_.clear();
    retired_.add(content_);
    content_ = new QWidget(viewport());
    content_->show();
}

void ThumbnailTableView::createPhotoItemsBatch()
{
    if (batchGeneration_ != generation_)
        return;
    for (int left = batchSize; left > 0 && createdCells_ < entries_.size(); --left)
        makeCell(nextToMake());
    if (createdCells_ == entries_.size()) {
        batchTimer_.stop();
        loadVisiblePhotos();
    } else if (!visibilityTimer_.isActive()) {
        visibilityTimer_.start();
    }
}

int ThumbnailTableView::nextToMake()
{
    const Range seen = onScreen();
    for (int index = seen.first; index < seen.end; ++index) {
        if (!cells_.at(index))
            return index;
    }
    while (cells_.at(nextCell_))
        ++nextCell_;
    return nextCell_;
}

void ThumbnailTableView::makeCell(int index)
{
    auto *cell = new PhotoCell(entries_.at(index), index, content_);
    cell->move(photogrid::cellPosition(index, columns_));
    cell->selectButton()->setChecked(selected_.contains(index));
    cell->selectButton()->setHidden(readOnly_);
    cell->setCurrent(index == current_ && hasFocus());
    connect(cell->selectButton(), &QAbstractButton::toggled, this,
            &ThumbnailTableView::onPhotoSelectionChanged);
    cell->installEventFilter(this);
    cell->selectButton()->installEventFilter(this);
    cells_[index] = cell;
    ++createdCells_;
    cell->show();
}

void ThumbnailTableView::setEmptyText(const QString &text)
{
    emptyText_ = text;
    viewport()->update();
}

// Images.

void ThumbnailTableView::loadVisiblePhotos()
{
    if (!isVisible() || createdCells_ == 0 || ending_)
        return;
    if (!thread_.isRunning())
        startWorker();
    releaseFarPictures();
    const Range seen = onScreen();
    // The worker takes the latest first, so that these come from top to bottom.
    for (int index = seen.end - 1; index >= seen.first; --index) {
        PhotoCell *cell = cells_.at(index);
        if (!cell || cell->isLoaded || cell->isRequested || !cell->isVisible())
            continue;
        cell->isRequested = true;
        emit loadPhotoRequest(entries_.at(index).url, entries_.at(index).icon, index);
    }
}

/// The cell that waits for this image; null for images of an earlier list.
PhotoCell *ThumbnailTableView::awaiting(const QString &name, int index) const
{
    PhotoCell *cell = cells_.value(index);
    const bool waits = pendingCancels_ == 0 && cell && cell->isRequested && !cell->isLoaded;
    return waits && entries_.at(index).url == name ? cell : nullptr;
}

void ThumbnailTableView::onPhotoLoaded(const QPixmap &pixmap, const QString &name, int index)
{
    PhotoCell *cell = awaiting(name, index);
    if (!cell)
        return;
    cell->photoLabel()->showPicture(pixmap);
    cell->isLoaded = true;
    pictured_.insert(index);
}

/// Keeps the images of the pages around the screen.
void ThumbnailTableView::releaseFarPictures()
{
    if (pictured_.size() <= limits_.picturesHeld)
        return;
    const int middle = (verticalScrollBar()->value() + viewport()->height() / 2) / rowHeight();
    const int reach = qMax(limits_.picturesHeld / columns_ / 3, 2 * rowsPerPage());
    for (auto index = pictured_.begin(); index != pictured_.end();) {
        if (qAbs(*index / columns_ - middle) <= reach) {
            ++index;
            continue;
        }
        PhotoCell *cell = cells_.at(*index);
        changeUnseen(cell->photoLabel(), [cell] { cell->photoLabel()->showPending(); });
        cell->isLoaded = cell->isRequested = false;
        index = pictured_.erase(index);
    }
}

void ThumbnailTableView::onPhotoLoadFailed(const QString &name, int index)
{
    if (PhotoCell *cell = awaiting(name, index))
        cell->photoLabel()->showFailed();
}

// Scrolling and painting.

ThumbnailTableView::Range ThumbnailTableView::onScreen() const
{
    const int top = verticalScrollBar()->value();
    const int bottom = top + viewport()->height();
    // Between two rows there is nothing of the upper one to see.
    const int first = (top + theme::spacing()) / rowHeight() * columns_;
    return {qMin(first, entries_.size()),
            qMin((bottom / rowHeight() + 1) * columns_, entries_.size())};
}

bool ThumbnailTableView::isOnScreen(int index) const
{
    const Range seen = onScreen();
    return index >= seen.first && index < seen.end;
}

void ThumbnailTableView::fitColumns()
{
    const int fitting = photogrid::fittingColumns(viewport()->width());
    if (!readOnly_ || fitting == columns_)
        return;
    columns_ = fitting;
    for (PhotoCell *cell : qAsConst(cells_)) {
        if (cell)
            cell->move(photogrid::cellPosition(cell->index(), columns_));
    }
}

void ThumbnailTableView::updateScrollBars()
{
    const QSize content = photogrid::contentSize(entries_.size(), columns_);
    const QSize view = viewport()->size();
    verticalScrollBar()->setRange(0, qMax(0, content.height() - view.height()));
    verticalScrollBar()->setPageStep(view.height());
    const bool hidesColumns = !entries_.isEmpty() && content.width() > view.width();
    horizontalScrollBar()->setRange(0, hidesColumns ? content.width() - view.width() : 0);
    horizontalScrollBar()->setPageStep(view.width());
}

void ThumbnailTableView::placeContent()
{
    const QSize content = photogrid::contentSize(entries_.size(), columns_);
    const int margin = qMax(0, (viewport()->width() - content.width()) / 2);
    content_->setGeometry(QRect(
        QPoint(margin - horizontalScrollBar()->value(), -verticalScrollBar()->value()), content));
}

int ThumbnailTableView::rowsPerPage() const
{
    return qMax(1, viewport()->height() / rowHeight());
}

void ThumbnailTableView::scrollContentsBy(int, int)
{
    placeContent();
}

void ThumbnailTableView::onScrollValueChanged(int)
{
    // Not at once: what is scrolled past is not to be fetched.
    if (!visibilityTimer_.isActive())
        visibilityTimer_.start();
}

void ThumbnailTableView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    fitColumns();
    updateScrollBars();
    placeContent();
    visibilityTimer_.start();
}

void ThumbnailTableView::showEvent(QShowEvent *event)
{
    QAbstractScrollArea::showEvent(event);
    visibilityTimer_.start();
}

void ThumbnailTableView::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), colours::toColor(colours::surface));
    if (!entries_.isEmpty())
        return;
    painter.setPen(colours::toColor(colours::placeholder));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
}

// Selection.

QVector<int> ThumbnailTableView::selectedIndexes() const
{
    QVector<int> indexes(selected_.cbegin(), selected_.cend());
    std::sort(indexes.begin(), indexes.end());
    return indexes;
}

void ThumbnailTableView::checkButton(int index, bool checked)
{
    PhotoCell *cell = cells_.value(index);
    if (!cell)
        return;
    const auto check = [cell, checked] { cell->selectButton()->setChecked(checked); };
    if (isOnScreen(index))
        check();
    else
        changeUnseen(cell->selectButton(), check);
}

/// True when that is a change. Does not tell the count.
bool ThumbnailTableView::select(int index, bool selected)
{
    if (selected_.contains(index) == selected)
        return false;
    if (selected)
        selected_.insert(index);
    else
        selected_.remove(index);
    changingMany_ = true;
    checkButton(index, selected);
    changingMany_ = false;
    emit selectionChanged(index, selected);
    return true;
}

void ThumbnailTableView::onPhotoSelectionChanged()
{
    if (changingMany_)
        return;
    const auto isToggled = [this](const PhotoCell *cell) {
        return cell && select(cell->index(), cell->selectButton()->isChecked());
    };
    if (std::any_of(cells_.cbegin(), cells_.cend(), isToggled))
        emit selectedCountChanged(selected_.size());
}

void ThumbnailTableView::setAllSelected(bool selected)
{
    changingMany_ = true;
    for (int index = 0; index < entries_.size(); ++index) {
        if (selected)
            selected_.insert(index);
        checkButton(index, selected);
    }
    changingMany_ = false;
    if (!selected)
        selected_.clear();
    emit selectedCountChanged(selected_.size());
}

void ThumbnailTableView::selectAll()
{
    setAllSelected(true);
}

void ThumbnailTableView::clearSelection()
{
    setAllSelected(false);
}

void ThumbnailTableView::selectRange(int from, int to)
{
    bool changed = false;
    for (int index = qMin(from, to); index <= qMax(from, to) && index < entries_.size(); ++index)
        changed = select(index, true) || changed;
    if (changed)
        emit selectedCountChanged(selected_.size());
}

// Mouse and keyboard.

bool ThumbnailTableView::eventFilter(QObject *watched, QEvent *event)
{
    const bool pressed =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (!pressed && event->type() != QEvent::MouseButtonRelease)
        return QAbstractScrollArea::eventFilter(watched, event);
    auto *mouse = static_cast<QMouseEvent *>(event);
    if (mouse->button() != Qt::LeftButton)
        return false;
    auto *cell = qobject_cast<PhotoCell *>(watched);
    if (!cell) // the button itself; whole cells are one thing to the user
        cell = static_cast<PhotoCell *>(static_cast<QWidget *>(watched)->parentWidget());
    if (pressed) {
        setFocus(Qt::MouseFocusReason);
        return true; // taken, so that the release comes here, too
    }
    const QPoint point = cell->mapFromGlobal(mouse->globalPos());
    if (!cell->rect().contains(point) || cell->parentWidget() != content_)
        return true;
    setCurrent(cell->index());
    if (readOnly_)
        return true;
    if (mouse->modifiers() & Qt::ShiftModifier) {
        selectRange(anchor_, cell->index());
    } else {
        anchor_ = cell->index();
        cell->selectButton()->toggle();
    }
    return true;
}

void ThumbnailTableView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    setCurrent(current_);
}

void ThumbnailTableView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    if (PhotoCell *cell = cells_.value(current_))
        cell->setCurrent(false);
}

void ThumbnailTableView::setCurrent(int index)
{
    if (PhotoCell *before = cells_.value(current_))
        before->setCurrent(false);
    current_ = index;
    if (PhotoCell *now = cells_.value(current_))
        now->setCurrent(hasFocus());
}

void ThumbnailTableView::moveTo(int index, bool selecting)
{
    setCurrent(index);
    if (selecting)
        selectRange(anchor_, current_);
    else
        anchor_ = current_;
    const int top = photogrid::cellPosition(current_, columns_).y();
    const int lowest = top + PhotoCell::cellSize().height() - viewport()->height();
    QScrollBar *bar = verticalScrollBar();
    bar->setValue(qMin(top, qMax(lowest, bar->value())));
}

void ThumbnailTableView::keyPressEvent(QKeyEvent *event)
{
    const int target =
        photogrid::keyTarget(event->key(), current_, count(), rowsPerPage(), columns_);
    if (event->matches(QKeySequence::SelectAll) && !readOnly_)
        selectAll();
    else if (event->key() == Qt::Key_Space && !readOnly_)
        checkButton(current_, !selected_.contains(current_));
    else if (target >= 0)
        moveTo(target, !readOnly_ && event->modifiers() & Qt::ShiftModifier);
    else
        QAbstractScrollArea::keyPressEvent(event);
}
