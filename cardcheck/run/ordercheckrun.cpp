#include "cardcheck/run/ordercheckrun.h"

#include "cardcheck/run/cardlister.h"
#include "files/contenthash.h"
#include "files/pathgate.h"
#include "ledger/ledger.h"
#include "platform/pathform.h"
#include "tasks/background.h"

namespace {

using orderfilelist::Content;

constexpr int readersAtOnce = 2;

using Count = std::shared_ptr<std::atomic<qint64>>;

Content contentOf(const orderfilelist::OrderFile &file, const StopFlag &stop,
                  const Count &bytesRead)
{
    platform::TransferControl control;
    control.cancelled = [&stop] { return stop.isRaised(); };
    control.progress = [&bytesRead, before = qint64(0)](qint64 bytes) mutable {
        bytesRead->fetch_add(bytes - before);
        before = bytes;
    };
    const ContentReading reading = readContent(platform::toLocalPath(file.path), control);
    switch (reading.ending) {
    case ContentReading::Ending::Read:
        return reading.hash == file.copy.targetHash ? Content::Same : Content::Differs;
    case ContentReading::Ending::Failed:
        return Content::Unreadable;
    case ContentReading::Ending::Changed: // somebody is at it now
    case ContentReading::Ending::Cancelled:
        break;
    }
    return Content::NotRead;
}

std::unique_ptr<WorkerPool> makePool()
{
    return std::make_unique<WorkerPool>(QStringLiteral("order check"), readersAtOnce);
}

} // namespace

OrderCheckRun::OrderCheckRun(QObject *parent)
    : QObject(parent), bytesRead_(std::make_shared<std::atomic<qint64>>(0)), pool_(makePool())
{
    connect(&branch_, &BranchSession::switched, this, [this] {
        lists_.reset(branch_.identity());
        lists_.ask(order_, true);
    });
    // Without an answer the folder and the ledger are shown all the same.
    connect(&branch_, &BranchSession::switchFailed, this, &OrderCheckRun::ended);
    connect(&lists_, &ServiceLists::answered, this, &OrderCheckRun::ended);
}

OrderCheckRun::~OrderCheckRun()
{
    stop_.raise();
    WorkerPool::retire(std::move(pool_));
}

void OrderCheckRun::cancel()
{
    stop_.raise();
    toRead_.clear();
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
    comparison_ = orderfilelist::compare(folder_, files_, lists_.of(order_.identity), copies_);
    comparison_.problem = problem_;
    read();
}

void OrderCheckRun::read()
{
    // A reading of an earlier check may still hang: neither it nor its bytes count for this one.
    stop_ = StopFlag();
    bytesRead_ = std::make_shared<std::atomic<qint64>>(0);
    readings_ = 0;
    toRead_.clear();
    progress_ = {};
    for (int index = 0; index < comparison_.files.size(); ++index) {
        if (!comparison_.files.at(index).isToBeRead())
            continue;
        toRead_.append(index);
        progress_.bytesTotal += comparison_.files.at(index).folderBytes;
    }
    progress_.filesTotal = toRead_.size();
    emit readingBegun();
    for (int reader = 0; reader < readersAtOnce && !toRead_.isEmpty(); ++reader)
        readNext();
    if (readings_ == 0)
        finish();
}

void OrderCheckRun::readNext()
{
    const int index = toRead_.takeFirst();
    ++readings_;
    inPool(
        pool_.get(), this,
        [file = comparison_.files.at(index), stop = stop_, bytesRead = bytesRead_] {
            return contentOf(file, stop, bytesRead);
        },
        [this, index, token = current_](orderfilelist::Content content) {
            if (token.isCurrent())
                onRead(index, content);
        });
}

void OrderCheckRun::onRead(int index, orderfilelist::Content content)
{
    comparison_.settle(index, content);
    ++progress_.filesDone;
    --readings_;
    if (!toRead_.isEmpty())
        readNext();
    else if (readings_ == 0)
        finish();
}

void OrderCheckRun::finish()
{
    round_.abandon();
    emit finished(comparison_);
}

TransferProgress OrderCheckRun::progress() const
{
    TransferProgress progress = progress_;
    progress.bytesDone = bytesRead_->load();
    return progress;
}
