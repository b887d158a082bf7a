#include "batchdelete/deletionapproval.h"

#include "app/account/batchlogindialog.h"
#include "batchdelete/batchdeleteordermodel.h"
#include "tasks/background.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/loadingoverlay.h"
#include "widgets/toast.h"

namespace {

constexpr int toastMs = 2000;

} // namespace

DeletionApproval::DeletionApproval(QWidget *window, BatchDeleteOrderModel *orders)
    : QObject(window), window_(window), orders_(orders), overlay_(new LoadingOverlay(window))
{
    connect(overlay_, &LoadingOverlay::cancelled, this, &DeletionApproval::cancel);
}

void DeletionApproval::cancel()
{
    ++plan_;
    overlay_->hideOverlay();
}

void DeletionApproval::ask(const QStringList &publicRoots)
{
    overlay_->showText(QStringLiteral("正在检查订单目录..."));
    QStringList paths = publicRoots;
    for (const BatchDeleteOrderInfo &order : orders_->orders())
        paths.append(order.netPath);
    onDisk(
        this, paths,
        [orders = orders_->orders(), publicRoots] {
            return deletionrules::plan(orders, publicRoots);
        },
        [this, number = ++plan_](const deletionrules::DeletionPlan &plan) {
            if (number != plan_)
                return;
            overlay_->hideOverlay();
            confirmPlan(plan);
        });
}

void DeletionApproval::confirmPlan(const deletionrules::DeletionPlan &plan)
{
    for (const BatchDeleteOrderInfo &refused : plan.refused) {
        orders_->change(orders_->rowOf(refused.id),
                        [&refused](BatchDeleteOrderInfo &order) { order.note = refused.note; });
    }
    if (plan.orders.isEmpty()) {
        MessageBox::warning(window_, deletionrules::refusedNotice(plan));
        return;
    }
    ConfirmDialog::ask(window_, deletionrules::confirmation(plan), ConfirmDialog::Enter::Cancels,
                       [this, orders = plan.orders, number = plan_](bool agreed) {
                           if (agreed && number == plan_)
                               verifyAccount(orders);
                       });
}

void DeletionApproval::verifyAccount(const QVector<BatchDeleteOrderInfo> &orders)
{
    const auto onVerified = [this, orders, number = plan_](bool success, const QString &,
                                                           const QString &) {
        if (!success || number != plan_)
            return;
        Toast::show(window_, QStringLiteral("验证成功！"), toastMs);
        emit approved(orders);
    };
    (new BatchLoginDialog(window_, onVerified))->open();
}
