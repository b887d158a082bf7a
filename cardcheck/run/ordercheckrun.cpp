#include "cardcheck/run/ordercheckrun.h"

#include "cardcheck/run/cardlister.h"
#include "files/pathgate.h"
#include "ledger/ledger.h"
#include "tasks/background.h"

OrderCheckRun::OrderCheckRun(QObject *parent) : QObject(parent)
{
    connect(&branch_, &BranchSession::switched, this, [this] {
        lists_.reset(branch_.identity());
        lists_.ask(order_, true);
    });
    // Without an answer the folder and the ledger are shown all the same.
    connect(&branch_, &BranchSession::switchFailed, this, &OrderCheckRun::ended);
    connect(&lists_, &ServiceLists::answered, this, &OrderCheckRun::ended);
}

void OrderCheckRun::cancel()
{
    round_.abandon();
    branch_.cancel();
    lists_.reset({});
}

void OrderCheckRun::start(const ledger::OrderKey &order, const QString &folder)
{
    cancel();
    current_ = round_.next();
    order_ = order;
    folder_ = folder;
    problem_.clear();
    files_.clear();
    copies_.clear();
    awaited_ = 3;
    branch_.switchTo(order.identity.branch);
    Ledger::current().ask(
        this, [order](const LedgerReader &reader) { return reader.copiesOfOrder(order.identity); },
        [this, token = current_](const QVector<ledger::Copy> &copies) {
            if (!token.isCurrent())
                return;
            copies_ = copies;
            ended();
        });
    if (pathgate::flawOf(folder) != pathgate::Flaw::None) {
        problem_ = folder.isEmpty() ? QStringLiteral("该订单没有导片路径")
                                    : QStringLiteral("导片路径不能使用: %1").arg(folder);
        ended();
        return;
    }
    onDisk(
        this, folder, [folder] { return cardlister::listOrderFolder(folder); },
        [this, token = current_](const cardlister::FolderFiles &found) {
            if (!token.isCurrent())
                return;
            if (!found.isListed) {
                problem_ = found.isThere ? QStringLiteral("无法列出 %1").arg(folder_)
                                         : QStringLiteral("文件夹不存在: %1").arg(folder_);
            }
            files_ = found.files;
            ended();
        });
}

void OrderCheckRun::ended()
{
    if (!current_.isCurrent() || --awaited_ > 0)
        return;
    round_.abandon();
    orderfilelist::Comparison comparison =
        orderfilelist::compare(folder_, files_, lists_.of(order_.identity), copies_);
    comparison.problem = problem_;
    emit finished(comparison);
}
