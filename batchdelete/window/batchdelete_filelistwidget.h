#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "batchdelete/window/batchdeletefilemodel.h"

#include <QVector>
#include <QWidget>

#include <memory>

class EmptyStateTable;
class FileScanThread;
class LoadingOverlay;
class QLabel;
class QPushButton;

/// The right half of the deletion window: the files of the order shown. Lists what lies in the
/// order's folder by a scan of its own, which the user can cancel.
class BatchDelete_FileListWidget : public QWidget
{
    Q_OBJECT

public:
    explicit BatchDelete_FileListWidget(QWidget *parent = nullptr);
    ~BatchDelete_FileListWidget() override;

    /// Empty when no order is shown.
    OrderIdentity orderId() const { return order_.identity(); }
    /// Shows these files of \a order; a scan that goes on is abandoned.
    void showFiles(const BatchDeleteOrderInfo &order, const QVector<BatchDeleteFileInfo> &files);
    /// Shows nothing of \a order, and why.
    void showRefusal(const BatchDeleteOrderInfo &order, const QString &reason);
    /// Reads the folder of \a order; scanned() tells what is there. For an order that a run has
    /// processed nothing is shown before showFiles().
    void scan(const BatchDeleteOrderInfo &order);
    /// No order is shown.
    void clear();
    void setFile(int index, const BatchDeleteFileInfo &file);

signals:
    // Indexes are positions in the order's list of files.
    void retrySubmitClicked(int fileIndex);
    void retryDeleteClicked(int fileIndex);
    void retryClicked(const QVector<int> &fileIndexes);
    void refreshOrderFiles(const QString &orderPhotoId);
    void scanned(const BatchDeleteOrderInfo &order, const QVector<BatchDeleteFileInfo> &files);

public slots:
    void onRetrySubmit(int row);
    void onRetryDelete(int row);
    void onScanFinished(const FileScanResult &result);
    void onScanProgress(int count);

private:
    void buildTable();
    void addActions();
    void showCount();
    void endScan(const QString &emptyText);
    QVector<int> selectedRows() const;
    QString scanText() const;

    BatchDeleteOrderInfo order_; ///< without its files
    BatchDeleteFileModel model_;
    std::unique_ptr<FileScanThread> scan_;
    QLabel *countLabel_;
    QPushButton *refreshButton_;
    EmptyStateTable *table_;
    LoadingOverlay *overlay_;
};
