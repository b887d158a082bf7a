#pragma once

#include "fileimport/window/orderactionsdelegate.h"
#include "files/transferprogress.h"

#include <QStringList>
#include <QWidget>

#include <functional>

class ArrangedColumns;
class ImportOrderTableModel;
class LoadingOverlay;
class NoticeBar;
class OrderSearchBar;
class FileDropTable;
class QPushButton;
class SortedRows;
class TransferView;

/// The left half of the import window: search bar, order table, progress and the start button. It
/// decides nothing. All rows in its signals are positions in the model's list, however the table is
/// sorted.
class ImportOrderPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ImportOrderPanel(ImportOrderTableModel *model, QWidget *parent = nullptr);

    OrderSearchBar *searchBar() const { return searchBar_; }
    FileDropTable *table() const { return table_; }
    /// Covers the table alone, so that the search bar stays usable.
    LoadingOverlay *overlay() const { return overlay_; }
    /// What waits for the user, between the table and the start button.
    NoticeBar *notices() const { return notices_; }

    /// Position of the selected order; -1 without one.
    int selectedRow() const;
    /// False when the photo set is not listed.
    bool selectPhotoSet(const QString &orderPhotoId);
    /// Runs \a change, which replaces the orders, and brings selection and scroll position back.
    void keepPlaceWhile(const std::function<void()> &change);

    /// Arranges the columns as the user left them in \a tool.
    void openColumns(const QString &tool);

    /// Pixels in which the buttons of the orders are in sight, without what comes after them.
    int widthWithActions() const;

    /// Whether the user is offered to have a card checked.
    void offerCardCheck(bool offered);
    /// Whether the start button stops instead.
    void setRunning(bool running);
    TransferView *progress() const { return progress_; }

signals:
    void selectionChanged();
    void orderNumberClicked(int row);
    void actionClicked(int row, OrderActionsDelegate::Action action);
    void registerAgainClicked(int row);
    void filesDropped(int row, const QStringList &paths);
    void startClicked();
    void cardCheckClicked();
    void orderCheckClicked(int row);

private:
    void buildTable();
    void buildLayout();
    void addActions();
    void addRowActions();
    void setColumnWidths();
    /// Makes room for the link of the orders that have one; columns never shrink under the mouse.
    void makeRoomForLinks();

    ImportOrderTableModel *model_;
    OrderSearchBar *searchBar_;
    FileDropTable *table_;
    SortedRows *rows_ = nullptr;
    ArrangedColumns *columns_ = nullptr;
    LoadingOverlay *overlay_;
    NoticeBar *notices_;
    TransferView *progress_;
    QPushButton *startButton_;
    QPushButton *cardCheckButton_;
};
