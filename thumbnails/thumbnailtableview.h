#pragma once

#include "thumbnails/photoentry.h"
#include "thumbnails/photogrid.h"
#include "thumbnails/retiredwidgets.h"
#include "thumbnails/thumbnailloadworker.h"

#include <QAbstractScrollArea>
#include <QSet>
#include <QThread>
#include <QTimer>
#include <QVector>

class PhotoCell;

/// The scrolling grid of an order's photos, five in a row as a rule. Cells are made a few at a
/// time, those on the screen first, and images are fetched, on a thread of the view's own, for
/// those cells alone that are on the screen; each at most once. Cells far from the screen give
/// their image up; the thread keeps it in fewer bytes.
///
/// Cells are selected with the mouse (Shift for a range) and with the keyboard: arrows, Home, End
/// and the page keys move, with Shift they select; blank toggles; Ctrl+A selects all. An entry can
/// be selected before its cell is made.
///
/// Lives on the interface thread. Destroying it waits for the image being decoded, unless stop()
/// was called and stopped() has come.
class ThumbnailTableView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit ThumbnailTableView(QWidget *parent = nullptr, const ThumbnailLimits &limits = {});
    ~ThumbnailTableView() override;

    /// From now on photos are looked at alone: nothing can be selected, and as many are in a row as
    /// there is room for.
    void setReadOnly();
    /// Replaces the list. The user stays at the photos that were on the screen, and those selected
    /// stay selected, as far as they are in the new list, too.
    void setEntries(const QVector<PhotoEntry> &entries);
    int count() const { return entries_.size(); }
    /// An entry without any field when there is none at \a index.
    PhotoEntry entry(int index) const { return entries_.value(index); }
    /// Tells why the grid is empty, while it is.
    void setEmptyText(const QString &text);
    const QString &emptyText() const { return emptyText_; }

    /// In the order of the list.
    QVector<int> selectedIndexes() const;
    void selectAll();
    void clearSelection();

    /// How many entries have their cell.
    int createdCells() const { return createdCells_; }
    /// Null as long as the entry has none.
    PhotoCell *cell(int index) const { return cells_.value(index); }

    /// Ends the thread without waiting; no image is loaded any more.
    void stop();
    bool isStopped() const { return !thread_.isRunning(); }

signals:
    void selectionChanged(int index, bool selected);
    void selectedCountChanged(int count);
    void loadPhotoRequest(const QString &name, const QString &icon, int index);
    void cancelAllPhotoRequests();
    /// The thread has ended.
    void stopped();

public slots:
    void onPhotoLoaded(const QPixmap &pixmap, const QString &name, int index);
    void onPhotoLoadFailed(const QString &name, int index);
    void onScrollValueChanged(int value);
    void loadVisiblePhotos();
    void createPhotoItemsBatch();
    void onPhotoSelectionChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent *event) override;

private:
    void startWorker();
    void releaseFarPictures();
    void retireCells();
    void keepSelection(const QVector<int> &positions);
    int nextToMake();
    void makeCell(int index);
    PhotoCell *awaiting(const QString &name, int index) const;

    struct Range
    {
        int first;
        int end;
    };
    /// Of entries of which some pixel is on the screen.
    Range onScreen() const;
    bool isOnScreen(int index) const;
    void fitColumns();
    void updateScrollBars();
    void placeContent();
    int rowsPerPage() const;

    void moveTo(int index, bool selecting);
    void setCurrent(int index);
    void selectRange(int from, int to);
    bool select(int index, bool selected);
    void setAllSelected(bool selected);
    void checkButton(int index, bool checked);

    const ThumbnailLimits limits_;
    bool readOnly_ = false;
    int columns_ = photogrid::columns;
    QVector<PhotoEntry> entries_;
    QVector<PhotoCell *> cells_; ///< one for each entry; null until it is made
    int createdCells_ = 0;
    int nextCell_ = 0; ///< all before it are made
    QSet<int> selected_;
    QSet<int> pictured_; ///< cells that hold an image
    int current_ = 0;    ///< where the keyboard is
    int anchor_ = 0;     ///< where a range begins
    int generation_ = 0;
    int batchGeneration_ = 0; ///< the list that the batch timer makes cells for
    int pendingCancels_ = 0;  ///< while there are any, images belong to an earlier list
    bool changingMany_ = false;
    QString emptyText_;
    QWidget *content_;
    RetiredWidgets retired_; ///< contents of earlier lists
    QTimer visibilityTimer_;
    QTimer batchTimer_;
    QThread thread_;
    bool ending_ = false;
};
