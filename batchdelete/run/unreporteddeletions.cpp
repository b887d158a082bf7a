#include "batchdelete/run/unreporteddeletions.h"

#include "batchdelete/rules/deletionrequests.h"
#include "ledger/ledger.h"
#include "pending/pendingdesk.h"
#include "platform/pathform.h"
#include "tasks/background.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

namespace {

using Files = QVector<ledger::Deletion>;

Files unreportedAt(const LedgerReader &reader, const QVector<ledger::Desk> &desks)
{
    Files files;
    for (const ledger::Desk &desk : desks) {
        const auto open = reader.openDeletions(desk);
        std::copy_if(open.cbegin(), open.cend(), std::back_inserter(files),
                     [](const ledger::Deletion &file) {
                         return file.deletedMs != 0 && file.reportedMs == 0;
                     });
    }
    return files;
}

/// As it was announced: paths go out as they were scanned.
BatchDeleteFileInfo announced(const ledger::Deletion &file)
{
    QString path = file.file.path;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    const int end = path.lastIndexOf(QLatin1Char('/'));
    BatchDeleteFileInfo info;
    info.folderPath = path.left(end);
    info.fileName = path.mid(end + 1);
    return info;
}

} // namespace

UnreportedDeletions::UnreportedDeletions(QObject *parent) : QObject(parent), call_(this)
{
}

void UnreportedDeletions::refresh()
{
    Ledger::current().ask(
        this,
        [desks = pendingDesks(ledger::Work::BatchDeletion)](const LedgerReader &reader) {
            return unreportedAt(reader, desks);
        },
        asking_.only([this](const Files &files) {
            files_ = files;
            emit changed();
        }));
}

Files UnreportedDeletions::of(const QString &branch) const
{
    Files files;
    std::copy_if(
        files_.cbegin(), files_.cend(), std::back_inserter(files),
        [&branch](const ledger::Deletion &file) { return file.order.identity.branch == branch; });
    return files;
}

void UnreportedDeletions::report(const orderqueries::Identity &identity)
{
    if (busy_)
        return;
    busy_ = true;
    identity_ = identity;
    reported_ = 0;
    standing_ = 0;
    const Files files = of(identity.shopId);
    QStringList paths;
    for (const ledger::Deletion &file : files)
        paths.append(file.file.path);
    onDisk(
        this, paths,
        [files] {
            Files gone;
            for (const ledger::Deletion &file : files) {
                if (!QFileInfo::exists(platform::toLocalPath(file.file.path)))
                    gone.prepend(file);
            }
            return gone;
        },
        [this, all = files.size()](const Files &gone) {
            standing_ = all - gone.size();
            pending_ = gone;
            reportNext();
        });
}

void UnreportedDeletions::reportNext()
{
    if (pending_.isEmpty()) {
        end({});
        return;
    }
    const ledger::Deletion &file = pending_.constLast();
    call_.start(
        deletionrequests::reportAction,
        deletionrequests::reportBody(identity_, file.order.identity.orderPhotoId, announced(file)),
        [this](const ServiceReply &reply) { onReply(reply); });
}

void UnreportedDeletions::onReply(const ServiceReply &reply)
{
    if (!reply.isSuccess()) {
        end(reply.message.isEmpty() ? QStringLiteral("删除信息提交失败") : reply.message);
        return;
    }
    Ledger::current().reportDeletions({pending_.takeLast().id});
    ++reported_;
    reportNext();
}

void UnreportedDeletions::end(const QString &problem)
{
    QStringList lines{QStringLiteral("已提交 %1 个文件的状态").arg(reported_)};
    if (standing_ > 0)
        lines.append(QStringLiteral("%1 个文件又出现在磁盘上，没有提交").arg(standing_));
    if (!problem.isEmpty())
        lines.append(QStringLiteral("其余 %1 个没有提交：%2").arg(pending_.size()).arg(problem));
    busy_ = false;
    pending_.clear();
    refresh();
    emit finished(lines.join(QLatin1Char('\n')));
}

void UnreportedDeletions::dismiss(const QString &branch)
{
    QVector<ledger::DeletionId> ids;
    const Files files = of(branch);
    for (const ledger::Deletion &file : files)
        ids.append(file.id);
    Ledger::current().dismissDeletions(ids);
    refresh();
}
