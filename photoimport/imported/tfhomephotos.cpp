#include "photoimport/imported/tfhomephotos.h"

#include "marks/window/markfilter.h"
#include "photoimport/imported/tfphotodelegate.h"
#include "photoimport/imported/tfphotolistmodel.h"
#include "photoimport/imported/tfphotoview.h"
#include "widgets/inputs/flowlayout.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QPushButton>
#include <QScrollBar>
#include <QSet>

#include <algorithm>
#include <initializer_list>

namespace {

constexpr int sightDelayMs = 30; // scrolling asks once it pauses

} // namespace

tfhomephotos::tfhomephotos(tfphotolistmodel *model, QWidget *parent)
    : QWidget(parent)
    , model_(model)
    , view_(new tfphotoview(this))
    , filter_(new MarkFilter(this))
    , heading_(new PlainLabel(this))
{
    buildView();
    buildLayout();
    showOrder({});
    sightTimer_.setSingleShot(true);
    sightTimer_.setInterval(sightDelayMs);
    connect(&sightTimer_, &QTimer::timeout, this, &tfhomephotos::askForThumbnails);
    const auto lookAgain = [this] { sightTimer_.start(); };
    connect(view_, &tfphotoview::sightChanged, this, lookAgain);
    connect(model_, &QAbstractItemModel::modelReset, this, lookAgain);
    connect(filter_, &MarkFilter::chosen, model_, &tfphotolistmodel::setFilter);
    connect(&thumbnails_, &tfthumbnailthread::thumbnailReady, model_,
            &tfphotolistmodel::setThumbnail);
}

void tfhomephotos::buildView()
{
    view_->setObjectName(QStringLiteral("photoView"));
    view_->setAccessibleName(QStringLiteral("已导入照片"));
    view_->setModel(model_);
    connect(view_, &tfphotoview::filesDropped, this, &tfhomephotos::filesDropped);
    addTableAction(view_, QStringLiteral("重新导入"), Qt::CTRL + Qt::Key_R,
                   [this] { emit retryClicked(selectedRows()); });
    addTableAction(view_, QStringLiteral("移出列表"), Qt::CTRL + Qt::Key_Delete,
                   [this] { emit removeClicked(selectedRows()); });
    addTableAction(view_, QStringLiteral("删除照片"), Qt::Key_Delete,
                   [this] { emit deleteClicked(selectedRows()); });
    addTableAction(view_, QStringLiteral("全选"), QKeySequence::SelectAll,
                   [this] { view_->selectAll(); });
}

QPushButton *tfhomephotos::button(const char *name, const QString &text, const QString &tip)
{
    auto *made = new QPushButton(text, this);
    made->setObjectName(QLatin1String(name));
    made->setStyleSheet(theme::secondaryButtonStyle());
    setPlainTip(made, tip);
    return made;
}

void tfhomephotos::buildLayout()
{
    heading_->setObjectName(QStringLiteral("orderHeading"));
    heading_->setStyleSheet(theme::headingStyle());
    heading_->setIndent(0);
    heading_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *addFiles = button("addFilesButton", QStringLiteral("添加照片"),
                            QStringLiteral("选择照片，也可以把文件或目录拖到订单上"));
    auto *addFolder = button("addFolderButton", QStringLiteral("添加目录"),
                             QStringLiteral("添加目录和其中所有子目录里的照片"));
    auto *start =
        button("startOrderButton", QStringLiteral("导入本单"), QStringLiteral("只导入当前订单"));
    auto *retry = button("retryButton", QStringLiteral("重试失败"),
                         QStringLiteral("重新导入失败的照片，重新登记未登记的照片"));
    auto *open = button("openFolderButton", QStringLiteral("打开目录"), {});
    auto *remove = button("deleteButton", QStringLiteral("删除照片"),
                          QStringLiteral("从服务和磁盘上删除选中的已导入照片"));
    auto *layoutButton =
        button("viewButton", QStringLiteral("列表"), QStringLiteral("切换网格和列表"));
    connect(addFiles, &QPushButton::clicked, this, &tfhomephotos::addFilesClicked);
    connect(addFolder, &QPushButton::clicked, this, &tfhomephotos::addFolderClicked);
    connect(start, &QPushButton::clicked, this, &tfhomephotos::startClicked);
    connect(open, &QPushButton::clicked, this, &tfhomephotos::openFolderClicked);
    connect(retry, &QPushButton::clicked, this, [this] { emit retryClicked({}); });
    connect(remove, &QPushButton::clicked, this, [this] { emit deleteClicked(selectedRows()); });
    connect(layoutButton, &QPushButton::clicked, this, [this, layoutButton] {
        view_->setGrid(!view_->isGrid());
        layoutButton->setText(view_->isGrid() ? QStringLiteral("列表") : QStringLiteral("网格"));
        sightTimer_.start();
    });
    needOrder_ = {addFiles, addFolder, start, retry, remove, open};

    // In a narrow window they take several lines rather than the room of the heading.
    const std::initializer_list<QWidget *> all = {addFiles, addFolder, start,       retry,
                                                  remove,   open,      layoutButton};
    auto *buttons = new FlowLayout(nullptr, theme::spacing(), theme::spacing());
    for (QWidget *made : all)
        buttons->addWidget(made);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addWidget(heading_);
    layout->addLayout(buttons);
    layout->addWidget(filter_);
    layout->addWidget(view_, 1);
    QWidget *before = nullptr;
    for (QWidget *next : all) {
        if (before)
            setTabOrder(before, next);
        before = next;
    }
    setTabOrder(before, view_);
}

void tfhomephotos::showOrder(const QString &heading)
{
    const bool shown = !heading.isEmpty();
    heading_->setText(shown ? heading : QStringLiteral("照片"));
    setPlainTip(heading_, heading);
    for (QWidget *part : qAsConst(needOrder_))
        part->setEnabled(shown);
    view_->setEmptyText(shown ? QStringLiteral("添加照片，或把照片和目录拖到这里")
                              : QStringLiteral("请在左侧选择订单"));
}

void tfhomephotos::setMarkCounts(const QHash<marks::Mark, int> &counts)
{
    filter_->setCounts(counts);
}

void tfhomephotos::keepPlaceWhile(const std::function<void()> &change)
{
    QSet<QString> selected;
    const auto rows = selectedRows();
    for (const int row : rows)
        selected.insert(model_->photo(row).path);
    const int scrolled = view_->verticalScrollBar()->value();
    change();
    for (int row = 0; !selected.isEmpty() && row < model_->rowCount(); ++row) {
        if (selected.contains(model_->photo(row).path))
            view_->selectionModel()->select(model_->index(row), QItemSelectionModel::Select);
    }
    view_->doItemsLayout();
    view_->verticalScrollBar()->setValue(scrolled);
}

QVector<int> tfhomephotos::selectedRows() const
{
    QVector<int> rows;
    const auto indexes = view_->selectionModel()->selectedIndexes();
    for (const QModelIndex &index : indexes)
        rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void tfhomephotos::askForThumbnails()
{
    const tfphotoview::Range rows = view_->visibleRows();
    thumbnails_.want(model_->wantedThumbnails(rows.first, rows.last),
                     tfphotodelegate::thumbnailSide());
}
