#include "photoimport/orders/photochoices.h"

#include "ledger/orderkey.h"

#include <algorithm>

namespace photochoices {

namespace {

SourceFile sourceFileOf(const ledger::PendingFile &kept, PhotoMode mode)
{
    SourceFile file;
    file.path = kept.path;
    file.name = kept.target;
    file.size = qMax<qint64>(0, kept.bytes);
    file.jobs = waitingJobs(mode);
    return file;
}

void putBack(const QVector<ledger::PendingFile> &files, PhotoOrder *order)
{
    for (const ledger::PendingFile &kept : files) {
        const int mode = kept.note.toInt();
        if (mode < 0 || mode >= PhotoOrder::modes)
            continue;
        QVector<SourceFile> &listed = order->files(PhotoMode(mode));
        const bool isListed =
            std::any_of(listed.cbegin(), listed.cend(), [&kept](const SourceFile &file) {
                return file.path == kept.path ||
                       file.name.compare(kept.target, Qt::CaseInsensitive) == 0;
            });
        if (!isListed)
            listed.append(sourceFileOf(kept, PhotoMode(mode)));
    }
}

} // namespace

PendingChoices::Choice rememberedFiles(const PhotoOrder &order)
{
    PendingChoices::Choice choice{ledger::orderKey(order.identity(), order.info.orderPayForKey,
                                                   order.info.serviceTimes,
                                                   {order.info.mname, order.info.wname}),
                                  {}};
    for (int mode = 0; mode < PhotoOrder::modes; ++mode) {
        for (const SourceFile &file : order.files(PhotoMode(mode))) {
            if (file.isComplete())
                continue;
            ledger::PendingFile kept;
            kept.path = file.path;
            kept.target = file.name;
            kept.bytes = file.size;
            kept.note = QString::number(mode);
            choice.files.append(kept);
        }
    }
    return choice;
}

QVector<PhotoOrder> restored(const QVector<PhotoOrder> &listed, const QVector<PhotoOrder> &found,
                             const QVector<PendingChoices::Choice> &choices)
{
    QVector<PhotoOrder> orders = listed;
    for (const PhotoOrder &fresh : found) {
        const auto isSame = [&fresh](const auto &other) {
            return other.identity() == fresh.identity();
        };
        if (std::none_of(orders.cbegin(), orders.cend(), isSame))
            orders.prepend(fresh);
        const auto order = std::find_if(orders.begin(), orders.end(), isSame);
        order->info = fresh.info;
        order->importedByMode = fresh.importedByMode;
        for (const PendingChoices::Choice &choice : choices) {
            if (choice.order.identity == fresh.identity())
                putBack(choice.files, &*order);
        }
    }
    return orders;
}

} // namespace photochoices
