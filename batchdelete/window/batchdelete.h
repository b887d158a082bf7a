#pragma once

#include "batchdelete/rules/deletionrequests.h"
#include "batchdelete/run/batchdeleterun.h"
#include "batchdelete/run/deletiontexts.h"
#include "batchdelete/window/batchdelete_delegates.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "files/sharedfolderopener.h"
#include "net/branchsession.h"
#include "widgets/windows/framelesswindow.h"

#include <QList>
#include <QMap>
#include <QStringList>

class BatchDelete_FileListWidget;
class BatchDelete_OrderListWidget;
class BatchDelete_RunBar;
class DeletionApproval;
class DeletionQuestions;
class NoticeBar;
class OrderFinder;
class OrderSearchBar;
class PendingBar;
class UnreportedDeletions;
class SharedWidth;

/// The tool window for deleting all files of many orders: search orders, tick them, confirm what is
/// going to be emptied, confirm the account, and see what becomes of every file. What it decides
/// lives in deletionrules, deletionrequests and BatchDeleteRun.
class BatchDelete : public FramelessWindow
{
    Q_OBJECT

public:
    explicit BatchDelete(QWidget *parent = nullptr);
    ~BatchDelete() override;

signals:
    /// The branch was switched: "shopid", "superid", "managerid".
    void changeShop(const QMap<QString, QString> &shop);

public slots:
    void reqShopInfo();
    void onSearchClick();
    void onBranchSelectionChanged(int index);
    void onSearchTypeChanged(int type);
    /// Stops instead while a run goes on.
    void onStartBatchDelete();
    void onOrderSelectionChanged(const QList<BatchDeleteOrderInfo> &orders);

protected:
    CloseAnswer closeRequested() override;
    void showEvent(QShowEvent *event) override;

private:
    void buildLayout();
    void connectLists();
    void connectRun();
    void connectUnreported();
    void countUnreported();

    void onBranchLeft();
    void onBranchSwitched();
    void reqOrderList();
    QStringList publicRoots() const;
    bool mayDelete();
    QString unreportedQuestion(deletiontexts::Leaving leaving) const;

    void showOrder(const BatchDeleteOrderInfo &order);
    void scan(const BatchDeleteOrderInfo &order);
    void onRefreshOrderFiles();
    void onFilesScanned(const BatchDeleteOrderInfo &order,
                        const QVector<BatchDeleteFileInfo> &files);
    void onScanFailed(const BatchDeleteOrderInfo &order, const QString &problem,
                      const QString &reason);
    void setFiles(const OrderIdentity &orderId, const QVector<BatchDeleteFileInfo> &files);
    void onViewClicked(int row, BatchDeleteProgressDelegate::Button button);
    void retryFiles(const QVector<int> &indexes);

    void startRun(const QVector<BatchDeleteOrderInfo> &orders);
    void onOrderStarted(const OrderIdentity &orderId);
    void onOrderNoted(const OrderIdentity &orderId, const QString &note);
    void onOrderDone(const OrderIdentity &orderId);
    void onFileChanged(const OrderIdentity &orderId, int index, const BatchDeleteFileInfo &file);
    void showRunState();

    BatchDeleteOrderModel orders_;
    BranchSession branch_;
    QStringList switchedRoots_; ///< public import roots of the branches that were switched to
    BatchDeleteRun run_;
    OrderIdentity atWork_; ///< order of a run whose files were shown last
    SharedFolderOpener folderOpener_;
    bool opened_ = false;

    OrderSearchBar *searchBar_;
    NoticeBar *notices_;
    PendingBar *pending_;
    UnreportedDeletions *unreported_;
    BatchDelete_RunBar *runBar_;
    BatchDelete_OrderListWidget *orderList_;
    BatchDelete_FileListWidget *fileList_;
    SharedWidth *halves_ = nullptr;
    OrderFinder *finder_;
    DeletionApproval *approval_ = nullptr;
    DeletionQuestions *questions_ = nullptr;
};
