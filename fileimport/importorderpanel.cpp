#include "fileimport/importorderpanel.h"

#include "app/context/k.h"
#include "fileimport/importordertablemodel.h"
#include "fileimport/ordernumberbuttondelegate.h"
#include "widgets/contextmenu.h"
#include "widgets/filedroptable.h"
#include "widgets/loadingoverlay.h"
#include "widgets/ordersearchbar.h"
#include "widgets/theme.h"

#include <QAction>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QVBoxLayout>

namespace {

constexpr int numberColumnPx = 86; // room for the usual; the user widens what is longer
constexpr int nameColumnPx = 66;
constexpr int countColumnPx = 52;
constexpr int stateColumnPx = 102;
constexpr int pathColumnPx = 180;
constexpr int progressBarPx = 4;
constexpr int progressSteps = 1000;

} // namespace

ImportOrderPanel::ImportOrderPanel(ImportOrderTableModel *model, QWidget *parent)
    : QWidget(parent)
    , model_(model)
    , proxy_(new QSortFilterProxyModel(this))
    , searchBar_(new OrderSearchBar(this))
    , table_(new FileDropTable(this))
    , overlay_(new LoadingOverlay(table_))
    , progressLabel_(new QLabel(this))
    , progressBar_(new QProgressBar(this))
    , startButton_(new QPushButton(this))
{
    proxy_->setSourceModel(model_);
    proxy_->setSortRole(ImportOrderTableModel::SortRole);
    // Rows must not jump about under the mouse while an import changes their states.
    proxy_->setDynamicSortFilter(false);
    buildTable();
    buildLayout();
    addActions();
    setRunning(false);
    hideProgress();
    connect(startButton_, &QPushButton::clicked, this, &ImportOrderPanel::startClicked);
}

void ImportOrderPanel::buildTable()
{
    table_->setObjectName(QStringLiteral("orderTable"));
    prepareTable(table_);
    wrapHeaders(table_);
    table_->setModel(proxy_);
    table_->setSortingEnabled(true);
    table_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setContextMenuPolicy(Qt::CustomContextMenu);
    table_->setMouseTracking(true);

    auto *number = new OrderNumberButtonDelegate(table_);
    auto *actions = new OrderActionsDelegate(table_);
    table_->setItemDelegateForColumn(ImportOrderTableModel::NumberColumn, number);
    table_->setItemDelegateForColumn(ImportOrderTableModel::ActionsColumn, actions);
    table_->setItemDelegateForColumn(ImportOrderTableModel::PathColumn,
                                     new ElidedTextDelegate(Qt::ElideMiddle, table_));
    setColumnWidths();

    connect(number, &OrderNumberButtonDelegate::orderNumberClicked, this,
            [this](int row) { emit orderNumberClicked(sourceRow(row)); });
    connect(actions, &OrderActionsDelegate::actionClicked, this,
            [this](int row, OrderActionsDelegate::Action action) {
                emit actionClicked(sourceRow(row), action);
            });
    connect(table_, &FileDropTable::filesDropped, this, [this](int row, const QStringList &paths) {
        emit filesDropped(sourceRow(row), paths);
    });
    connect(table_, &QWidget::customContextMenuRequested, this, &ImportOrderPanel::showContextMenu);
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &ImportOrderPanel::selectionChanged);
}

void ImportOrderPanel::buildLayout()
{
    progressLabel_->setObjectName(QStringLiteral("progressLabel"));
    progressBar_->setObjectName(QStringLiteral("progressBar"));
    progressBar_->setTextVisible(false);
    progressBar_->setRange(0, progressSteps);
    progressBar_->setFixedHeight(K::scaledPx(progressBarPx));
    progressBar_->setStyleSheet(theme::progressBarStyle());
    startButton_->setObjectName(QStringLiteral("startButton"));
    startButton_->setMinimumHeight(theme::controlHeight());

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(searchBar_);
    layout->addWidget(table_, 1);
    layout->addWidget(progressBar_);
    layout->addWidget(progressLabel_);
    layout->addWidget(startButton_);
}

void ImportOrderPanel::addActions()
{
    for (int index = 0; index < OrderActionsDelegate::ActionCount; ++index) {
        static const QList<QKeySequence> shortcuts = {
            Qt::CTRL + Qt::Key_O, Qt::CTRL + Qt::Key_Delete, Qt::CTRL + Qt::Key_E};
        const auto action = OrderActionsDelegate::Action(index);
        addRowAction(OrderActionsDelegate::text(action), shortcuts.at(index),
                     [this, action](int row) { emit actionClicked(row, action); });
    }
    addRowAction(QStringLiteral("复制订单号"), QKeySequence::Copy,
                 [this](int row) { emit orderNumberClicked(row); });
    addRowAction(QStringLiteral("重新登记"), {},
                 [this](int row) { emit registerAgainClicked(row); });
    registerAgain_ = table_->actions().constLast();
}

void ImportOrderPanel::addRowAction(const QString &text, const QKeySequence &shortcut,
                                    std::function<void(int row)> act)
{
    auto *action = new QAction(text, table_);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetShortcut);
    table_->addAction(action);
    connect(action, &QAction::triggered, this, [this, act = std::move(act)] {
        if (selectedRow() >= 0)
            act(selectedRow());
    });
}

void ImportOrderPanel::showContextMenu(const QPoint &position)
{
    const int row = selectedRow();
    if (row < 0)
        return;
    registerAgain_->setVisible(model_->order(row).unregistered);
    auto *menu = new ContextMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(table_->actions());
    menu->popup(table_->viewport()->mapToGlobal(position));
}

void ImportOrderPanel::setEmptyText(const QString &text)
{
    table_->setEmptyText(text);
}

int ImportOrderPanel::selectedRow() const
{
    const QModelIndex current = table_->selectionModel()->currentIndex();
    return current.isValid() ? sourceRow(current.row()) : -1;
}

void ImportOrderPanel::keepPlaceWhile(const std::function<void()> &change)
{
    const int before = selectedRow();
    const QString orderId = model_->hasRow(before) ? model_->order(before).id : QString();
    const int scrolledDown = table_->verticalScrollBar()->value();
    const int scrolledRight = table_->horizontalScrollBar()->value();
    change();
    // The proxy sorts by itself only when it is told to.
    proxy_->sort(table_->horizontalHeader()->sortIndicatorSection(),
                 table_->horizontalHeader()->sortIndicatorOrder());
    const int row = model_->rowOf(orderId);
    if (row >= 0) {
        const QModelIndex index = proxy_->mapFromSource(model_->index(row, 0));
        table_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                             QItemSelectionModel::Rows);
    }
    table_->verticalScrollBar()->setValue(scrolledDown);
    table_->horizontalScrollBar()->setValue(scrolledRight);
    if (row < 0)
        emit selectionChanged();
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

int ImportOrderPanel::widthWithActions() const
{
    const int columns = table_->columnViewportPosition(ImportOrderTableModel::ActionsColumn) +
                        table_->columnWidth(ImportOrderTableModel::ActionsColumn);
    const QMargins around = layout()->contentsMargins();
    return around.left() + columns + 2 * table_->frameWidth() + theme::scrollBarWidth() +
           around.right();
}

int ImportOrderPanel::sourceRow(int viewRow) const
{
    return proxy_->mapToSource(proxy_->index(viewRow, 0)).row();
}

void ImportOrderPanel::setRunning(bool running)
{
    startButton_->setText(running ? QStringLiteral("停止导入") : QStringLiteral("开始全部导入"));
    startButton_->setShortcut(Qt::CTRL + Qt::Key_Return); // a new text takes the shortcut away
    startButton_->setToolTip(startButton_->shortcut().toString(QKeySequence::NativeText));
    startButton_->setStyleSheet(running ? theme::stopButtonStyle() : theme::startButtonStyle());
}

void ImportOrderPanel::showProgress(const TransferProgress &progress, const TransferRate &rate)
{
    progressLabel_->setText(progressText(progress, rate));
    progressBar_->setValue(progress.bytesTotal > 0
                               ? int(progressSteps * progress.bytesDone / progress.bytesTotal)
                               : 0);
    progressLabel_->show();
    progressBar_->show();
}

void ImportOrderPanel::hideProgress()
{
    progressLabel_->hide();
    progressBar_->hide();
}
