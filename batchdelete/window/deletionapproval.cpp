#include "batchdelete/window/deletionapproval.h"

#include "app/account/batchlogindialog.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "net/orderfolders.h"
#include "tasks/background.h"
#include "tasks/ordersatwork.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/windows/loadingoverlay.h"

namespace {

/// Unticks the orders that another tool is working on, so that their folders are kept, and returns
/// them with that for a reason.
QVector<BatchDeleteOrderInfo> takeOrdersInOtherHands(const QString &branch,
                                                     QVector<BatchDeleteOrderInfo> *orders)
{
    QVector<BatchDeleteOrderInfo> taken;
    for (BatchDeleteOrderInfo &order : *orders) {
        const QString tool = ordersatwork::toolAt({branch, order.id, order.orderPhotoId});
        if (!order.checked || tool.isEmpty())
            continue;
        order.checked = false;
        taken.append(order);
        taken.last().note = ordersatwork::refusal(order.displayNumber(), tool);
    }
    return taken;
}

/// All orders with a folder that may have to be kept: those of the list and whatever else any tool
/// has come across.
QVector<BatchDeleteOrderInfo> ordersWithFolders(const BatchDeleteOrderModel &model)
{
    QVector<BatchDeleteOrderInfo> orders = model.ordersWithFolders();
    const auto known = orderfolders::known();
    for (const orderfolders::OrderFolder &folder : known) {
        const int row = model.rowOf(folder.order);
        if (row >= 0 && !model.order(row).netPath.isEmpty())
            continue;
        BatchDeleteOrderInfo order;
        order.branch = folder.order.branch;
        order.id = folder.order.id;
        order.orderPhotoId = folder.order.orderPhotoId;
        order.orderPayForKey = folder.orderPayForKey;
        order.serviceTimes = folder.serviceTimes;
        order.netPath = folder.path;
        orders.append(order);
    }
    return orders;
}

} // namespace

DeletionApproval::DeletionApproval(QWidget *window, BatchDeleteOrderModel *orders)
    : QObject(window), window_(window), orders_(orders), overlay_(new LoadingOverlay(window))
{
    connect(overlay_, &LoadingOverlay::cancelled, this, &DeletionApproval::cancel);
}

void DeletionApproval::cancel()
{
    asking_.abandon();
    overlay_->hideOverlay();
}

void DeletionApproval::ask(const QString &branch, const QStringList &publicRoots)
{
    overlay_->showText(QStringLiteral("正在检查订单目录..."));
    QVector<BatchDeleteOrderInfo> orders = ordersWithFolders(*orders_);
    const QVector<BatchDeleteOrderInfo> inOtherHands = takeOrdersInOtherHands(branch, &orders);
    QStringList paths = publicRoots;
    for (const BatchDeleteOrderInfo &order : qAsConst(orders))
        paths.append(order.netPath);
    onDisk(
        this, paths,
        [orders, publicRoots, inOtherHands] {
            deletionrules::DeletionPlan plan = deletionrules::plan(orders, publicRoots);
            plan.refused += inOtherHands;
            return plan;
        },
        [this, asked = asking_.next()](const deletionrules::DeletionPlan &plan) {
            if (!asked.isCurrent())
                return;
            overlay_->hideOverlay();
            confirmPlan(plan, asked);
        });
}

void DeletionApproval::confirmPlan(const deletionrules::DeletionPlan &plan,
                                   const Latest::Token &asked)
{
    for (const BatchDeleteOrderInfo &refused : plan.refused) {
        const int row = orders_->rowOf(refused.identity());
        orders_->change(row,
                        [&refused](BatchDeleteOrderInfo &order) { order.note = refused.note; });
        orders_->uncheck(row);
    }
    if (plan.orders.isEmpty()) {
        MessageBox::warning(window_, deletionrules::refusedNotice(plan));
        return;
    }
    ConfirmDialog::ask(window_,
                       BoxText(deletionrules::confirmation(plan))
                           .endangering(QMessageBox::Ok, QStringLiteral("删除")),
                       ConfirmDialog::Enter::Cancels,
                       [this, orders = plan.orders, asked](bool agreed) {
                           if (agreed && asked.isCurrent())
                               verifyAccount(orders, asked);
                       });
}

void DeletionApproval::verifyAccount(const QVector<BatchDeleteOrderInfo> &orders,
                                     const Latest::Token &asked)
{
    const auto onVerified = [this, orders, asked](bool success, const QString &, const QString &) {
        if (!success || !asked.isCurrent())
            return;
        Toast::show(window_, QStringLiteral("验证成功！"));
        emit approved(orders);
    };
    (new BatchLoginDialog(window_, onVerified))->open();
}
