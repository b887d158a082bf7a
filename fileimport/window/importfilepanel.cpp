#include "fileimport/window/importfilepanel.h"

#include "app/context/k.h"
#include "fileimport/window/filebuttondelegate.h"
#include "fileimport/window/importfiletablemodel.h"
#include "marks/window/markfilter.h"
#include "marks/window/marktag.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHeaderView>
#include <QSortFilterProxyModel>
#include <QVBoxLayout>

namespace {

constexpr int nameColumnPx = 228; // with the longest mark
constexpr int stateColumnPx = 130;
constexpr int actionColumnPx = 96;
constexpr int narrowestPx = 390; // the retry buttons are always in sight

} // namespace

ImportFilePanel::ImportFilePanel(ImportFileTableModel *model, QWidget *parent)
    : QWidget(parent)
    , table_(new EmptyStateTable(this))
    , shown_(new QSortFilterProxyModel(this))
    , filter_(new MarkFilter(this))
{
    setMinimumWidth(K::scaledPx(narrowestPx));
    buildTable(model);
    auto *heading = new PlainLabel(QStringLiteral("待导入文件列表"));
    heading->setStyleSheet(theme::headingStyle());
    heading->setIndent(0);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(heading);
    layout->addWidget(filter_);
    layout->addWidget(table_, 1);
}

void ImportFilePanel::buildTable(ImportFileTableModel *model)
{
    table_->setObjectName(QStringLiteral("fileTable"));
    table_->setAccessibleName(QStringLiteral("待导入文件"));
    prepareTable(table_);
    table_->horizontalHeader()->setDefaultAlignment(Qt::AlignCenter);
    shown_->setSourceModel(model);
    shown_->setFilterRole(ImportFileTableModel::MarkRole);
    table_->setModel(shown_);
    table_->setEmptyText(QStringLiteral("请在左侧选择订单，再选择或拖入要导入的文件"));
    auto *buttons = new FileButtonDelegate(table_);
    table_->setItemDelegateForColumn(ImportFileTableModel::ActionColumn, buttons);
    table_->setItemDelegateForColumn(
        ImportFileTableModel::FileNameColumn,
        new TaggedNameDelegate(ImportFileTableModel::MarkRole, table_));
    table_->setItemDelegateForColumn(ImportFileTableModel::TargetColumn,
                                     new ElidedTextDelegate(Qt::ElideMiddle, table_));
    connect(buttons, &FileButtonDelegate::retryClicked, this, &ImportFilePanel::retryAt);
    connect(filter_, &MarkFilter::chosen, this, [this](marks::Mark mark) {
        shown_->setFilterRegularExpression(
            mark == marks::Mark::None ? QString() : QStringLiteral("^%1$").arg(int(mark)));
    });

    addTableAction(table_, QStringLiteral("重新导入"), Qt::CTRL + Qt::Key_R,
                   [this] { retryAt(table_->currentIndex().row()); });

    QHeaderView *header = table_->horizontalHeader();
    header->resizeSection(ImportFileTableModel::FileNameColumn, K::scaledPx(nameColumnPx));
    header->resizeSection(ImportFileTableModel::StateColumn, K::scaledPx(stateColumnPx));
    header->resizeSection(ImportFileTableModel::ActionColumn, K::scaledPx(actionColumnPx));
}

void ImportFilePanel::setMarkCounts(const QHash<marks::Mark, int> &counts)
{
    filter_->setCounts(counts);
}

void ImportFilePanel::retryAt(int viewRow)
{
    emit retryClicked(shown_->mapToSource(shown_->index(viewRow, 0)).row());
}
