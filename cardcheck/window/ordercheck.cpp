#include "cardcheck/window/ordercheck.h"

#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/frame/titlebar.h"
#include "widgets/tables/sortedrows.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <array>

namespace {

constexpr int tickMs = 300;

} // namespace

OrderCheck::OrderCheck(QWidget *parent)
    : FramelessWindow(parent)
    , heading_(new PlainLabel)
    , summary_(new PlainLabel)
    , registerButton_(new QPushButton(QStringLiteral("登记")))
    , table_(new EmptyStateTable)
    , overlay_(new LoadingOverlay(table_))
{
    setWindowTitle(QStringLiteral("核对订单"));
    buildTable();
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(heading_);
    layout->addWidget(head());
    layout->addWidget(table_, 1);
    setContent(content);
    connect(&run_, &OrderCheckRun::finished, this, &OrderCheck::showComparison);
    connect(&run_, &OrderCheckRun::readingBegun, this, [this] {
        rate_.clear();
        clock_.start();
        ticking_.start(tickMs);
    });
    connect(&ticking_, &QTimer::timeout, this, &OrderCheck::showProgress);
    connect(overlay_, &LoadingOverlay::cancelled, this, [this] {
        run_.cancel();
        ticking_.stop();
        overlay_->hideOverlay();
        summary_->setText(QStringLiteral("已取消"));
    });
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
}

OrderCheck::~OrderCheck()
{
    run_.disconnect();
    disconnect(rows_, nullptr, this, nullptr);
}

QWidget *OrderCheck::head()
{
    heading_->setObjectName(QStringLiteral("orderHeading"));
    heading_->setStyleSheet(theme::headingStyle());
    heading_->setIndent(0);
    summary_->setObjectName(QStringLiteral("summaryLabel"));
    summary_->setStyleSheet(theme::hintStyle());
    summary_->setWordWrap(true);
    registerButton_->setObjectName(QStringLiteral("registerButton"));
    registerButton_->setStyleSheet(theme::primaryButtonStyle());
    setPlainTip(registerButton_, QStringLiteral("在“导入原片”中把文件夹里的文件登记到服务端"));
    connect(registerButton_, &QPushButton::clicked, this, [this] {
        OrderPlace place{order_.identity.branch, order_.identity.orderPhotoId, order_.searchNumber};
        place.registers = true;
        emit openToolRequested(QStringLiteral("导入原片"), place);
    });
    auto *again = new QPushButton(QStringLiteral("重新核对"));
    again->setObjectName(QStringLiteral("againButton"));
    again->setStyleSheet(theme::secondaryButtonStyle());
    again->setShortcut(Qt::Key_F5);
    setPlainTip(again, QStringLiteral("F5"));
    connect(again, &QPushButton::clicked, this, &OrderCheck::start);

    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addWidget(summary_, 1);
    layout->addWidget(registerButton_);
    layout->addWidget(again);
    return row;
}

void OrderCheck::buildTable()
{
    table_->setObjectName(QStringLiteral("fileTable"));
    table_->setAccessibleName(QStringLiteral("订单的文件"));
    prepareTable(table_);
    rows_ = new SortedRows(table_, &files_, OrderFileModel::SortRole);
    table_->sortByColumn(OrderFileModel::StateColumn, Qt::AscendingOrder);
    static constexpr std::array<int, OrderFileModel::ColumnCount> widths{160, 260, 90,
                                                                         90,  170, 260};
    for (int column = 0; column < OrderFileModel::ColumnCount; ++column)
        table_->setColumnWidth(column, K::scaledPx(widths[std::size_t(column)]));
    for (const int paths : {OrderFileModel::NameColumn, OrderFileModel::SourceColumn})
        table_->setItemDelegateForColumn(paths, new ElidedTextDelegate(Qt::ElideMiddle, table_));
}

void OrderCheck::check(const OrderToCheck &order)
{
    order_ = order;
    titleBar()->setBranch(AccountContext::shopName(order.identity.branch));
    heading_->setText(order.name);
    setPlainTip(heading_, order.folder);
    start();
}

void OrderCheck::start()
{
    files_.setFiles({});
    registerButton_->hide();
    summary_->setText(QStringLiteral("正在核对..."));
    overlay_->showText(QStringLiteral("正在核对..."));
    run_.start({order_.identity, order_.number, order_.name}, order_.folder);
}

void OrderCheck::showProgress()
{
    const TransferProgress progress = run_.progress();
    rate_.add(clock_.elapsed(), progress);
    overlay_->showText(QStringLiteral("正在核对内容\n") + progressText(progress, rate_));
}

void OrderCheck::showComparison(const orderfilelist::Comparison &comparison)
{
    ticking_.stop();
    overlay_->hideOverlay();
    files_.setFiles(comparison.files);
    rows_->sortAgain();
    table_->setEmptyText(comparison.problem.isEmpty() ? QStringLiteral("文件夹里没有文件")
                                                      : comparison.problem);
    summary_->setText(orderfilelist::summary(comparison));
    registerButton_->setVisible(orderfilelist::canRegister(comparison));
}

FramelessWindow::CloseAnswer OrderCheck::closeRequested()
{
    run_.cancel();
    ticking_.stop();
    return CloseAnswer::Close;
}
