#include "batchdelete/window/batchdelete_filelistwidget.h"

#include "app/context/k.h"
#include "batchdelete/run/filescanthread.h"
#include "batchdelete/window/batchdelete_delegates.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QClipboard>
#include <QDebug>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

using Model = BatchDeleteFileModel;

constexpr int folderColumnPx = 84;
constexpr int sizeColumnPx = 84;
constexpr int stateColumnPx = 250;
constexpr int pathColumnPx = 120; // the last column takes what is left, too

QString chooseText()
{
    return QStringLiteral("请选择订单查看文件列表");
}

/// A path has no blanks at which a line could end: it may end behind every separator.
QString breakable(QString path)
{
    const QString mayEnd(QChar(0x200b));
    return path.replace(QLatin1Char('\\'), QLatin1Char('\\') + mayEnd)
        .replace(QLatin1Char('/'), QLatin1Char('/') + mayEnd);
}

QString countText(const QVector<BatchDeleteFileInfo> &files)
{
    return QStringLiteral("共 %1 个文件").arg(files.size());
}

} // namespace

BatchDelete_FileListWidget::BatchDelete_FileListWidget(QWidget *parent)
    : QWidget(parent)
    , pathLabel_(new PlainLabel(this))
    , noteLabel_(new PlainLabel(this))
    , countLabel_(new PlainLabel(this))
    , refreshButton_(new QPushButton(QStringLiteral("刷新"), this))
    , table_(new EmptyStateTable(this))
    , overlay_(new LoadingOverlay(table_))
{
    pathLabel_->setObjectName(QStringLiteral("folderLabel"));
    noteLabel_->setObjectName(QStringLiteral("noteLabel"));
    noteLabel_->setStyleSheet(theme::warningStyle());
    for (QLabel *label : {pathLabel_, noteLabel_})
        label->setWordWrap(true);
    countLabel_->setObjectName(QStringLiteral("fileCountLabel"));
    refreshButton_->setObjectName(QStringLiteral("refreshButton"));
    refreshButton_->setStyleSheet(theme::secondaryButtonStyle());
    buildTable();
    addActions();
    auto *head = new QHBoxLayout;
    head->addWidget(countLabel_, 1);
    head->addWidget(refreshButton_);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::spacing(), 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addWidget(pathLabel_);
    layout->addWidget(noteLabel_);
    layout->addLayout(head);
    layout->addWidget(table_, 1);
    connect(refreshButton_, &QPushButton::clicked, this,
            [this] { emit refreshOrderFiles(order_.orderPhotoId); });
    connect(overlay_, &LoadingOverlay::cancelled, this, [this] {
        endScan();
        emit scanFailed(order_, QStringLiteral("已取消查找"),
                        QStringLiteral("已取消查找，点击刷新重新查找"));
    });
    clear();
}

BatchDelete_FileListWidget::~BatchDelete_FileListWidget() = default;

void BatchDelete_FileListWidget::buildTable()
{
    table_->setObjectName(QStringLiteral("fileTable"));
    table_->setAccessibleName(QStringLiteral("订单的文件"));
    prepareTable(table_);
    table_->setModel(&model_);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    auto *states = new BatchDeleteStateDelegate(table_);
    table_->setItemDelegateForColumn(Model::StateColumn, states);
    table_->setItemDelegateForColumn(Model::PathColumn,
                                     new ElidedTextDelegate(Qt::ElideMiddle, table_));
    table_->setColumnWidth(Model::FolderColumn, K::scaledPx(folderColumnPx));
    table_->setColumnWidth(Model::SizeColumn, K::scaledPx(sizeColumnPx));
    table_->setColumnWidth(Model::StateColumn, K::scaledPx(stateColumnPx));
    table_->setColumnWidth(Model::PathColumn, K::scaledPx(pathColumnPx));
    connect(states, &BatchDeleteStateDelegate::retryClicked, this, [this](int row) {
        if (model_.files().at(row).state == BatchDeleteFileInfo::NotReported)
            onRetrySubmit(row);
        else
            onRetryDelete(row);
    });
}

void BatchDelete_FileListWidget::addActions()
{
    addTableAction(table_, QStringLiteral("重试所选文件"), Qt::CTRL + Qt::Key_R, [this] {
        const QVector<int> rows = selectedRows();
        if (!rows.isEmpty())
            emit retryClicked(rows);
    });
    addTableAction(table_, QStringLiteral("复制文件路径"), QKeySequence::Copy, [this] {
        QStringList paths;
        const auto rows = selectedRows();
        for (const int row : rows)
            paths.append(model_.files().at(row).fullPath());
        if (!paths.isEmpty())
            QGuiApplication::clipboard()->setText(paths.join(QLatin1Char('\n')));
    });
}

QVector<int> BatchDelete_FileListWidget::selectedRows() const
{
    QVector<int> rows;
    const QItemSelection selection = table_->selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void BatchDelete_FileListWidget::showFiles(const BatchDeleteOrderInfo &order,
                                           const QVector<BatchDeleteFileInfo> &files)
{
    fill(order, files, QStringLiteral("目录中没有文件"));
    countLabel_->setText(countText(model_.files()));
}

void BatchDelete_FileListWidget::showProblem(const BatchDeleteOrderInfo &order,
                                             const QVector<BatchDeleteFileInfo> &files,
                                             const QString &problem, const QString &reason)
{
    fill(order, files, reason);
    const QVector<BatchDeleteFileInfo> &shown = model_.files();
    countLabel_->setText(shown.isEmpty() ? problem
                                         : countText(shown) + QStringLiteral("，") + problem);
}

void BatchDelete_FileListWidget::showSearch(const BatchDeleteOrderInfo &order)
{
    showProblem(order, {}, QStringLiteral("正在查找文件..."), scanText(order));
}

void BatchDelete_FileListWidget::fill(const BatchDeleteOrderInfo &order,
                                      const QVector<BatchDeleteFileInfo> &files,
                                      const QString &emptyText)
{
    endScan();
    order_ = order;
    order_.setFiles({});
    model_.setFiles(files);
    table_->setEmptyText(emptyText);
    pathLabel_->setText(order.netPath.isEmpty()
                            ? QString()
                            : QStringLiteral("导片路径: ") + breakable(order.netPath));
    pathLabel_->setVisible(!order.netPath.isEmpty());
    noteLabel_->setText(order.note);
    noteLabel_->setVisible(!order.note.isEmpty());
    refreshButton_->setEnabled(!order_.identity().isEmpty());
}

void BatchDelete_FileListWidget::scan(const BatchDeleteOrderInfo &order)
{
    showSearch(order);
    scan_ = std::make_unique<FileScanThread>();
    connect(scan_.get(), &FileScanThread::progress, this,
            &BatchDelete_FileListWidget::onScanProgress);
    connect(scan_.get(), &FileScanThread::finished, this,
            &BatchDelete_FileListWidget::onScanFinished);
    overlay_->showText(scanText(order_));
    scan_->scan(order.netPath);
}

void BatchDelete_FileListWidget::clear()
{
    fill({}, {}, chooseText());
    countLabel_->setText(chooseText());
}

void BatchDelete_FileListWidget::setFile(int index, const BatchDeleteFileInfo &file)
{
    model_.setFile(index, file);
}

void BatchDelete_FileListWidget::onRetrySubmit(int row)
{
    qDebug() << "重新提交文件状态, 行:" << row;
    emit retrySubmitClicked(row);
}

void BatchDelete_FileListWidget::onRetryDelete(int row)
{
    qDebug() << "重新删除文件, 行:" << row;
    emit retryDeleteClicked(row);
}

void BatchDelete_FileListWidget::onScanProgress(int count)
{
    if (scan_)
        overlay_->setText(scanText(order_) + QStringLiteral("\n已找到 %1 个文件").arg(count));
}

void BatchDelete_FileListWidget::onScanFinished(const FileScanResult &result)
{
    scan_.release()->deleteLater(); // it is the one that calls
    overlay_->hideOverlay();
    if (!result.success) {
        emit scanFailed(
            order_, result.missing ? QStringLiteral("目录不存在") : QStringLiteral("目录无法访问"),
            result.errorText);
        return;
    }
    // Rows are positions in the order's list, which is another one when a run has been at it.
    if (!order_.processed)
        showFiles(order_, result.files);
    emit scanned(order_, result.files);
}

void BatchDelete_FileListWidget::endScan()
{
    scan_.reset();
    overlay_->hideOverlay();
}

QString BatchDelete_FileListWidget::scanText(const BatchDeleteOrderInfo &order)
{
    return QStringLiteral("查找") + order.displayNumber() + QStringLiteral("的文件中...");
}
