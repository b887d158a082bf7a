#include "fileimport/run/importrecording.h"

#include "app/context/accountcontext.h"
#include "fileimport/rules/importrules.h"
#include "fileimport/run/choicerestoring.h"
#include "files/paths.h"
#include "ledger/copydescription.h"
#include "ledger/ledger.h"
#include "tasks/background.h"

#include <algorithm>

namespace {

QVector<ledger::NewCopy> copiesOf(const QVector<ImportFile> &files)
{
    QVector<ledger::NewCopy> copies;
    copies.reserve(files.size());
    for (const ImportFile &file : files) {
        ledger::NewCopy copy;
        copy.source = file.sourcePath;
        copy.target = joinWirePath(file.targetFolder, file.targetName());
        copy.toRegister = importrules::isAnnounced(file);
        copies.append(copy);
    }
    return copies;
}

/// Finished, and still to be registered.
QVector<ledger::Copy> awaitedOf(const QVector<ledger::Copy> &copies)
{
    QVector<ledger::Copy> awaited;
    std::copy_if(copies.cbegin(), copies.cend(), std::back_inserter(awaited),
                 [](const ledger::Copy &copy) {
                     return copy.isFinished() && copy.registration == ledger::Registration::Awaited;
                 });
    return awaited;
}

} // namespace

ImportRecording::ImportRecording(ImportMode mode, QObject *parent) : QObject(parent), mode_(mode)
{
}

ImportRecording::~ImportRecording()
{
    end();
}

ledger::RunId ImportRecording::run(const orderqueries::Identity &identity)
{
    if (run_ == 0) {
        run_ = Ledger::current().beginRun(
            {{AccountContext::uid, identity.shopId, choicerestoring::workOf(mode_)},
             AccountContext::uid});
    }
    return run_;
}

void ImportRecording::begin(const ImportOrder &order, const QVector<ImportFile> &files,
                            const orderqueries::Identity &identity,
                            const std::function<void(const QVector<ledger::CopyId> &ids)> &begun)
{
    QStringList sources;
    for (const ImportFile &file : files)
        sources.append(file.sourcePath);
    onDisk(
        this, sources,
        [run = run(identity), key = choicerestoring::keyOf(order),
         copies = copiesOf(files)]() mutable { return beginOnDisk(run, key, std::move(copies)); },
        begun);
}

void ImportRecording::withdraw(const QVector<ledger::CopyId> &copies, const QString &reason)
{
    for (const ledger::CopyId copy : copies)
        Ledger::current().failCopy(copy, reason);
}

void ImportRecording::announce(const OrderIdentity &order)
{
    announced_.remove(order);
    Ledger::current().ask(
        this,
        [order, works = QVector<ledger::Work>{choicerestoring::workOf(mode_)}](
            const LedgerReader &reader) { return awaitedOf(reader.copiesOfOrder(order, works)); },
        [this, order](const QVector<ledger::Copy> &copies) { announced_.insert(order, copies); });
}

void ImportRecording::registered(const OrderIdentity &order, const QStringList &missing,
                                 const QString &reason)
{
    // Behind the answer to announce(), should that still be on its way.
    Ledger::current().whenWritten(this, [this, order, missing, reason](bool) {
        QVector<ledger::CopyId> taken;
        QVector<ledger::CopyId> refused;
        const QVector<ledger::Copy> copies = announced_.take(order);
        for (const ledger::Copy &copy : copies)
            (missing.contains(copy.target, Qt::CaseInsensitive) ? refused : taken).append(copy.id);
        Ledger::current().registerCopies(taken);
        Ledger::current().refuseCopies(refused, reason);
    });
}

void ImportRecording::end()
{
    Ledger::current().endRun(run_);
    run_ = 0;
}
