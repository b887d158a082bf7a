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
    /// Shows \a files of \a order, and above them what is wrong with them; in their place why, when
    /// there are none.
    void showProblem(const BatchDeleteOrderInfo &order, const QVector<BatchDeleteFileInfo> &files,
                     const QString &problem, const QString &reason);
    /// The files of \a order are being looked for, by somebody else.
    void showSearch(const BatchDeleteOrderInfo &order);
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
    /// \a problem in a word or two; \a reason in full.
    void scanFailed(const BatchDeleteOrderInfo &order, const QString &problem,
                    const QString &reason);

public slots:
    void onRetrySubmit(int row);
    void onRetryDelete(int row);
    void onScanFinished(const FileScanResult &result);
    void onScanProgress(int count);

private:
    void buildTable();
    void addActions();
    void fill(const BatchDeleteOrderInfo &order, const QVector<BatchDeleteFileInfo> &files,
              const QString &emptyText);
    void endScan();
    QVector<int> selectedRows() const;
    static QString scanText(const BatchDeleteOrderInfo &order);

    BatchDeleteOrderInfo order_; ///< without its files
    BatchDeleteFileModel model_;
    std::unique_ptr<FileScanThread> scan_;
    QLabel *pathLabel_; ///< of the order's folder, which a deletion empties
    QLabel *noteLabel_; ///< why the order was refused or what failed, whole
    QLabel *countLabel_;
    QPushButton *refreshButton_;
    EmptyStateTable *table_;
    LoadingOverlay *overlay_;
};
