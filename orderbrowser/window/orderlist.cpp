#include "orderbrowser/window/orderlist.h"

#include "app/context/accountcontext.h"
#include "orderbrowser/rules/fieldfilter.h"
#include "orderbrowser/window/browsertable.h"
#include "orderbrowser/window/chosenphotosview.h"
#include "orderbrowser/window/columndialog.h"
#include "orderbrowser/window/detailspane.h"
#include "orderbrowser/window/exportbutton.h"
#include "orderbrowser/window/filterchips.h"
#include "orderbrowser/window/orderactions.h"
#include "platform/freedmemory.h"
#include "tasks/background.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/inputs/customcheckboxnew.h"
#include "widgets/inputs/inputs.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QAction>
#include <QBoxLayout>
#include <QLocale>
#include <QPushButton>
#include <QSplitter>

namespace {

constexpr int keepAfterMs = 500;
constexpr int manyOrders = 5000;
constexpr int giveBackAfterMs = 1000;

QString grouped(int count)
{
    return QLocale(QLocale::Chinese, QLocale::China).toString(count);
}

} // namespace

OrderList::OrderList(QWidget *parent)
    : FramelessWindow(parent)
    , store_(AccountContext::uid)
    , searchBar_(new OrderSearchBar(this))
    , table_(new BrowserTable(this))
    , overlay_(new LoadingOverlay(table_))
    , finder_(new OrderFinder(this, {&branch_, searchBar_, table_, overlay_}))
    , details_(new DetailsPane)
    , chips_(new FilterChips(this))
    , viewBox_(new ComboBox(this))
    , refreshButton_(new QPushButton(QStringLiteral("刷新"), this))
    , export_(new ExportButton(table_, this))
    , counts_(new PlainLabel(this))
    , selected_(new PlainLabel(this))
    , refreshed_(new PlainLabel(this))
{
    setWindowTitle(QStringLiteral("订单列表"));
    keepTimer_.setSingleShot(true);
    keepTimer_.setInterval(keepAfterMs);
    connect(&keepTimer_, &QTimer::timeout, this, [this] { store_.write(views_); });
    buildLayout();
    connectSearch();
    connectTable();
    addKeys();
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    showView();
    showCounts();
}

OrderList::~OrderList()
{
    disconnect(table_, nullptr, this, nullptr);
    disconnect(details_->photos(), nullptr, this, nullptr);
    rangeSearch_.disconnect();
}

void OrderList::buildLayout()
{
    searchBar_->addPersonFilter();
    searchBar_->addRangeEnd();
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    const int margin = theme::margin();
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(theme::spacing());
    layout->addWidget(searchBar_);
    layout->addWidget(controls());
    layout->addWidget(chips_);
    auto *splitter = new QSplitter(Qt::Horizontal);
    splitter->setStyleSheet(theme::splitterStyle());
    splitter->addWidget(table_);
    splitter->addWidget(details_);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    details_->hide();
    layout->addWidget(splitter, 1);
    layout->addWidget(foot());
    setContent(content);
}

QWidget *OrderList::controls()
{
    viewBox_->setObjectName(QStringLiteral("viewBox"));
    viewBox_->setMinimumWidth(theme::narrowestChoice());
    refreshButton_->setObjectName(QStringLiteral("refreshButton"));
    refreshButton_->setStyleSheet(theme::secondaryButtonStyle());
    refreshButton_->setToolTip(QStringLiteral("F5"));
    refreshed_->setObjectName(QStringLiteral("refreshedLabel"));
    refreshed_->setStyleSheet(theme::hintStyle());
    auto *phones = new CustomCheckBoxNew(QStringLiteral("显示电话"), this);
    phones->setObjectName(QStringLiteral("phonesBox"));
    connect(phones, &QCheckBox::toggled, this, [this](bool whole) {
        fieldvalues::Display display = table_->orders()->display();
        display.wholePhones = whole;
        table_->orders()->setDisplay(display);
        showDetails();
    });

    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    auto *label = new PlainLabel(QStringLiteral("视图:"));
    label->setBuddy(viewBox_);
    layout->addWidget(label);
    layout->addWidget(viewBox_);
    auto *columns = new QPushButton(QStringLiteral("列设置"));
    columns->setObjectName(QStringLiteral("columnsButton"));
    columns->setStyleSheet(theme::secondaryButtonStyle());
    connect(columns, &QPushButton::clicked, this, &OrderList::arrangeColumns);
    layout->addWidget(columns);
    layout->addWidget(phones);
    layout->addStretch();
    auto *details = new CustomCheckBoxNew(QStringLiteral("详情"), this);
    details->setObjectName(QStringLiteral("detailsBox"));
    details->setShortcut(Qt::Key_F4);
    details->setToolTip(QStringLiteral("F4"));
    connect(details, &QCheckBox::toggled, this, [this](bool shown) {
        details_->setVisible(shown);
        showDetails();
    });
    layout->insertWidget(layout->count() - 1, details);
    layout->addWidget(refreshed_);
    layout->addWidget(refreshButton_);
    layout->addWidget(export_);
    return row;
}

QWidget *OrderList::foot()
{
    counts_->setObjectName(QStringLiteral("countLabel"));
    selected_->setObjectName(QStringLiteral("selectedLabel"));
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::margin());
    layout->addWidget(counts_);
    layout->addWidget(selected_);
    layout->addStretch();
    return row;
}

void OrderList::connectSearch()
{
    OrderFinder::Ways ways;
    ways.search = [this] {
        rangeSearch_.start(asked_, branch_.identity(),
                           {branch_.identity().shopId, branch_.publicPath()});
    };
    finder_->setWays(ways);
    finder_->setReader(&orderlistings::read, [this](const OrderListing &listing,
                                                    OrderFinder::Search) { takeListing(listing); });
    connect(finder_, &OrderFinder::branchSwitched, this, &OrderList::onBranchSwitched);
    connect(finder_, &OrderFinder::branchLeft, this, [this] { takeListing({}); });
    connect(finder_, &OrderFinder::busyChanged, this, [this](bool busy) {
        refreshButton_->setEnabled(!busy && hasAsked_);
        if (!busy)
            rangeSearch_.cancel();
    });
    connect(&rangeSearch_, &RangeSearch::finished, this,
            [this](const ServiceReply &reply, const OrderListing &listing) {
                finder_->answer(reply, listing, listing.folders);
            });
    connect(&rangeSearch_, &RangeSearch::progressed, this, [this](int answered, int requests) {
        if (requests < 2)
            return;
        overlay_->setText(QStringLiteral("正在查询订单... %1/%2 天").arg(answered).arg(requests));
        overlay_->setProgress(answered, requests);
    });
    connect(searchBar_, &OrderSearchBar::searchRequested, this, &OrderList::onSearchRequested);
    connect(searchBar_, &OrderSearchBar::branchChosen, this,
            [this](int index) { finder_->chooseBranch(searchBar_->branchId(index)); });
    connect(refreshButton_, &QPushButton::clicked, this, &OrderList::refresh);
    refreshButton_->setEnabled(false);
}

void OrderList::connectTable()
{
    connect(&arranger_, &OrderArranger::arranged, this, &OrderList::showRows);
    connect(table_, &BrowserTable::sortingChanged, this,
            [this](const QVector<OrderArrangement::Sorting> &sorting) {
                OrderView view = views_.current();
                view.sorting = sorting;
                changeView(view);
                table_->showView(view);
                arrange();
            });
    connect(table_, &BrowserTable::viewChanged, this, &OrderList::changeView);
    connect(table_, &BrowserTable::columnsWanted, this, &OrderList::arrangeColumns);
    connect(table_, &BrowserTable::restoreWanted, this, [this] {
        views_.restoreCurrent();
        showView();
        arrange();
        keepViews();
    });
    connect(table_, &BrowserTable::filterTyped, this, &OrderList::setFilter);
    connect(table_, &BrowserTable::selectionChangedTo, this, &OrderList::showCounts);
    connect(table_, &BrowserTable::currentOrderChanged, this, &OrderList::showDetails);
    auto *actions = new OrderActions(table_, this);
    connect(actions, &OrderActions::openToolRequested, this, &OrderList::openToolRequested);
    connect(actions, &OrderActions::orderCheckRequested, this, &OrderList::orderCheckRequested);
    connect(details_, &DetailsPane::openFolderClicked, actions, &OrderActions::openFolder);
    connect(details_->photos(), &ChosenPhotosView::stopped, this, &OrderList::endClosing);
    connect(export_, &ExportButton::ended, this, &OrderList::endClosing);
    connect(chips_, &FilterChips::removed, this,
            [this](const QString &key) { setFilter(key, {}); });
    connect(chips_, &FilterChips::allRemoved, this, [this] {
        filters_.clear();
        showFilters();
        arrange();
    });
    connect(viewBox_, qOverload<int>(&QComboBox::activated), this,
            [this](int index) { chooseView(viewBox_->itemText(index)); });
    connect(&store_, &ViewStore::hasRead, this, [this](const OrderViews &views) {
        views_ = views;
        viewsRead_ = true;
        showView();
        arrange();
        restoreSearch();
    });
    connect(&store_, &ViewStore::hasWritten, this, &OrderList::endClosing);
}

void OrderList::addKeys()
{
    auto *again = new QAction(QStringLiteral("刷新"), this);
    again->setShortcut(Qt::Key_F5);
    connect(again, &QAction::triggered, this, &OrderList::refresh);
    addAction(again);
}

void OrderList::showEvent(QShowEvent *event)
{
    FramelessWindow::showEvent(event);
    if (opened_)
        return;
    opened_ = true;
    store_.read();
    finder_->open();
}

FramelessWindow::CloseAnswer OrderList::closeRequested()
{
    finder_->cancel();
    if (keepTimer_.isActive()) {
        keepTimer_.stop();
        store_.write(views_);
    }
    details_->photos()->stop();
    return hasEnded() ? CloseAnswer::Close : CloseAnswer::CloseLater;
}

bool OrderList::hasEnded() const
{
    return !store_.isWriting() && !export_->isUnderWay() && details_->photos()->isStopped();
}

void OrderList::endClosing()
{
    if (isClosingLater() && hasEnded())
        finishClosing();
}

// Branch and search.

void OrderList::onBranchSwitched()
{
    branch_.listPersons();
    hasAsked_ = false;
    if (restored_)
        onSearchRequested();
    else
        restoreSearch();
}

/// What was asked for when the window was open before is shown, and sent when the user says so.
void OrderList::restoreSearch()
{
    if (restored_ || !viewsRead_ || !branch_.isConfirmed())
        return;
    restored_ = true;
    if (const auto last = views_.lastSearch(branch_.identity().shopId))
        searchBar_->showSearch(last->search, last->until, last->personId);
    table_->setEmptyText(QStringLiteral("按“搜索”或 Enter 查询订单；不输入文字则查询全部订单"));
}

void OrderList::onSearchRequested()
{
    if (branch_.isConfirmed())
        search({searchBar_->search(), searchBar_->rangeEnd(), searchBar_->personId()});
    else
        finder_->confirmBranch();
}

void OrderList::search(const BrowserSearch &search)
{
    const QString problem = search.problem();
    if (!problem.isEmpty()) {
        MessageBox::warning(this, problem);
        return;
    }
    asked_ = search;
    hasAsked_ = true;
    views_.keepSearch(branch_.identity().shopId, search);
    keepViews();
    finder_->search();
}

void OrderList::refresh()
{
    if (hasAsked_ && branch_.isConfirmed() && !searchBar_->isBusy())
        search(asked_);
}

void OrderList::takeListing(const OrderListing &listing)
{
    listing_ = listing;
    listing_.folders.clear(); // they are remembered
    fieldvalues::Display display = table_->orders()->display();
    display.today = QDate::currentDate();
    table_->orders()->setDisplay(display);
    refreshed_->setText(listing.isList
                            ? QStringLiteral("上次刷新 %1")
                                  .arg(QTime::currentTime().toString(QStringLiteral("HH:mm")))
                            : QString());
    arrange();
    // The reply that they were read from is several times as large, and gone by then.
    if (listing.orders.size() >= manyOrders)
        QTimer::singleShot(giveBackAfterMs, this, &OrderList::giveBackMemory);
}

void OrderList::giveBackMemory()
{
    onProcessor(
        this,
        [] {
            platform::giveBackFreedMemory();
            return true;
        },
        [](bool) {});
}

// What is shown, and how.

void OrderList::arrange()
{
    arranger_.arrange(listing_,
                      {views_.current().sorting, filters_, table_->orders()->display().today});
}

void OrderList::showRows(const OrderListing &listing, const QVector<int> &rows)
{
    table_->showOrders(listing, rows);
    if (rows.isEmpty() && !listing.orders.isEmpty())
        table_->setEmptyText(QStringLiteral("没有符合筛选条件的订单"));
    showFilters();
    showCounts();
}

void OrderList::setFilter(const QString &key, const QString &text)
{
    if (text.trimmed().isEmpty())
        filters_.remove(key);
    else
        filters_.insert(key, text);
    showFilters();
    arrange();
}

void OrderList::showFilters()
{
    table_->showFilters(filters_);
    QVector<FilterChips::Chip> chips;
    for (const orderfields::OrderField &field : qAsConst(listing_.fields)) {
        if (filters_.contains(field.key)) {
            chips.append({field.key, QStringLiteral("%1: %2").arg(
                                         field.heading, filters_.value(field.key).trimmed())});
        }
    }
    chips_->setChips(chips);
}

void OrderList::chooseView(const QString &name)
{
    if (!views_.choose(name))
        return;
    showView();
    arrange();
    keepViews();
}

void OrderList::showView()
{
    viewBox_->clear();
    viewBox_->addItems(views_.names());
    viewBox_->setCurrentText(views_.current().name);
    table_->showView(views_.current());
}

void OrderList::arrangeColumns()
{
    auto *dialog = new ColumnDialog(this, views_, table_->orders()->listing().fields);
    connect(dialog, &ColumnDialog::chosen, this, [this](const OrderViews &views) {
        views_ = views;
        showView();
        arrange();
        keepViews();
    });
    dialog->open();
}

void OrderList::changeView(const OrderView &view)
{
    views_.changeCurrent(view);
    keepViews();
}

/// Before they are read there is nothing of the user's to keep.
void OrderList::keepViews()
{
    if (viewsRead_ && !keepTimer_.isActive())
        keepTimer_.start();
}

void OrderList::showCounts()
{
    const int shown = table_->orders()->rowCount();
    counts_->setText(
        QStringLiteral("显示 %1 / 共 %2").arg(grouped(shown), grouped(listing_.orders.size())));
    if (listing_.unreadable > 0) {
        counts_->setText(counts_->text() +
                         QStringLiteral("，%1 项无法读取").arg(grouped(listing_.unreadable)));
    }
    selected_->setText(QStringLiteral("已选 %1 行").arg(grouped(table_->selectedRows().size())));
}

void OrderList::showDetails()
{
    if (details_->isVisible())
        details_->showOrder(table_->orders()->listing(), table_->currentOrder(),
                            table_->orders()->display(), branch_.identity());
}
