#include "distribution/run/oldfilerun.h"

#include "tasks/background.h"

bool OldFileRun::start(const QVector<ProvedOrder> &orders, const QString &tool, QString *refusal)
{
    if (isBusy())
        return false;
    QVector<ProvedOrder> concerned;
    QVector<OrderIdentity> identities;
    for (const ProvedOrder &order : orders) {
        if (order.proof.earlier.isEmpty())
            continue;
        concerned.append(order);
        identities.append(order.order);
    }
    if (concerned.isEmpty())
        return false;
    if (const auto conflict = ordersatwork::claim(identities, tool, &claim_)) {
        for (const ProvedOrder &order : qAsConst(concerned)) {
            if (order.order == conflict->order)
                *refusal = ordersatwork::refusal(order.number, conflict->tool);
        }
        return false;
    }
    results_.clear();
    waiting_ = concerned.size();
    for (const ProvedOrder &order : qAsConst(concerned)) {
        onDisk(
            this, order.proof.folder,
            [folder = order.proof.folder, files = order.proof.earlier] {
                return oldfiles::putAway(folder, files);
            },
            [this](const PutAway &result) {
                results_.append(result);
                if (--waiting_ > 0)
                    return;
                claim_.release();
                emit finished(results_);
            });
    }
    return true;
}
