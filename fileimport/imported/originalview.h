#pragma once

#include "fileimport/imported/leftphotos.h"
#include "fileimport/imported/originaldeletion.h"
#include "fileimport/imported/originalrequests.h"
#include "net/servicecall.h"
#include "tasks/latest.h"
#include "tasks/ordersatwork.h"
#include "widgets/boxes/boxtext.h"

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

    /// What to tell before the window closes; empty while no deletion is under way.
    QString closingNotice() const;
    /// Ends what is going on, without waiting for it. Of a deletion that means: what the service
    /// has agreed to and is not removed yet stays on disk, and the user is told, in a box that
    /// outlives the window.
    void stop();
    bool isStopped() const;
    /// How long a closing window waits for the service's answer to a deletion, ms.
    void setPatience(int ms) { deletion_.setPatience(ms); }

signals:
    /// The service has listed the shown order's photos; how many of which kind.
    void listed(int photos, int rawFiles);
    /// A deletion is over, however it went.
    void deletionEnded();
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
    void cancelDeletion();
    void onSubmitFailed(const ServiceReply &reply);
    void onUnanswered();
    void onDeleted(const OriginalDeletionSummary &summary);
    void onDeletionEnded();
    void tellForgotten(const QVector<PhotoEntry> &listing);
    void tellLeft(const QString &heading, const QVector<DeleteFileResult> &left,
                  const QString &importPath);
    void tell(const BoxText &text);
    void tellWhenStopped();

    originalrequests::OrderMap order_;
    std::function<QVector<ImportOrder>()> listed_ = [] { return QVector<ImportOrder>(); };
    QString lastTimestamp_;   ///< of the latest listing request
    bool refreshing_ = false; ///< the overlay tells of a refresh
    bool ready_ = true;       ///< no deletion is under way
    bool listingDue_ = false; ///< when the deletion has ended
    bool stopping_ = false;
    LatestCall listing_;
    Latest reading_; ///< of its reply
    OriginalDeletion deletion_;
    ordersatwork::Claim claim_; ///< on the order that it deletes from
    originalrequests::OrderMap deletedFrom_;
    QVector<PhotoEntry> deleted_; ///< the latest deletion's
    DeletionDoubts doubts_;
    QVector<BoxText> unread_; ///< boxes that the user has not closed yet

    QLabel *title_;
    QLabel *count_;
    QPushButton *refreshButton_ = nullptr;
    QPushButton *selectAllButton_ = nullptr;
    QPushButton *clearButton_ = nullptr;
    QPushButton *deleteButton_ = nullptr;
    ThumbnailTableView *grid_;
    LoadingOverlay *overlay_;
};
