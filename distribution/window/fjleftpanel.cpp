#include "distribution/window/fjleftpanel.h"

#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "distribution/rules/distributionrequests.h"
#include "distribution/window/proofpanel.h"
#include "distribution/window/tickdelegate.h"
#include "look/colours.h"
#include "widgets/boxes/toast.h"
#include "widgets/orders/orderfinder.h"
#include "widgets/tables/arrangedcolumns.h"
#include "widgets/tables/frozentable.h"
#include "widgets/tables/sortedrows.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QClipboard>
#include <QDebug>
#include <QGuiApplication>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

using Column = DistributionOrderModel::Column;

namespace {

constexpr int tickColumnPx = 40;
constexpr int numberColumnPx = 96;
constexpr int nameColumnPx = 76;
constexpr int timeColumnPx = 140;
constexpr int packageColumnPx = 110;
constexpr int countColumnPx = 104;
constexpr int wideColumnPx = 96;
constexpr int errorListPx = 96;

} // namespace

FJLeftPanel::FJLeftPanel(OrderSearchBar *bar, QWidget *parent)
    : QWidget(parent)
    , searchType_(distributionrequests::searchTypeText(orderqueries::OrderSearch::BasicInformation))
    , table_(new FrozenTable(this))
    , ticks_(new TickDelegate(table_))
    , finder_(new OrderFinder(this, {&branch_, bar, table_, new LoadingOverlay(table_)}))
    , selectAll_(new QPushButton(QStringLiteral("全选"), this))
    , unselectAll_(new QPushButton(QStringLiteral("取消全选"), this))
    , ticked_(new PlainLabel(this))
    , progressLabel_(new PlainLabel(this))
    , stepLabel_(new PlainLabel(this))
    , speedLabel_(new PlainLabel(this))
    , progressBar_(new QProgressBar(this))
    , proofPanel_(new ProofPanel(this))
{
    buildTable();
    buildLayout();
    connectFinder();
    connect(selectAll_, &QPushButton::clicked, this, &FJLeftPanel::onSelectAllClicked);
    connect(unselectAll_, &QPushButton::clicked, this, &FJLeftPanel::onUnselectAllClicked);
    connect(&model_, &DistributionOrderModel::tickedChanged, this, &FJLeftPanel::orderSelected);
    const auto countTicks = [this] {
        ticked_->setText(QStringLiteral("已勾选 %1 个订单").arg(model_.tickedCount()));
    };
    connect(&model_, &DistributionOrderModel::tickedChanged, this, countTicks);
    connect(&model_, &QAbstractItemModel::modelReset, this, countTicks);
    countTicks();
}

FJLeftPanel::~FJLeftPanel()
{
    // The table outlives the model it shows by a moment.
    table_->setModel(nullptr);
}

void FJLeftPanel::buildTable()
{
    table_->setObjectName(QStringLiteral("orderTable"));
    table_->setAccessibleName(QStringLiteral("订单"));
    prepareTable(table_);
    table_->setStyleSheet(theme::plainTableStyle());
    table_->shadeHoveredRow(colours::rowHover);
    table_->setAlternatingRowColors(false);
    rows_ = new SortedRows(table_, &model_, DistributionOrderModel::SortRole);
    table_->setItemDelegateForColumn(Column::TickColumn, ticks_);
    const auto widen = [this](std::initializer_list<int> columns, int px) {
        for (const int column : columns)
            table_->setColumnWidth(column, K::scaledPx(px));
    };
    widen({Column::TickColumn}, tickColumnPx);
    widen({Column::NumberColumn}, numberColumnPx);
    widen({Column::ManColumn, Column::WomanColumn, Column::PhotographerColumn, Column::MakeUpColumn,
           Column::ConsultantColumn},
          nameColumnPx);
    widen({Column::PackageColumn}, packageColumnPx);
    widen({Column::RetouchedColumn}, countColumnPx);
    widen({Column::SelectedAtColumn}, timeColumnPx);
    widen({Column::ShotDateColumn, Column::SelectionDateColumn, Column::ManPhoneColumn,
           Column::WomanPhoneColumn},
          wideColumnPx);
    table_->horizontalHeader()->setSectionResizeMode(Column::TickColumn, QHeaderView::Fixed);
    columns_ = new ArrangedColumns(table_, {Column::TickColumn, Column::NumberColumn});

    connect(table_, &QTableView::clicked, this,
            [this](const QModelIndex &index) { onCellClicked(index.row(), index.column()); });
    connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &current, const QModelIndex &previous) {
                onOrderSelectionChanged(current.row(), current.column(), previous.row(),
                                        previous.column());
            });
    rows_->addAction(QStringLiteral("勾选"), Qt::Key_Space, [this](int) {
        onCellClicked(table_->currentIndex().row(), Column::TickColumn);
    });
}

void FJLeftPanel::openColumns(const QString &tool)
{
    columns_->open(tool);
}

void FJLeftPanel::buildLayout()
{
    setObjectName(QStringLiteral("leftPanel"));
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(theme::sidePanelStyle(objectName()));
    selectAll_->setObjectName(QStringLiteral("selectAllButton"));
    unselectAll_->setObjectName(QStringLiteral("unselectAllButton"));
    selectAll_->setStyleSheet(theme::secondaryButtonStyle());
    unselectAll_->setStyleSheet(theme::secondaryButtonStyle());
    progressLabel_->setObjectName(QStringLiteral("progressLabel"));
    stepLabel_->setObjectName(QStringLiteral("stepLabel"));
    speedLabel_->setObjectName(QStringLiteral("speedLabel"));
    speedLabel_->setStyleSheet(theme::hintStyle());
    speedLabel_->hide();
    progressBar_->setObjectName(QStringLiteral("progressBar"));
    progressBar_->setTextVisible(false);
    progressBar_->setRange(0, 1);
    progressBar_->setValue(0);
    progressBar_->setStyleSheet(
        theme::gradientProgressStyle(colours::distributeFrom, colours::distributed));

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(theme::spacing());
    buttons->addWidget(selectAll_);
    buttons->addWidget(unselectAll_);
    buttons->addWidget(ticked_);
    buttons->addStretch();
    auto *progressTexts = new QHBoxLayout;
    progressTexts->addWidget(new PlainLabel(QStringLiteral("分件进度"), this));
    progressTexts->addSpacing(theme::margin());
    progressTexts->addWidget(progressLabel_, 1);
    progressTexts->addWidget(stepLabel_);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(table_, 1);
    layout->addLayout(buttons);
    layout->addLayout(progressTexts);
    layout->addWidget(progressBar_);
    layout->addWidget(speedLabel_);
    layout->addWidget(buildErrorList());
    layout->addWidget(proofPanel_);
}

QWidget *FJLeftPanel::buildErrorList()
{
    errorList_ = new QWidget(this);
    errorHeading_ = new PlainLabel(errorList_);
    errorHeading_->setObjectName(QStringLiteral("errorHeading"));
    errorHeading_->setStyleSheet(theme::warningStyle());
    auto *copy = new QPushButton(QStringLiteral("复制"), errorList_);
    copy->setObjectName(QStringLiteral("copyErrorsButton"));
    copy->setStyleSheet(theme::secondaryButtonStyle());
    errors_ = new QPlainTextEdit(errorList_);
    errors_->setObjectName(QStringLiteral("errorList"));
    errors_->setAccessibleName(QStringLiteral("失败的文件"));
    errors_->setStyleSheet(theme::listStyle());
    errors_->setReadOnly(true);
    errors_->setTabChangesFocus(true);
    errors_->setFixedHeight(K::scaledPx(errorListPx));
    connect(copy, &QPushButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(errors_->toPlainText());
        Toast::show(this, QStringLiteral("失败记录已复制"));
    });
    auto *top = new QHBoxLayout;
    top->addWidget(errorHeading_, 1);
    top->addWidget(copy);
    auto *layout = new QVBoxLayout(errorList_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addLayout(top);
    layout->addWidget(errors_);
    errorList_->hide();
    return errorList_;
}

void FJLeftPanel::connectFinder()
{
    OrderFinder::Ways ways;
    ways.search = [this] {
        branch_.search(
            distributionrequests::orderListAction(listMode_),
            distributionrequests::orderListBody(searchType_, keyword_, branch_.identity()));
    };
    ways.keepsKeyword = true;
    ways.refusal = &ServiceReply::message;
    finder_->setWays(ways);
    finder_->setReader(&distributionrequests::readOrders,
                       [this](const distributionrequests::FoundOrders &list, OrderFinder::Search) {
                           showOrders(list.orders);
                       });
    finder_->setSelect([this](const QString &photoSet) {
        const int row = model_.rowOfPhotoSet(photoSet);
        if (row >= 0)
            rows_->makeCurrent(row);
        return row >= 0;
    });
    connect(finder_, &OrderFinder::busyChanged, this,
            [this](bool busy) { emit emitReqOrderFinish(!busy); });
    connect(finder_, &OrderFinder::branchLeft, this, [this] { showOrders({}); });
    connect(finder_, &OrderFinder::branchSwitched, this, &FJLeftPanel::onBranchSwitched);
}

void FJLeftPanel::setLeavingQuestion(std::function<QString()> question)
{
    OrderFinder::Leaving leaving;
    leaving.question = std::move(question);
    finder_->setLeaving(leaving);
}

void FJLeftPanel::cancelRequests()
{
    finder_->cancel();
    finder_->showBranch();
}

void FJLeftPanel::onReqShopInfo(const QString &searchType, const QString &keyword,
                                const QString &shopid)
{
    searchType_ = searchType;
    keyword_ = keyword;
    finder_->chooseBranch(shopid);
}

void FJLeftPanel::onBranchSwitched()
{
    const orderqueries::Identity &who = branch_.identity();
    AccountContext::selectedShopId = who.shopId;
    AccountContext::superId = who.superId;
    AccountContext::eid = who.employeeId;
    AccountContext::distributionRule = branch_.distributionMode();
    emit userInfoChange(who.shopId, who.employeeId, who.superId);
    reqOrderList(searchType_, keyword_);
}

void FJLeftPanel::reqOrderList(const QString &searchType, const QString &keyword)
{
    searchType_ = searchType;
    keyword_ = keyword;
    if (!branch_.isConfirmed()) {
        finder_->confirmBranch(); // when that succeeds a search follows
        return;
    }
    qDebug() << "要开始刷新数据量 222";
    showOrders({});
    finder_->search();
}

void FJLeftPanel::showOrders(const QVector<OrderData> &orders)
{
    model_.setOrders(orders);
    rows_->sortAgain();
}

// The table.

QVector<OrderData> FJLeftPanel::tickedOrders() const
{
    QVector<OrderData> orders;
    for (int row = 0; row < rows_->count(); ++row) {
        if (model_.isTicked(rows_->position(row)))
            orders.append(model_.order(rows_->position(row)));
    }
    return orders;
}

void FJLeftPanel::onOrderSelectionChanged(int currentRow, int currentColumn, int previousRow,
                                          int previousColumn)
{
    Q_UNUSED(currentColumn)
    Q_UNUSED(previousColumn)
    const int row = rows_->position(currentRow);
    if (currentRow != previousRow && model_.hasRow(row))
        emit orderShown(model_.order(row));
}

void FJLeftPanel::onCellClicked(int row, int column)
{
    const int position = rows_->position(row);
    if (column == Column::TickColumn && !locked_)
        model_.setTicked(position, !model_.isTicked(position));
}

void FJLeftPanel::onSelectAllClicked()
{
    model_.setAllTicked(true);
}

void FJLeftPanel::onUnselectAllClicked()
{
    model_.setAllTicked(false);
}

void FJLeftPanel::setLocked(bool locked)
{
    locked_ = locked;
    ticks_->setLocked(locked);
    table_->viewport()->update();
    selectAll_->setEnabled(!locked);
    unselectAll_->setEnabled(!locked);
}

// The run.

void FJLeftPanel::showRunProgress(const QString &text)
{
    progressLabel_->setText(text);
}

void FJLeftPanel::showStep(const QString &text)
{
    stepLabel_->setText(text);
}

void FJLeftPanel::showSpeed(const QString &text)
{
    speedLabel_->setText(text);
    speedLabel_->setVisible(!text.isEmpty());
}

void FJLeftPanel::showProgress(int value, int expected)
{
    progressBar_->setRange(0, qMax(1, expected));
    progressBar_->setValue(value);
}

void FJLeftPanel::clearErrors()
{
    errors_->clear();
    errorList_->hide();
}

void FJLeftPanel::addError(const QString &line)
{
    errors_->appendPlainText(line);
    errorHeading_->setText(QStringLiteral("失败记录 (%1)").arg(errors_->document()->blockCount()));
    errorList_->show();
}
