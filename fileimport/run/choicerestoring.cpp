#include "fileimport/run/choicerestoring.h"

#include "fileimport/rules/importrules.h"
#include "fileimport/run/filechoice.h"
#include "files/chosenfiles.h"
#include "files/pathgate.h"
#include "files/paths.h"
#include "ledger/orderkey.h"

#include <algorithm>

namespace choicerestoring {

namespace {

ledger::PendingFile remembered(const ImportFile &file)
{
    ledger::PendingFile kept;
    kept.path = file.sourcePath;
    kept.target = file.fileName(); // may be another name than the source's
    kept.bytes = file.size;
    kept.note = file.state == ImportFile::Failed ? file.message : QString();
    return kept;
}

ImportFile restored(const ledger::PendingFile &kept, ImportMode mode, const QString &importPath)
{
    ImportFile file;
    file.sourcePath = kept.path;
    const int point = kept.target.lastIndexOf(QLatin1Char('.'));
    file.baseName = kept.target.left(point);
    file.suffix = kept.target.mid(point + 1);
    file.targetFolder = joinWirePath(importPath, importrules::subFolderFor(mode, file.suffix));
    file.size = qMax<qint64>(0, kept.bytes);
    file.message = kept.note;
    file.state = kept.note.isEmpty() ? ImportFile::Waiting : ImportFile::Failed;
    return file;
}

/// Why the files cannot come back; empty when they did.
QString putBack(ImportMode mode, const QVector<ledger::PendingFile> &files, ImportOrder *order)
{
    const pathgate::Refusal refusal =
        pathgate::refusalOfImport(order->displayName(), order->importPath, order->importPublicPath);
    if (refusal.isRefused())
        return refusal.text();
    if (!importrules::hasFolder(*order))
        return order->displayName() + QStringLiteral(" 没有设置本地云导片路径");
    order->importPath = importrules::importPathOf(*order);
    QVector<ImportFile> all;
    for (const ledger::PendingFile &file : files) {
        all.append(restored(file, mode, order->importPath));
        all.last().fileIndex = all.size() - 1;
    }
    const ChoiceResult prepared = prepareChoice({mode, order->importPath, 0, {}, all});
    if (!prepared.folderError.isEmpty())
        return order->displayName() + QStringLiteral(" ") + prepared.folderError;
    if (!prepared.clashes.isEmpty())
        return chosenfiles::sameTargetNotice(prepared.clashes);
    order->files = all;
    order->everChosen = true;
    return {};
}

} // namespace

ledger::Work workOf(ImportMode mode)
{
    switch (mode) {
    case ImportMode::Originals:
        return ledger::Work::ImportOriginals;
    case ImportMode::Retouched:
        return ledger::Work::ImportRetouched;
    }
    Q_UNREACHABLE();
}

ledger::OrderKey keyOf(const ImportOrder &order)
{
    return ledger::orderKey(order.identity(), order.orderPayForKey, order.serviceTimes,
                            {order.mname, order.wname});
}

PendingChoices::Choice rememberedFiles(const ImportOrder &order)
{
    PendingChoices::Choice choice{keyOf(order), {}};
    for (const ImportFile &file : order.files) {
        if (file.state != ImportFile::Imported)
            choice.files.append(remembered(file));
    }
    return choice;
}

Restored restore(ImportMode mode, const QVector<ImportOrder> &orders,
                 const QVector<PendingChoices::Choice> &choices)
{
    Restored result;
    for (ImportOrder order : orders) {
        const auto choice = std::find_if(choices.cbegin(), choices.cend(),
                                         [&order](const PendingChoices::Choice &each) {
                                             return each.order.identity == order.identity();
                                         });
        const QString problem =
            choice == choices.cend() ? QString() : putBack(mode, choice->files, &order);
        if (!problem.isEmpty())
            result.problems.append(problem);
        result.orders.append(order);
    }
    return result;
}

bool isInFolder(const ImportOrder &order, const QString &target)
{
    return importrules::hasFolder(order) &&
           pathgate::isBelow(target, importrules::importPathOf(order));
}

} // namespace choicerestoring
