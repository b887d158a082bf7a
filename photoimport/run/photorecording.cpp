#include "photoimport/run/photorecording.h"

#include "app/context/accountcontext.h"
#include "ledger/copydescription.h"
#include "ledger/ledger.h"
#include "ledger/orderkey.h"
#include "photoimport/rules/photorequests.h"
#include "photoimport/rules/photorules.h"

#include <algorithm>

namespace {

/// The ledger is asked of many registered photos at once, ms.
constexpr int gatherMs = 200;

bool isRecorded(const PhotoInfo &photo)
{
    return photo.enabled != 0 &&
           (photo.kind == photorules::originalKind || photo.kind == photorules::trialVideoKind ||
            photo.kind == photorules::retouchedVideoKind);
}

ledger::OrderKey keyOf(const OrderInfo &order)
{
    return ledger::orderKey(order.identity(), order.orderPayForKey, order.serviceTimes,
                            {order.mname, order.wname});
}

} // namespace

PhotoRecording::PhotoRecording(QObject *parent) : QObject(parent)
{
    gathering_.setSingleShot(true);
    gathering_.setInterval(gatherMs);
    connect(&gathering_, &QTimer::timeout, this, &PhotoRecording::tellRegistered);
}

PhotoRecording::~PhotoRecording()
{
    end();
}

void PhotoRecording::start(const orderqueries::Identity &identity, PhotoMode mode)
{
    if (run_ == 0) {
        run_ = Ledger::current().beginRun(
            {{AccountContext::uid, identity.shopId, ledger::Work::PhotoImport},
             AccountContext::uid});
    }
    mode_ = mode;
}

QVector<ledger::CopyId> PhotoRecording::begin(ledger::RunId run, PhotoMode mode,
                                              const OrderInfo &order, int from, int count)
{
    const QString folder = photorules::importFolderOf(order);
    QVector<ledger::NewCopy> copies;
    QVector<int> positions;
    const int until = std::min(from + count, order.photos.size());
    for (int index = from; index < until; ++index) {
        const PhotoInfo &photo = order.photos.at(index);
        if (!isRecorded(photo))
            continue;
        ledger::NewCopy copy;
        copy.source = photo.sourcePath;
        copy.target = photorules::outputPathOf(folder, photo);
        copy.toRegister = photorequests::isRegistered(mode, photo);
        copies.append(copy);
        positions.append(index - from);
    }
    QVector<ledger::CopyId> ids(std::max(0, until - from), 0);
    if (copies.isEmpty())
        return ids;
    const QVector<ledger::CopyId> begun = beginOnDisk(run, keyOf(order), copies);
    for (int copy = 0; copy < begun.size(); ++copy)
        ids[positions.at(copy)] = begun.at(copy);
    return ids;
}

void PhotoRecording::withdraw(const QVector<ledger::CopyId> &copies)
{
    for (const ledger::CopyId copy : copies) {
        if (copy != 0)
            Ledger::current().failCopy(copy, QStringLiteral("任务已取消"));
    }
}

void PhotoRecording::registered(const QString &target)
{
    registered_.insert(target);
    if (!gathering_.isActive())
        gathering_.start();
}

void PhotoRecording::tellRegistered()
{
    const QStringList targets(registered_.cbegin(), registered_.cend());
    registered_.clear();
    if (targets.isEmpty())
        return;
    // Asked, since what is registered may be of an earlier run, or of several.
    Ledger::current().ask(
        &Ledger::current(),
        [targets](const LedgerReader &reader) { return reader.awaitedOnto(targets); },
        [](const QVector<ledger::Copy> &copies) {
            QVector<ledger::CopyId> taken;
            for (const ledger::Copy &copy : copies)
                taken.append(copy.id);
            Ledger::current().registerCopies(taken);
        });
}

void PhotoRecording::end()
{
    tellRegistered();
    Ledger::current().endRun(run_);
    run_ = 0;
}
