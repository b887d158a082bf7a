#include "distribution/run/distributionrecording.h"

#include "app/context/accountcontext.h"
#include "files/paths.h"
#include "ledger/ledger.h"
#include "ledger/orderkey.h"
#include "platform/pathform.h"

#include <algorithm>
#include <iterator>

namespace {

struct Card
{
    DesignFileSplitTypes type;
    ledger::Work work;
};

constexpr Card cards[] = {
    {DesignFileSplitTypes::Distribution, ledger::Work::Distribution},
    {DesignFileSplitTypes::DownloadOriginals, ledger::Work::DownloadOriginals},
    {DesignFileSplitTypes::DownloadSelection, ledger::Work::DownloadSelection},
    {DesignFileSplitTypes::DownloadDelivery, ledger::Work::DownloadDelivery},
};

QString cardNameOf(ledger::Work work)
{
    const auto *card = std::find_if(std::begin(cards), std::end(cards),
                                    [work](const Card &each) { return each.work == work; });
    return card == std::end(cards) ? QString() : cardName(card->type);
}

ledger::OrderKey keyOf(const OrderData &order)
{
    return ledger::orderKey(order.identity(), order.orderPayForKey, order.serviceTimes,
                            {order.mname, order.wname});
}

ledger::CopyKind kindOf(FileOutcome::Kind kind)
{
    switch (kind) {
    case FileOutcome::Kind::Copy:
        return ledger::CopyKind::Bytes;
    case FileOutcome::Kind::Upright:
        return ledger::CopyKind::Upright;
    case FileOutcome::Kind::Made:
        return ledger::CopyKind::Stored;
    }
    Q_UNREACHABLE();
}

ledger::NewCopy copyOf(const FileOutcome &file)
{
    ledger::NewCopy copy;
    copy.source = file.source;
    // The target keeps its source's time; what was made has one of its own. It is the target that
    // is recognised by it.
    copy.sourceBytes = file.isWritten() ? file.size : -1;
    copy.sourceModifiedMs = file.modified;
    copy.target = convertPathForService(file.target, {});
    copy.kind = kindOf(file.kind);
    return copy;
}

ledger::CopyResult resultOf(const FileOutcome &file)
{
    ledger::CopyResult result;
    result.targetBytes = file.size;
    // Of what is not the source's bytes nothing is proved by its size.
    if (file.kind == FileOutcome::Kind::Copy)
        result.proof = ledger::Proof::Size;
    return result;
}

} // namespace

void DistributionRecording::begin(DesignFileSplitTypes type, const orderqueries::Identity &identity)
{
    end();
    run_ = Ledger::current().beginRun(
        {{AccountContext::uid, identity.shopId, distributionrecords::workOf(type)},
         AccountContext::uid});
}

void DistributionRecording::add(const OrderData &order, const QVector<FileOutcome> &files,
                                const QString &reason)
{
    QVector<FileOutcome> ours;
    QVector<ledger::NewCopy> copies;
    for (const FileOutcome &file : files) {
        if (file.ending == FileOutcome::Ending::IsSource)
            continue; // nothing was written
        ours.append(file);
        copies.append(copyOf(file));
    }
    if (run_ == 0 || copies.isEmpty())
        return;
    const QVector<ledger::CopyId> ids = Ledger::current().beginCopies(run_, keyOf(order), copies);
    for (int i = 0; i < ids.size(); ++i) {
        if (ours.at(i).isWritten())
            Ledger::current().finishCopy(ids.at(i), resultOf(ours.at(i)));
        else
            Ledger::current().failCopy(ids.at(i),
                                       reason.isEmpty() ? QStringLiteral("没有写入") : reason);
    }
}

void DistributionRecording::end()
{
    if (run_ != 0)
        Ledger::current().endRun(run_);
    run_ = 0;
}

namespace distributionrecords {

ledger::Work workOf(DesignFileSplitTypes type)
{
    for (const Card &card : cards) {
        if (card.type == type)
            return card.work;
    }
    return ledger::Work::Unknown;
}

const QVector<ledger::Work> &works()
{
    static const QVector<ledger::Work> all = [] {
        QVector<ledger::Work> each;
        for (const Card &card : cards)
            each.append(card.work);
        return each;
    }();
    return all;
}

QVector<EarlierFile> earlierFiles(const QVector<ledger::Copy> &copies)
{
    QVector<EarlierFile> files;
    for (const ledger::Copy &copy : copies) {
        if (!copy.isFinished())
            continue;
        files.append({platform::toLocalPath(copy.target), copy.targetBytes, copy.sourceModifiedMs,
                      cardNameOf(copy.work), QDateTime::fromMSecsSinceEpoch(copy.finishedMs)});
    }
    return files;
}

} // namespace distributionrecords
