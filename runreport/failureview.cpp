#include "runreport/failureview.h"

#include "app/context/k.h"
#include "widgets/inputs/inputs.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>

namespace {

constexpr int orderColumnPx = 190;
constexpr int fileColumnPx = 210;
constexpr int fittingMs = 200;
/// Beyond these nobody reads on; each is measured anew when the width changes.
constexpr int mostFitted = 1000;

} // namespace

void FailureFilter::setWords(const QString &words)
{
    words_ = words;
    invalidateFilter();
}

void FailureFilter::setOrder(const OrderIdentity &order)
{
    order_ = order;
    invalidateFilter();
}

bool FailureFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    const auto *model = static_cast<const FailureModel *>(sourceModel());
    const RunFailure &failure = model->failures().at(row);
    return !parent.isValid() && (order_.isEmpty() || failure.order == order_) &&
           runfailures::matches(failure, words_);
}

FailureView::FailureView(FailureModel *failures, QWidget *parent)
    : QWidget(parent)
    , failures_(failures)
    , words_(new LineEdit(this))
    , orders_(new ComboBox(this))
    , count_(new PlainLabel(this))
    , table_(new EmptyStateTable(this))
{
    words_->setObjectName(QStringLiteral("failureWords"));
    words_->setPlaceholderText(QStringLiteral("在文件名和原因中查找"));
    words_->setAccessibleName(QStringLiteral("查找失败的文件"));
    words_->setClearable(true);
    orders_->setObjectName(QStringLiteral("failureOrders"));
    orders_->setAccessibleName(QStringLiteral("订单"));
    orders_->setMinimumWidth(theme::widestChoice());
    count_->setObjectName(QStringLiteral("failureCount"));
    buildTable();

    auto *head = new QHBoxLayout;
    head->setSpacing(theme::spacing());
    head->addWidget(words_, 1);
    head->addWidget(orders_);
    head->addWidget(count_);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addLayout(head);
    layout->addWidget(table_, 1);

    fitting_.setSingleShot(true);
    fitting_.setInterval(fittingMs);
    connect(&fitting_, &QTimer::timeout, this, &FailureView::fitRows);
    connect(failures_, &FailureModel::countChanged, this, &FailureView::showCounts);
    connect(words_, &QLineEdit::textChanged, this, [this](const QString &words) {
        filter_.setWords(words);
        showCounts();
    });
    connect(orders_, qOverload<int>(&QComboBox::activated), this, [this] {
        filter_.setOrder(orders_->currentData().value<OrderIdentity>());
        showCounts();
    });
    showOrders();
    showCounts();
}

FailureView::~FailureView()
{
    // The table outlives the filter it shows by a moment.
    table_->setModel(nullptr);
}

void FailureView::buildTable()
{
    table_->setObjectName(QStringLiteral("failureTable"));
    table_->setAccessibleName(QStringLiteral("失败的文件"));
    prepareTable(table_);
    table_->setWordWrap(true);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setEmptyText(QStringLiteral("没有失败的文件"));
    filter_.setSourceModel(failures_);
    filter_.setSortRole(FailureModel::SortRole);
    filter_.setDynamicSortFilter(true);
    table_->setModel(&filter_);
    table_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    table_->setSortingEnabled(true);
    table_->setColumnWidth(FailureModel::OrderColumn, K::scaledPx(orderColumnPx));
    table_->setColumnWidth(FailureModel::FileColumn, K::scaledPx(fileColumnPx));
    addTableAction(table_, QStringLiteral("复制"), QKeySequence::Copy, [this] {
        QGuiApplication::clipboard()->setText(runfailures::text(selected()));
    });
    addTableAction(table_, QStringLiteral("全选"), QKeySequence::SelectAll,
                   [this] { table_->selectAll(); });
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &FailureView::selectionChanged);
    const auto fitSoon = [this] {
        if (!fitting_.isActive())
            fitting_.start();
    };
    connect(table_->horizontalHeader(), &QHeaderView::sectionResized, this, fitSoon);
    connect(&filter_, &QAbstractItemModel::layoutChanged, this, fitSoon);
    connect(&filter_, &QAbstractItemModel::rowsInserted, this, fitSoon);
    connect(&filter_, &QAbstractItemModel::modelReset, this, fitSoon);
    connect(&filter_, &QAbstractItemModel::dataChanged, this, fitSoon);
}

QVector<RunFailure> FailureView::selected() const
{
    QVector<RunFailure> failures;
    const QModelIndexList rows = table_->selectionModel()->selectedRows();
    for (const QModelIndex &row : rows)
        failures.append(failures_->failures().at(filter_.mapToSource(row).row()));
    return failures;
}

QVector<RunFailure> FailureView::shown() const
{
    QVector<RunFailure> failures;
    for (int row = 0; row < filter_.rowCount(); ++row)
        failures.append(failures_->failures().at(filter_.mapToSource(filter_.index(row, 0)).row()));
    return failures;
}

/// The orders that have failures; the chosen one stays chosen as long as it is among them.
void FailureView::showOrders()
{
    const auto chosen = orders_->currentData().value<OrderIdentity>();
    orders_->clear();
    orders_->addItem(QStringLiteral("全部订单"), QVariant::fromValue(OrderIdentity()));
    QSet<OrderIdentity> listed;
    for (const RunFailure &failure : failures_->failures()) {
        if (listed.contains(failure.order))
            continue;
        listed.insert(failure.order);
        orders_->addItem(failure.orderName, QVariant::fromValue(failure.order));
        if (failure.order == chosen)
            orders_->setCurrentIndex(orders_->count() - 1);
    }
    if (!chosen.isEmpty() && !listed.contains(chosen))
        filter_.setOrder({});
}

void FailureView::showCounts()
{
    const int all = failures_->rowCount();
    const int shown = filter_.rowCount();
    count_->setText(shown == all ? QStringLiteral("共 %1 个").arg(all)
                                 : QStringLiteral("显示 %1，共 %2 个").arg(shown).arg(all));
    if (!fitting_.isActive())
        fitting_.start();
}

void FailureView::fitRows()
{
    showOrders();
    for (int row = 0; row < qMin(filter_.rowCount(), mostFitted); ++row)
        table_->resizeRowToContents(row);
}
