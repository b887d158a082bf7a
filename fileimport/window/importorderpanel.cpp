#include "fileimport/window/importorderpanel.h"

#include "app/context/k.h"
#include "fileimport/window/importordertablemodel.h"
#include "fileimport/window/ordernumberbuttondelegate.h"
#include "fileimport/window/photostatedelegate.h"
#include "fileimport/window/rowactions.h"
#include "widgets/boxes/noticebar.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/tables/arrangedcolumns.h"
#include "widgets/tables/filedroptable.h"
#include "widgets/tables/sortedrows.h"
#include "widgets/tables/transferview.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QAction>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int numberColumnPx = 86; // room for the usual; the user widens what is longer
constexpr int nameColumnPx = 66;
constexpr int countColumnPx = 52;
constexpr int stateColumnPx = 102;
constexpr int pathColumnPx = 180;

} // namespace

ImportOrderPanel::ImportOrderPanel(ImportOrderTableModel *model, QWidget *parent)
    : QWidget(parent)
    , model_(model)
    , searchBar_(new OrderSearchBar(this))
    , table_(new FileDropTable(this))
    , overlay_(new LoadingOverlay(table_))
    , notices_(new NoticeBar(this))
    , progress_(new TransferView(this))
    , startButton_(new QPushButton(this))
    , cardCheckButton_(new QPushButton(QStringLiteral("核对存储卡"), this))
{
    buildTable();
    buildLayout();
    addActions();
    setRunning(false);
    connect(startButton_, &QPushButton::clicked, this, &ImportOrderPanel::startClicked);
}

void ImportOrderPanel::buildTable()
{
    table_->setObjectName(QStringLiteral("orderTable"));
    table_->setAccessibleName(QStringLiteral("订单"));
    prepareTable(table_);
    wrapHeaders(table_);
    rows_ = new SortedRows(table_, model_, ImportOrderTableModel::SortRole);

    auto *number = new OrderNumberButtonDelegate(table_);
    auto *actions = new OrderActionsDelegate(table_);
    auto *state = new PhotoStateDelegate(table_);
    table_->setItemDelegateForColumn(ImportOrderTableModel::NumberColumn, number);
    table_->setItemDelegateForColumn(ImportOrderTableModel::ActionsColumn, actions);
    table_->setItemDelegateForColumn(ImportOrderTableModel::StateColumn, state);
    table_->setItemDelegateForColumn(ImportOrderTableModel::PathColumn,
                                     new ElidedTextDelegate(Qt::ElideMiddle, table_));
    setColumnWidths();
    columns_ = new ArrangedColumns(table_, {ImportOrderTableModel::NumberColumn});
    connect(columns_, &ArrangedColumns::widthsRestored, this, &ImportOrderPanel::makeRoomForLinks);
    addRowActions();

    connect(number, &OrderNumberButtonDelegate::orderNumberClicked, this,
            [this](int row) { emit orderNumberClicked(rows_->position(row)); });
    connect(actions, &OrderActionsDelegate::actionClicked, this,
            [this](int row, OrderActionsDelegate::Action action) {
                emit actionClicked(rows_->position(row), action);
            });
    connect(state, &PhotoStateDelegate::registerAgainClicked, this,
            [this](int row) { emit registerAgainClicked(rows_->position(row)); });
    connect(model_, &QAbstractItemModel::dataChanged, this, &ImportOrderPanel::makeRoomForLinks);
    connect(model_, &QAbstractItemModel::modelReset, this, &ImportOrderPanel::makeRoomForLinks);
    connect(table_, &FileDropTable::filesDropped, this, [this](int row, const QStringList &paths) {
        emit filesDropped(rows_->position(row), paths);
    });
    connect(rows_, &SortedRows::currentChanged, this, &ImportOrderPanel::selectionChanged);
}

void ImportOrderPanel::addRowActions()
{
    for (const auto row : {RowActions::Row::Current, RowActions::Row::Hovered}) {
        const auto *actions = new RowActions(table_, ImportOrderTableModel::ActionsColumn, row);
        connect(actions, &RowActions::actionClicked, this,
                [this](int viewRow, OrderActionsDelegate::Action action) {
                    emit actionClicked(rows_->position(viewRow), action);
                });
    }
}

void ImportOrderPanel::buildLayout()
{
    startButton_->setObjectName(QStringLiteral("startButton"));
    startButton_->setMinimumHeight(theme::controlHeight());

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(searchBar_);
    layout->addWidget(table_, 1);
    layout->addWidget(notices_);
    layout->addWidget(progress_);
    cardCheckButton_->setObjectName(QStringLiteral("cardCheckButton"));
    cardCheckButton_->setStyleSheet(theme::secondaryButtonStyle());
    cardCheckButton_->setToolTip(QStringLiteral("存储卡可以格式化吗？逐字节核对卡和存储"));
    connect(cardCheckButton_, &QPushButton::clicked, this, &ImportOrderPanel::cardCheckClicked);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(startButton_, 1);
    buttons->addWidget(cardCheckButton_);
    layout->addLayout(buttons);
}

void ImportOrderPanel::offerCardCheck(bool offered)
{
    cardCheckButton_->setVisible(offered);
}

void ImportOrderPanel::addActions()
{
    for (int index = 0; index < OrderActionsDelegate::ActionCount; ++index) {
        static const QList<QKeySequence> shortcuts = {
            Qt::CTRL + Qt::Key_O, Qt::CTRL + Qt::Key_Delete, Qt::CTRL + Qt::Key_E};
        const auto action = OrderActionsDelegate::Action(index);
        rows_->addAction(OrderActionsDelegate::text(action), shortcuts.at(index),
                         [this, action](int row) { emit actionClicked(row, action); });
    }
    rows_->addAction(QStringLiteral("复制订单号"), QKeySequence::Copy,
                     [this](int row) { emit orderNumberClicked(row); });
    rows_->addAction(QStringLiteral("核对订单"), Qt::CTRL + Qt::Key_K,
                     [this](int row) { emit orderCheckClicked(row); });
    QAction *again = rows_->addAction(PhotoStateDelegate::linkText(), Qt::CTRL + Qt::Key_R,
                                      [this](int row) { emit registerAgainClicked(row); });
    connect(rows_, &SortedRows::menuOpens, this,
            [this, again](int row) { again->setVisible(model_->order(row).unregistered); });
}

int ImportOrderPanel::selectedRow() const
{
    return rows_->current();
}

bool ImportOrderPanel::selectPhotoSet(const QString &orderPhotoId)
{
    const int row = model_->rowOfPhotoSet(orderPhotoId);
    if (row >= 0)
        rows_->makeCurrent(row);
    return row >= 0;
}

void ImportOrderPanel::keepPlaceWhile(const std::function<void()> &change)
{
    rows_->keepPlaceWhile(
        change, {[this](int row) {
                     return model_->hasRow(row) ? model_->order(row).identity() : OrderIdentity();
                 },
                 [this](const OrderIdentity &order) { return model_->rowOf(order); }});
}

void ImportOrderPanel::setColumnWidths()
{
    using Model = ImportOrderTableModel;
    for (const int names :
         {Model::ManColumn, Model::WomanColumn, Model::PhotographerColumn, Model::MakeUpColumn})
        table_->setColumnWidth(names, K::scaledPx(nameColumnPx));
    for (const int counts :
         {Model::OriginalsColumn, Model::RawColumn, Model::RetouchedColumn, Model::ChosenColumn})
        table_->setColumnWidth(counts, K::scaledPx(countColumnPx));
    table_->setColumnWidth(Model::NumberColumn, K::scaledPx(numberColumnPx));
    table_->setColumnWidth(Model::StateColumn, K::scaledPx(stateColumnPx));
    // The style sheet's text size reaches the table's font only when it is shown.
    QFont font = table_->font();
    font.setPixelSize(theme::textSize());
    table_->setColumnWidth(Model::ActionsColumn, OrderActionsDelegate::cellWidth(font));
    table_->setColumnWidth(Model::PathColumn, K::scaledPx(pathColumnPx));
}

void ImportOrderPanel::makeRoomForLinks()
{
    const auto &orders = model_->orders();
    const bool hasLinks = std::any_of(orders.cbegin(), orders.cend(),
                                      [](const ImportOrder &order) { return order.unregistered; });
    if (!hasLinks)
        return;
    QFont font = table_->font();
    font.setPixelSize(theme::textSize());
    const int wanted = PhotoStateDelegate::cellWidth(QStringLiteral("成功:000, 失败:00"), font);
    if (table_->columnWidth(ImportOrderTableModel::StateColumn) < wanted)
        table_->setColumnWidth(ImportOrderTableModel::StateColumn, wanted);
}

void ImportOrderPanel::openColumns(const QString &tool)
{
    columns_->open(tool);
}

int ImportOrderPanel::widthWithActions() const
{
    const int columns = table_->columnViewportPosition(ImportOrderTableModel::ActionsColumn) +
                        table_->columnWidth(ImportOrderTableModel::ActionsColumn);
    const QMargins around = layout()->contentsMargins();
    return around.left() + columns + 2 * table_->frameWidth() + theme::scrollBarWidth() +
           around.right();
}

void ImportOrderPanel::setRunning(bool running)
{
    if (running)
        showRunButton(startButton_, QStringLiteral("停止导入"), theme::stopButtonStyle());
    else
        showRunButton(startButton_, QStringLiteral("开始全部导入"), theme::startButtonStyle());
}
