#include "orderbrowser/window/orderactions.h"

#include "orderbrowser/window/browsertable.h"
#include "widgets/boxes/toast.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>

OrderActions::OrderActions(BrowserTable *table, QObject *parent) : QObject(parent), table_(table)
{
    addTableAction(table_, QStringLiteral("打开目录"), QKeySequence(QStringLiteral("Ctrl+E")),
                   [this] { openFolder(); });
    addTableAction(table_, QStringLiteral("核对订单"), QKeySequence(QStringLiteral("Ctrl+K")),
                   [this] { checkOrder(); });
    addTableAction(table_, QStringLiteral("复制订单号"),
                   QKeySequence(QStringLiteral("Ctrl+Shift+C")), [this] { copyNumber(); });
    addTableAction(table_, QStringLiteral("复制所选单元格"), QKeySequence::Copy,
                   [this] { copySelected(); });
    // Deleting files is begun where they are looked at.
    static const QStringList cards{QStringLiteral("导入原片"),     QStringLiteral("导入精修片"),
                                   QStringLiteral("导片工具"),     QStringLiteral("设计分件"),
                                   QStringLiteral("下载选片结果"), QStringLiteral("下载原始档"),
                                   QStringLiteral("下载照片交付")};
    for (int i = 0; i < cards.size(); ++i) {
        addTableAction(table_, QStringLiteral("在“%1”中打开").arg(cards.at(i)),
                       QKeySequence(QStringLiteral("Ctrl+%1").arg(i + 1)),
                       [this, card = cards.at(i)] { openTool(card); });
    }
    connect(table_, &BrowserTable::menuWanted, this, [this](const QPoint &position) {
        if (table_->currentOrder())
            popUpActions(table_, position);
    });
    connect(&folderOpener_, &SharedFolderOpener::finished, this,
            [this](bool, const QString &error) {
                if (!error.isEmpty())
                    Toast::show(table_, error);
            });
}

void OrderActions::openFolder()
{
    const BrowsedOrder *order = table_->currentOrder();
    if (!order)
        return;
    const QString folder = order->values.value(orderfields::ImportPath);
    if (folder.isEmpty())
        Toast::show(table_, QStringLiteral("该订单没有导片路径"));
    else
        folderOpener_.open(folder);
}

void OrderActions::openTool(const QString &card)
{
    const BrowsedOrder *order = table_->currentOrder();
    if (!order)
        return;
    if (order->identity.orderPhotoId.isEmpty())
        Toast::show(table_, QStringLiteral("该订单没有照片集，无法打开"));
    else
        emit openToolRequested(card, order->identity.branch, order->identity.orderPhotoId,
                               OrderListing::searchNumber(*order));
}

void OrderActions::checkOrder()
{
    const BrowsedOrder *order = table_->currentOrder();
    if (!order)
        return;
    const QString number = order->values.value(orderfields::Number);
    emit orderCheckRequested({order->identity, OrderListing::searchNumber(*order), number, number,
                              order->values.value(orderfields::ImportPath)});
}

void OrderActions::copyNumber()
{
    if (const BrowsedOrder *order = table_->currentOrder()) {
        QGuiApplication::clipboard()->setText(order->values.value(orderfields::Number));
        Toast::show(table_, QStringLiteral("订单号已复制"));
    }
}

void OrderActions::copySelected()
{
    const QString text = table_->selectedText();
    if (text.isEmpty())
        return;
    QGuiApplication::clipboard()->setText(text);
    Toast::show(table_, QStringLiteral("已复制 %1 行").arg(table_->selectedRows().size()));
}
