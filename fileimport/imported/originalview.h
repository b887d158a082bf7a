#pragma once

#include "fileimport/imported/originaldeletion.h"
#include "fileimport/imported/originalrequests.h"
#include "net/servicecall.h"
#include "tasks/latest.h"
#include "tasks/ordersatwork.h"

#include <QString>
#include <QVector>
#include <QWidget>

#include <functional>

class LoadingOverlay;
class QLabel;
class QPushButton;
class ThumbnailTableView;

/// The photos and raw files that the service has on its books as imported for one order: shows them
/// and deletes some, first on the service, then on disk. F5 refreshes, Delete deletes.
///
/// Before it is destroyed stop() is called and stopped() waited for; otherwise its destructor waits
/// for what its threads are doing.
class OriginalView : public QWidget
{
    Q_OBJECT

public:
    explicit OriginalView(QWidget *parent = nullptr);
    ~OriginalView() override;

    /// Where the orders listed beside the shown one come from: a deletion touches none of their
    /// folders.
    void setListedOrders(const std::function<QVector<ImportOrder>()> &orders) { listed_ = orders; }
    /// The order to show; an empty map shows none.
    void setOrder(const originalrequests::OrderMap &order);
    /// Lists the order's photos anew, covered meanwhile. Nothing happens without an order or during
    /// a deletion.
    void refresh();
    /// The same while the view, and the keyboard, stay as they are; during a deletion it waits for
    /// the end of that.
    void requestListing();
    void deleteSelected();

    /// Ends what is going on, without waiting. No box is shown any more.
    void stop();
    bool isStopped() const;

signals:
    /// The service has listed the shown order's photos; how many of which kind.
    void listed(int photos, int rawFiles);
    /// Nothing goes on any more.
    void stopped();

private:
    void build();
    QPushButton *addButton(const QString &text, const char *name, const QString &style);

    void onListing(const ServiceReply &reply);
    void abandonListing();
    void showListing(const QVector<PhotoEntry> &entries);
    void endRefreshing();
    void showEmpty(const QString &why);
    void showCount();

    QVector<PhotoEntry> selectedEntries() const;
    void startDeletion(const originalrequests::OrderMap &order,
                       const QVector<PhotoEntry> &deletable);
    void onSubmitFailed(const ServiceReply &reply);
    void onDeleted(const OriginalDeletionSummary &summary);

    originalrequests::OrderMap order_;
    std::function<QVector<ImportOrder>()> listed_ = [] { return QVector<ImportOrder>(); };
    QString lastTimestamp_;   ///< of the latest listing request
    bool refreshing_ = false; ///< the overlay tells of a refresh
    bool ready_ = true;       ///< no deletion is under way
    bool listingDue_ = false; ///< was asked for during a deletion
    bool stopping_ = false;
    LatestCall listing_;
    Latest reading_; ///< of its reply
    OriginalDeletion deletion_;
    ordersatwork::Claim claim_; ///< on the order that it deletes from

    QLabel *title_;
    QLabel *count_;
    QPushButton *refreshButton_ = nullptr;
    QPushButton *selectAllButton_ = nullptr;
    QPushButton *clearButton_ = nullptr;
    QPushButton *deleteButton_ = nullptr;
    ThumbnailTableView *grid_;
    LoadingOverlay *overlay_;
};
