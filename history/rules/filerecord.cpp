#include "history/rules/filerecord.h"

#include "history/rules/recordtexts.h"

namespace {

/// Of a path in either form.
QString nameOf(QString path)
{
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return path.section(QLatin1Char('/'), -1);
}

QString registrationText(ledger::Registration registration)
{
    switch (registration) {
    case ledger::Registration::NotWanted:
        return QStringLiteral("已拷贝");
    case ledger::Registration::Awaited:
        return QStringLiteral("已拷贝，未登记");
    case ledger::Registration::Done:
        return QStringLiteral("已登记");
    case ledger::Registration::Dismissed:
        return QStringLiteral("已拷贝，不登记");
    }
    return {};
}

QString deletionText(const ledger::Deletion &deletion)
{
    if (deletion.deletedMs == 0)
        return deletion.announcedMs == 0 ? QStringLiteral("未提交，未删除")
                                         : QStringLiteral("已提交，未删除");
    return deletion.reportedMs == 0 && deletion.work == ledger::Work::BatchDeletion
               ? QStringLiteral("已删除，服务端未知")
               : QStringLiteral("已删除");
}

} // namespace

FileRecord FileRecord::of(const ledger::Copy &copy)
{
    FileRecord file;
    file.name = nameOf(copy.target);
    file.kind = recordtexts::kindText(copy.kind);
    if (copy.isFinished()) {
        file.state = copy.registration == ledger::Registration::Awaited ? State::Open : State::Good;
        file.stateText = registrationText(copy.registration);
    } else {
        file.state = copy.failure.isEmpty() ? State::Open : State::Failed;
        file.stateText = QStringLiteral("未完成");
    }
    if (!copy.failure.isEmpty())
        file.stateText =
            copy.isFinished() ? file.stateText + QStringLiteral("：") + copy.failure : copy.failure;
    file.proof = proofText(copy.proof);
    file.bytes = copy.targetBytes < 0 ? copy.sourceBytes : copy.targetBytes;
    file.timeMs = copy.isFinished() ? copy.finishedMs : copy.begunMs;
    file.source = copy.source;
    file.target = copy.target;
    file.card = recordtexts::cardText(copy.volume);
    const ledger::Hash &hash = copy.targetHash.isEmpty() ? copy.sourceHash : copy.targetHash;
    file.hash = QString::fromLatin1(hash.toHex());
    return file;
}

FileRecord FileRecord::of(const ledger::Deletion &deletion)
{
    FileRecord file;
    file.name = nameOf(deletion.file.path);
    file.kind = QStringLiteral("删除");
    if (deletion.deletedMs != 0)
        file.state = State::Good;
    else if (!deletion.failure.isEmpty())
        file.state = State::Failed;
    file.stateText = deletionText(deletion);
    if (!deletion.failure.isEmpty())
        file.stateText += QStringLiteral("：") + deletion.failure;
    file.bytes = deletion.file.bytes;
    file.timeMs = deletion.deletedMs != 0 ? deletion.deletedMs : deletion.begunMs;
    file.target = deletion.file.path;
    file.hash = QString::fromLatin1(deletion.file.hash.toHex());
    return file;
}
