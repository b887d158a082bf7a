#include "runreport/runpage.h"

#include "app/context/k.h"
#include "files/filewriting.h"
#include "runreport/failureview.h"
#include "tasks/background.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/theme.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>

#include <array>

namespace {

constexpr int widthPx = 960;
constexpr int heightPx = 560;
constexpr std::array<int, OrderReportModel::ColumnCount> columnsPx{100, 130, 56, 64, 64,
                                                                   200, 64,  64, 96, 56};

QPushButton *button(const char *name, const QString &text, const QString &style)
{
    auto *made = new QPushButton(text);
    made->setObjectName(QLatin1String(name));
    made->setStyleSheet(style);
    return made;
}

} // namespace

RunPage::RunPage(FramelessWindow *tool)
    : tool_(tool)
    , headline_(new PlainLabel)
    , orderTable_(new EmptyStateTable)
    , view_(new FailureView(&failures_))
    , retrySelected_(
          button("retrySelectedButton", QStringLiteral("重试所选"), theme::secondaryButtonStyle()))
    , retryAll_(button("retryAllButton", QStringLiteral("全部重试"), theme::primaryButtonStyle()))
    , copy_(button("copyButton", QStringLiteral("复制"), theme::secondaryButtonStyle()))
    , export_(button("exportButton", QStringLiteral("导出"), theme::secondaryButtonStyle()))
{
    setObjectName(QStringLiteral("runPage"));
    setWindowTitle(QStringLiteral("本次结果"));
    headline_->setObjectName(QStringLiteral("runHeadline"));
    headline_->setWordWrap(true);
    auto *splitter = new QSplitter(Qt::Vertical);
    splitter->setStyleSheet(theme::splitterStyle());
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(buildOrders());
    splitter->addWidget(view_);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 2);
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(headline_);
    layout->addWidget(splitter, 1);
    layout->addWidget(buildButtons());
    setContent(content);
    connect(view_, &FailureView::selectionChanged, this, &RunPage::showButtons);
    connect(&failures_, &FailureModel::countChanged, this, &RunPage::showButtons);
    connect(tool_, &FramelessWindow::closed, this, &QWidget::close);
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    setHeadline();
}

RunPage::~RunPage()
{
    // What shows the models outlives them by a moment.
    orderTable_->setModel(nullptr);
    delete view_;
}

QWidget *RunPage::buildOrders()
{
    orderTable_->setObjectName(QStringLiteral("runOrders"));
    orderTable_->setAccessibleName(QStringLiteral("本次各订单的结果"));
    prepareTable(orderTable_);
    orderTable_->setModel(&orders_);
    for (std::size_t column = 0; column < columnsPx.size(); ++column)
        orderTable_->setColumnWidth(int(column), K::scaledPx(columnsPx[column]));
    return orderTable_;
}

QWidget *RunPage::buildButtons()
{
    connect(retrySelected_, &QPushButton::clicked, this,
            [this] { retry_.selected(view_->selected()); });
    connect(retryAll_, &QPushButton::clicked, this, [this] { retry_.all(); });
    connect(copy_, &QPushButton::clicked, this, &RunPage::copy);
    connect(export_, &QPushButton::clicked, this, &RunPage::save);
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addWidget(retrySelected_);
    layout->addWidget(retryAll_);
    layout->addStretch();
    layout->addWidget(copy_);
    layout->addWidget(export_);
    return row;
}

void RunPage::setRetry(const Retry &retry)
{
    retry_ = retry;
    showButtons();
}

void RunPage::dropReport()
{
    if (!report_.isEmpty())
        showReport({});
}

void RunPage::showReport(const RunReport &report)
{
    report_ = report;
    orders_.setOrders(report.orders);
    setHeadline();
    showButtons();
}

void RunPage::setHeadline()
{
    headline_->setText(report_.isEmpty() ? QStringLiteral("失败的文件") : report_.headline());
    orderTable_->setVisible(!report_.isEmpty());
}

void RunPage::showButtons()
{
    const bool mayRetry = retry_.busy.isEmpty() && !failures_.failures().isEmpty();
    retrySelected_->setVisible(bool(retry_.selected));
    retryAll_->setVisible(bool(retry_.all));
    retrySelected_->setEnabled(mayRetry && !view_->selected().isEmpty());
    retryAll_->setEnabled(mayRetry);
    for (QPushButton *retry : {retrySelected_, retryAll_})
        setPlainTip(retry, retry_.busy);
    const bool hasAny = !report_.isEmpty() || !failures_.failures().isEmpty();
    copy_->setEnabled(hasAny);
    export_->setEnabled(hasAny);
}

// Where it stands.

void RunPage::placeOnce()
{
    const QString tool = tool_->windowTitle();
    setWindowTitle(tool.isEmpty() ? QStringLiteral("本次结果")
                                  : QStringLiteral("%1 · 本次结果").arg(tool));
    if (isPlaced_)
        return;
    isPlaced_ = true;
    const QRect screen = tool_->screen()->availableGeometry();
    QRect place({}, QSize(K::scaledPx(widthPx), K::scaledPx(heightPx)).boundedTo(screen.size()));
    place.moveCenter(tool_->frameGeometry().center());
    place.moveLeft(qBound(screen.left(), place.left(), screen.right() + 1 - place.width()));
    place.moveTop(qBound(screen.top(), place.top(), screen.bottom() + 1 - place.height()));
    setGeometry(place);
}

void RunPage::open()
{
    placeOnce();
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    show();
    raise();
    activateWindow();
}

void RunPage::openBeside()
{
    if (isVisible() || !tool_->isVisible())
        return;
    placeOnce();
    setAttribute(Qt::WA_ShowWithoutActivating);
    show();
    if (QWidget *box = QApplication::activeModalWidget())
        box->raise();
}

// What is done with it.

void RunPage::copy()
{
    QString text = runfailures::text(view_->shown());
    if (!report_.isEmpty())
        text = report_.headline() + QLatin1Char('\n') + report_.lines().join(QLatin1Char('\n'));
    QGuiApplication::clipboard()->setText(text);
    Toast::show(seen(), report_.isEmpty() ? QStringLiteral("失败的文件已复制")
                                          : QStringLiteral("导入结果已复制"));
}

void RunPage::save()
{
    const QString now = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString name =
        report_.isEmpty() ? QStringLiteral("失败的文件-%1.csv") : QStringLiteral("导入结果-%1.csv");
    const QString path =
        FileDialog::saveFile(seen(), QStringLiteral("导出"), name.arg(now),
                             QStringLiteral("CSV (*.csv)"), QStringLiteral("history"));
    if (path.isEmpty())
        return;
    onDisk(
        this, path,
        [path, report = report_, failures = view_->shown()] {
            return writeBytes(path, report.isEmpty() ? runfailures::csv(failures) : report.csv());
        },
        saving_.only([this, path](bool isWritten) {
            if (isWritten)
                Toast::show(seen(), QStringLiteral("已导出: %1").arg(path));
            else
                MessageBox::warning(seen(), QStringLiteral("文件保存失败: %1").arg(path));
        }));
}
