#include "orderbrowser/window/detailspane.h"

#include "orderbrowser/window/chosenphotosview.h"
#include "widgets/boxes/toast.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>

namespace {

// Of the pane's height.
constexpr int fieldsShare = 3;
constexpr int photosShare = 2;

QString problemText(FolderContent::State state)
{
    switch (state) {
    case FolderContent::State::There:
        return {};
    case FolderContent::State::Missing:
        return QStringLiteral("目录不存在");
    case FolderContent::State::Denied:
        return QStringLiteral("没有权限查看该目录");
    case FolderContent::State::Failed:
        return QStringLiteral("目录读取失败");
    case FolderContent::State::Refused:
        return QStringLiteral("导片路径无效");
    case FolderContent::State::TimedOut:
        return QStringLiteral("查看目录超时，请检查网络或服务器状态");
    }
    return {};
}

QString sizeText(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

} // namespace

DetailsPane::DetailsPane(QWidget *parent)
    : QWidget(parent)
    , heading_(new PlainLabel(this))
    , fields_(new PlainTips<QTreeWidget>(this))
    , photos_(new ChosenPhotosView(this))
    , folder_(new PlainLabel(this))
    , open_(new QPushButton(QStringLiteral("打开目录"), this))
    , stop_(new QPushButton(QStringLiteral("取消"), this))
{
    heading_->setObjectName(QStringLiteral("detailsHeading"));
    heading_->setStyleSheet(theme::headingStyle());
    fields_->setObjectName(QStringLiteral("detailsTree"));
    fields_->setAccessibleName(QStringLiteral("订单详情"));
    fields_->setColumnCount(2);
    fields_->setHeaderLabels({QStringLiteral("字段"), QStringLiteral("内容")});
    fields_->setRootIsDecorated(true);
    fields_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    fields_->setStyleSheet(theme::tableStyle() + theme::listStyle());
    addTableAction(fields_, QStringLiteral("复制"), QKeySequence::Copy, [this] { copySelected(); });
    folder_->setObjectName(QStringLiteral("folderLabel"));
    folder_->setWordWrap(true);
    folder_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    open_->setObjectName(QStringLiteral("detailsOpenButton"));
    stop_->setObjectName(QStringLiteral("detailsStopButton"));
    for (QPushButton *button : {open_, stop_})
        button->setStyleSheet(theme::secondaryButtonStyle());
    stop_->hide();
    connect(open_, &QPushButton::clicked, this, &DetailsPane::openFolderClicked);
    connect(stop_, &QPushButton::clicked, this, [this] {
        look_.cancel();
        stop_->hide();
        folder_->setText(QStringLiteral("已取消查看目录"));
    });
    connect(&look_, &FolderLook::found, this, &DetailsPane::showContent);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(open_);
    buttons->addWidget(stop_);
    buttons->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::spacing(), 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addWidget(heading_);
    layout->addWidget(fields_, fieldsShare);
    layout->addWidget(photos_, photosShare);
    layout->addWidget(folder_);
    layout->addLayout(buttons);
    showOrder({}, nullptr, {}, {});
}

void DetailsPane::showOrder(const OrderListing &listing, const BrowsedOrder *order,
                            const fieldvalues::Display &display, const orderqueries::Identity &who)
{
    fields_->clear();
    heading_->setText(order ? order->values.value(orderfields::Number)
                            : QStringLiteral("请选择订单查看详情"));
    open_->setEnabled(order && !order->values.value(orderfields::ImportPath).isEmpty());
    QHash<QString, QTreeWidgetItem *> groups;
    for (int i = 0; order && i < listing.fields.size(); ++i) {
        const orderfields::OrderField &field = listing.fields.at(i);
        const QString text = fieldvalues::shown(field.kind, order->values.value(i), display);
        if (text.isEmpty())
            continue;
        QTreeWidgetItem *&group = groups[field.group];
        if (!group) {
            group = new QTreeWidgetItem(fields_, QStringList(field.group));
            group->setExpanded(true);
        }
        auto *item = new QTreeWidgetItem(group, {field.heading, text});
        item->setData(1, Qt::ToolTipRole, text);
    }
    fields_->resizeColumnToContents(0);
    if (order && order->identity == shown_ && !shown_.isEmpty())
        return;
    shown_ = order ? order->identity : OrderIdentity();
    photos_->showOrder(order, who);
    lookAtFolder(order ? order->values.value(orderfields::ImportPath) : QString());
}

void DetailsPane::lookAtFolder(const QString &path)
{
    look_.cancel();
    stop_->hide();
    path_ = path;
    if (path.isEmpty()) {
        folder_->setText(shown_.isEmpty() ? QString() : QStringLiteral("该订单没有导片路径"));
        return;
    }
    folder_->setText(QStringLiteral("正在查看目录..."));
    stop_->show();
    look_.look(path);
}

void DetailsPane::showContent(const FolderContent &content)
{
    stop_->hide();
    QStringList lines{path_};
    if (content.state != FolderContent::State::There)
        lines.append(problemText(content.state));
    else if (content.parts.isEmpty())
        lines.append(QStringLiteral("目录是空的"));
    for (const FolderContent::Part &part : content.parts) {
        const QString name = part.name.isEmpty() ? QStringLiteral("（目录下）") : part.name;
        lines.append(name + QStringLiteral(": %1 个文件，").arg(part.files) + sizeText(part.bytes));
    }
    folder_->setText(lines.join(QLatin1Char('\n')));
}

void DetailsPane::copySelected()
{
    QStringList lines;
    const auto items = fields_->selectedItems();
    for (const QTreeWidgetItem *item : items) {
        if (item->parent())
            lines.append(items.size() == 1 ? item->text(1)
                                           : item->text(0) + QLatin1Char('\t') + item->text(1));
    }
    if (lines.isEmpty())
        return;
    QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
    Toast::show(this, QStringLiteral("已复制"));
}
