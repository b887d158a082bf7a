#pragma once

#include "net/branchsession.h"
#include "net/orderfolders.h"
#include "widgets/orders/orderdestination.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

#include <any>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

class EmptyStateTable;
class LoadingOverlay;
class OrderSearchBar;
class QWidget;

/// What happens between a tool's search bar and its table of orders: switches branches, searches,
/// lists the persons of a branch, tells on the table's overlay what is waited for and in a box what
/// failed. Another branch takes with it whom and what the former one had: the finder empties the
/// persons, and has the tool empty the rest. The tool decides whether a branch may be left, and
/// what a reply means. Interface thread.
class OrderFinder : public QObject
{
    Q_OBJECT

public:
    /// Where the finder works; all of it is the tool's and lives as long as its window.
    struct Place
    {
        BranchSession *branch;
        OrderSearchBar *bar;
        EmptyStateTable *table;
        LoadingOverlay *overlay; ///< over the table
    };

    /// \a window owns the finder and the boxes that it shows.
    OrderFinder(QWidget *window, const Place &place);

    /// What the tool says to another branch; texts for the user, empty when there is nothing to
    /// say.
    struct Leaving
    {
        std::function<QString()> refusal;  ///< why the orders may not be left now
        std::function<QString()> question; ///< to ask first, for what would be lost
    };
    /// What a tool does its own way.
    struct Ways
    {
        std::function<void()> search; ///< sends a search, when the bar does not say it all
        bool keepsKeyword = false;    ///< after a switch the same is searched for
        QString ServiceReply::*refusal = &ServiceReply::msg; ///< of a switch, if there is one
    };
    void setWays(Ways ways) { ways_ = std::move(ways); }
    void setLeaving(Leaving leaving) { leaving_ = std::move(leaving); }

    /// Lists the branches and switches to the one that the window opened in.
    void open();
    /// Switches to the branch that the user chose, for the tools opened later, too: unless the tool
    /// refuses, or the user is asked and says no.
    void chooseBranch(const QString &shopId);
    /// Leads to an order: to its branch as chooseBranch() does, then searches its number the way
    /// that the search bar asks the tool for it, and selects it among what is found.
    void goTo(const OrderPlace &place);
    /// Makes the row of a photo set the current one; false when it is not listed.
    void setSelect(std::function<bool(const QString &orderPhotoId)> select)
    {
        select_ = std::move(select);
    }
    /// Switches to the branch again: the switch at opening failed, or was cancelled. To the one
    /// that the search bar shows when the window opened in none.
    void confirmBranch();
    /// Back to the branch that the service confirmed last, in the search bar.
    void showBranch();
    void titleBranch();
    /// For what the search bar says.
    void search();
    /// The answer to a search that Ways::search sent past the branch session: of a good one with
    /// the list that setReader()'s \a take takes, and where the files of its orders lie.
    template <typename List>
    void answer(ServiceReply reply, const List &list,
                const QVector<orderfolders::OrderFolder> &folders)
    {
        if (reply.isSuccess())
            reply.made = Made<List>{list, folders};
        onSearched(reply);
    }
    /// The latest search once more, in silence. False, and nothing happens, while there is a search
    /// or no branch.
    bool refresh();
    /// Abandons switch and search.
    void cancel();

    enum class Search { Asked, Refresh };
    /// Has \a read make a list of orders (orderqueries::FoundOrders) of a good reply, on a thread,
    /// and \a take put it into the tool with what kind of search it is of. A reply without a list
    /// changes nothing. Nor does one that is late: the search has ended, another has begun, or it
    /// is a refresh and the tool refuses by now to have its orders left.
    template <typename Read, typename Take> void setReader(Read read, Take take)
    {
        using List = std::decay_t<
            std::invoke_result_t<Read, const QJsonObject &, const orderqueries::SearchedBranch &>>;
        place_.branch->setOrderReader(
            [read](const QJsonObject &reply, const orderqueries::SearchedBranch &branch) {
                return std::any(Made<List>{read(reply, branch), orderfolders::read(reply, branch)});
            });
        take_ = [this, take](const std::any &any, Search search) {
            const auto &[list, folders] = *std::any_cast<Made<List>>(&any);
            orderfolders::remember(folders);
            if (list.isList)
                take(list, search);
            if (search == Search::Asked)
                tellFound(list.elements, list.orders.size());
        };
    }

signals:
    /// A switch or a search has begun, or ended.
    void busyChanged(bool busy);
    /// The branch is another one now, and nothing of the former's may be worked on in its name:
    /// orders, what was chosen for them and what is being chosen are to go. Before
    /// branchSwitched().
    void branchLeft();
    /// The search bar shows the new branch and asks for nothing yet.
    void branchSwitched();

private:
    template <typename List> struct Made
    {
        List list;
        QVector<orderfolders::OrderFolder> folders;
    };

    QString refusal() const { return leaving_.refusal ? leaving_.refusal() : QString(); }
    /// Goes on with \a leave unless the tool refuses, or the user is asked and says no.
    void ifMayLeave(const std::function<void()> &leave);
    void leaveFor(const QString &shopId);
    void switchTo(const QString &shopId);
    /// Abandons the search, if there is one, and takes the overlay away.
    void endSearch();
    void keepBranch();
    void setBusy(bool busy);
    void onSwitched();
    void onSwitchFailed(const ServiceReply &reply, const QString &refusal);
    void onSearched(const ServiceReply &reply);
    void tellFound(int elements, int orders);

    QWidget *window_;
    Place place_;
    Leaving leaving_;
    Ways ways_;
    std::function<void(const std::any &made, Search search)> take_; ///< what the reader made
    QString listedBranch_; ///< id of the branch that orders and persons are of
    std::function<bool(const QString &orderPhotoId)> select_;
    std::optional<OrderPlace> wanted_; ///< what is led to, until its search has ended
    orderqueries::OrderSearch lastSearch_;
    QString lastPerson_;
    bool refreshing_ = false; ///< the search under way is the silent one
};
