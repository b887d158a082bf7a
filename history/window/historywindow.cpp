#include "history/window/historywindow.h"

#include "app/context/k.h"
#include "history/rules/historysheet.h"
#include "history/rules/recordtexts.h"
#include "history/window/historysearchbar.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/tables/sortedrows.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QAction>
#include <QBoxLayout>
#include <QClipboard>
#include <QDateTime>
#include <QGuiApplication>
#include <QPushButton>
#include <QSplitter>

#include <array>
#include <utility>

namespace {

// Widths of the columns, in their order.
constexpr std::array<int, EntryTable::ColumnCount> entryColumnsPx{150, 100, 110, 140, 220,
                                                                  90,  150, 90,  130};
constexpr std::array<int, FileTable::ColumnCount> fileColumnsPx{150, 170, 150, 90, 90,
                                                                150, 260, 300, 250};

template <std::size_t count> void widen(QTableView *table, const std::array<int, count> &columnsPx)
{
    for (std::size_t i = 0; i < count; ++i)
        table->setColumnWidth(int(i), K::scaledPx(columnsPx[i]));
}

QString folderOf(QString path)
{
    path.replace(QLatin1Char('/'), QLatin1Char('\\'));
    return path.section(QLatin1Char('\\'), 0, -2);
}

QBoxLayout *column(QWidget *widget)
{
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    return layout;
}

} // namespace

HistoryWindow::HistoryWindow(QWidget *parent)
    : FramelessWindow(parent)
    , bar_(new HistorySearchBar)
    , entryTable_(new EmptyStateTable)
    , fileTable_(new EmptyStateTable)
    , count_(new PlainLabel)
    , heading_(new PlainLabel)
    , more_(button("moreButton", QStringLiteral("更多")))
    , exportEntries_(button("exportEntriesButton", QStringLiteral("导出列表")))
    , exportFiles_(button("exportFilesButton", QStringLiteral("导出文件明细")))
{
    setWindowTitle(QStringLiteral("导入记录"));
    buildLayout();
    connectLook();
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    auto *again = new QAction(QStringLiteral("重新查询"), this);
    again->setShortcut(Qt::Key_F5);
    connect(again, &QAction::triggered, this, &HistoryWindow::search);
    addAction(again);
}

HistoryWindow::~HistoryWindow()
{
    // The tables outlive the models they show by a moment.
    disconnect(entryRows_, nullptr, this, nullptr);
    entryTable_->setModel(nullptr);
    fileTable_->setModel(nullptr);
}

QPushButton *HistoryWindow::button(const char *name, const QString &text)
{
    auto *made = new QPushButton(text);
    made->setObjectName(QLatin1String(name));
    made->setStyleSheet(theme::secondaryButtonStyle());
    made->setEnabled(false);
    return made;
}

void HistoryWindow::buildLayout()
{
    auto *splitter = new QSplitter(Qt::Vertical);
    splitter->setStyleSheet(theme::splitterStyle());
    splitter->addWidget(entryHalf());
    splitter->addWidget(fileHalf());
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    splitter->setChildrenCollapsible(false);
    auto *content = new QWidget;
    QBoxLayout *layout = column(content);
    const int margin = theme::margin();
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(bar_);
    layout->addWidget(splitter, 1);
    setContent(content);
}

QWidget *HistoryWindow::entryHalf()
{
    count_->setObjectName(QStringLiteral("countLabel"));
    entryTable_->setObjectName(QStringLiteral("entryTable"));
    entryTable_->setAccessibleName(QStringLiteral("记录"));
    prepareTable(entryTable_);
    entryRows_ = new SortedRows(entryTable_, &entries_, EntryTable::SortRole);
    widen(entryTable_, entryColumnsPx);
    entryTable_->setSelectionMode(QAbstractItemView::SingleSelection);
    entryRows_->addAction(QStringLiteral("复制"), QKeySequence::Copy,
                          [this](int) { QGuiApplication::clipboard()->setText(copiedRow()); });
    connect(entryRows_, &SortedRows::currentChanged, this, &HistoryWindow::showCurrent);

    auto *foot = new QHBoxLayout;
    foot->setSpacing(theme::spacing());
    foot->addWidget(count_, 1);
    foot->addWidget(more_);
    foot->addWidget(exportEntries_);
    auto *half = new QWidget;
    QBoxLayout *layout = column(half);
    layout->addWidget(entryTable_, 1);
    layout->addLayout(foot);
    return half;
}

QWidget *HistoryWindow::fileHalf()
{
    heading_->setObjectName(QStringLiteral("fileHeading"));
    heading_->setStyleSheet(theme::headingStyle());
    heading_->setMinimumWidth(1);
    fileTable_->setObjectName(QStringLiteral("historyFiles"));
    fileTable_->setAccessibleName(QStringLiteral("记录的文件"));
    prepareTable(fileTable_);
    fileRows_ = new SortedRows(fileTable_, &files_, FileTable::SortRole);
    widen(fileTable_, fileColumnsPx);
    fileTable_->setEmptyText(QStringLiteral("选择一条记录查看其文件"));
    fileTable_->setItemDelegateForColumn(FileTable::SourceColumn,
                                         new ElidedTextDelegate(Qt::ElideMiddle, fileTable_));
    fileTable_->setItemDelegateForColumn(FileTable::TargetColumn,
                                         new ElidedTextDelegate(Qt::ElideMiddle, fileTable_));
    fileRows_->addAction(QStringLiteral("打开目标目录"), QKeySequence(QStringLiteral("Ctrl+E")),
                         [this](int) { openTarget(); });
    fileRows_->addAction(QStringLiteral("复制目标路径"), QKeySequence::Copy, [this](int row) {
        if (row >= 0)
            QGuiApplication::clipboard()->setText(files_.files().at(row).target);
    });

    auto *head = new QHBoxLayout;
    head->setSpacing(theme::spacing());
    head->addWidget(heading_, 1);
    head->addWidget(exportFiles_);
    auto *half = new QWidget;
    QBoxLayout *layout = column(half);
    layout->addLayout(head);
    layout->addWidget(fileTable_, 1);
    return half;
}

void HistoryWindow::connectLook()
{
    connect(bar_, &HistorySearchBar::searchRequested, this, &HistoryWindow::search);
    connect(&look_, &HistoryLook::found, this, &HistoryWindow::showStretch);
    connect(&look_, &HistoryLook::filesFound, this, &HistoryWindow::showFiles);
    connect(more_, &QPushButton::clicked, this, [this] {
        more_->setEnabled(false);
        look_.more();
    });
    connect(exportEntries_, &QPushButton::clicked, this, &HistoryWindow::exportEntries);
    connect(exportFiles_, &QPushButton::clicked, this, &HistoryWindow::exportFiles);
    connect(&sheet_, &SheetFile::finished, this, [this](const QString &path, bool isWritten) {
        if (isWritten)
            Toast::show(this, QStringLiteral("已导出: %1").arg(path));
        else
            MessageBox::warning(this, QStringLiteral("文件保存失败: %1").arg(path));
    });
    connect(&folderOpener_, &SharedFolderOpener::finished, this,
            [this](bool, const QString &error) {
                if (!error.isEmpty())
                    Toast::show(this, error);
            });
}

void HistoryWindow::showEvent(QShowEvent *event)
{
    FramelessWindow::showEvent(event);
    if (std::exchange(opened_, true))
        return;
    search();
}

// Searching.

void HistoryWindow::search()
{
    look_.search(bar_->wish());
    count_->setText(QStringLiteral("正在查找..."));
    more_->setEnabled(false);
}

void HistoryWindow::showStretch(const HistoryStretch &stretch, bool isFirst)
{
    entryTable_->setEmptyText(stretch.isOpen ? QStringLiteral("没有找到记录")
                                             : QStringLiteral("没有启用导入记录，或记录无法打开"));
    if (isFirst)
        entries_.setEntries(stretch.entries);
    else
        entries_.append(stretch.entries);
    entryRows_->sortAgain();
    more_->setEnabled(stretch.hasMore);
    exportEntries_->setEnabled(!entries_.entries().isEmpty());
    count_->setText(QStringLiteral("共 %1 条记录").arg(entries_.entries().size()) +
                    (stretch.hasMore ? QStringLiteral("，还有更早的") : QString()));
    showCurrent();
}

void HistoryWindow::showCurrent()
{
    const int row = entryRows_->current();
    const ledger::Entry chosen = row < 0 ? ledger::Entry() : entries_.entries().at(row);
    if (chosen.id == current_.id && chosen.id != 0)
        return;
    current_ = chosen;
    files_.setFiles({});
    exportFiles_->setEnabled(false);
    if (current_.id == 0) {
        look_.lookAway();
        heading_->clear();
        fileTable_->setEmptyText(QStringLiteral("选择一条记录查看其文件"));
        return;
    }
    heading_->setText(QStringLiteral("%1  %2 %3  %4")
                          .arg(recordtexts::workText(current_.run.desk.work), current_.order.number,
                               current_.order.name, recordtexts::countsText(current_)));
    fileTable_->setEmptyText(QStringLiteral("正在读取..."));
    look_.lookAt(current_);
}

void HistoryWindow::showFiles(ledger::EntryId entry, const QVector<FileRecord> &files, bool isWhole)
{
    if (entry != current_.id)
        return;
    files_.setFiles(files);
    fileRows_->sortAgain();
    fileTable_->setEmptyText(QStringLiteral("没有文件"));
    exportFiles_->setEnabled(!files.isEmpty());
    if (!isWhole)
        heading_->setText(heading_->text() +
                          QStringLiteral("（只显示前 %1 个文件）").arg(files.size()));
}

// What is done with it.

QString HistoryWindow::copiedRow() const
{
    QStringList texts;
    const QModelIndex current = entryTable_->currentIndex();
    for (int cell = 0; cell < EntryTable::ColumnCount; ++cell)
        texts.append(current.sibling(current.row(), cell).data().toString());
    return texts.join(QLatin1Char('\t'));
}

void HistoryWindow::openTarget()
{
    const int row = fileRows_->current();
    if (row >= 0)
        folderOpener_.open(folderOf(files_.files().at(row).target));
}

void HistoryWindow::exportEntries()
{
    writeSheet(QStringLiteral("导入记录"),
               [entries = entries_.entries()] { return historysheet::entriesCsv(entries); });
}

void HistoryWindow::exportFiles()
{
    writeSheet(QStringLiteral("文件明细"), [entry = current_, files = files_.files()] {
        return historysheet::filesCsv(entry, files);
    });
}

void HistoryWindow::writeSheet(const QString &name, const std::function<QByteArray()> &make)
{
    const QString now = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString path = FileDialog::saveFile(
        this, QStringLiteral("导出"), QStringLiteral("%1-%2.csv").arg(name, now),
        QStringLiteral("CSV (*.csv)"), QStringLiteral("history"));
    if (!path.isEmpty())
        sheet_.write(path, make);
}
