#include "app/context/accountcontext.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "fileimport/run/filechoice.h"
#include "fileimport/run/importrun.h"
#include "files/contenthash.h"
#include "ledger/ledger.h"
#include "tests/support/democlient.h"
#include "tests/support/text.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QStorageInfo>

namespace {

constexpr double ratioBound = 1.25;
constexpr double ledgerBound = 1.05;
constexpr double hashBound = 10; // per cent
constexpr int filesAtOnce = 4;   // by an import
constexpr qint64 megabyte = 1 << 20;

struct Settings
{
    int files = 400;
    int megabytes = 8; // each
    int pairs = 10;
    int sizeOnly = 0;
    int small = 5000; // files of an import with and without the ledger; 0 for none
    int smallPairs = 3;
    QString folder;
};

QString wireForm(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

/// The first of the demo service's orders, with \a sources chosen for it.
ImportOrder orderFor(const QStringList &sources, const QString &target)
{
    ImportOrder order;
    order.branch = AccountContext::shopId;
    order.id = "50001"_s;
    order.orderPhotoId = "800001"_s;
    order.orderPayForKey = "TS10001"_s;
    order.serviceTimes = "1"_s;
    order.importPath = wireForm(target);
    const ChoiceResult choice =
        prepareChoice({ImportMode::Originals, order.importPath, 0, sources, {}});
    if (!choice.folderError.isEmpty())
        throw bench::Failure(choice.folderError);
    order.files = choice.files;
    return order;
}

/// Seconds from the start of the import until it is copied and registered.
double importSeconds(const QStringList &sources, const QString &target)
{
    const ImportOrder order = orderFor(sources, target);
    ImportRun run(ImportMode::Originals);
    QEventLoop loop;
    int imported = 0;
    QString problem = "the run ended early"_s;
    QObject::connect(&run, &ImportRun::fileChanged, &loop,
                     [&imported](const OrderIdentity &, const ImportFile &file) {
                         if (file.state == ImportFile::Imported)
                             ++imported;
                     });
    const auto endWith = [&](const QString &text) {
        problem = text;
        loop.quit();
    };
    QObject::connect(&run, &ImportRun::allImported, &loop, [&] { endWith(QString()); });
    QObject::connect(&run, &ImportRun::resubmitNeeded, &loop,
                     [&](const OrderIdentity &, const QString &question) { endWith(question); });
    QObject::connect(&run, &ImportRun::mismatchFound, &loop,
                     [&](const OrderIdentity &, const BoxText &notice) { endWith(notice.shown); });
    QElapsedTimer clock;
    clock.start();
    if (!run.start({order}, {AccountContext::shopId, AccountContext::superId, AccountContext::eid}))
        throw bench::Failure("nothing to import"_s);
    loop.exec();
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    if (!problem.isEmpty() || imported != sources.size()) {
        throw bench::Failure(
            "%1 of %2 files imported; %3"_s.arg(imported).arg(sources.size()).arg(problem));
    }
    return seconds;
}

/// Seconds that four plain copying processes and a sync of the disk take; and, where an import
/// reads back, four that read the copies past the system's memory.
double plainSeconds(const Settings &settings, const QStringList &sources, const QString &target)
{
    QElapsedTimer clock;
    clock.start();
    bench::copyPlainly(sources, target);
    bench::syncDisk(target);
    if (settings.sizeOnly == 0)
        bench::readDirectly(target);
    return double(clock.nsecsElapsed()) / 1e9;
}

/// Seconds that hashing one file twice takes, as a copy does that is read back.
double hashSeconds(const Settings &settings)
{
    const QByteArray content(int(settings.megabytes * megabyte), 'p');
    QVector<double> rounds;
    for (int round = 0; round < 11; ++round) {
        QElapsedTimer clock;
        clock.start();
        ContentHash hash;
        hash.add(content.constData(), content.size());
        hash.add(content.constData(), content.size());
        if (hash.result().isEmpty())
            throw bench::Failure("no hash"_s);
        rounds.append(double(clock.nsecsElapsed()) / 1e9);
    }
    return bench::median(rounds);
}

void checkCopies(const QString &folder, const Settings &settings)
{
    const QFileInfoList copies = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden);
    for (const QFileInfo &copy : copies) {
        if (copy.size() != settings.megabytes * megabyte)
            throw bench::Failure("%1 has the wrong size"_s.arg(copy.filePath()));
    }
    if (copies.size() != settings.files)
        throw bench::Failure("%1 files in %2"_s.arg(copies.size()).arg(folder));
}

/// Both meet the same state: sources in memory, no targets, nothing left to be written.
void prepare(const QString &sources, const QString &target)
{
    QDir(target).removeRecursively();
    bench::warm(sources);
}

/// The card and one set of copies have to fit, on the one disk that both are measured on.
void checkRoom(const Settings &settings, const QString &folder, const QString &share)
{
    const QStorageInfo disk(folder);
    if (QStorageInfo(share) != disk)
        throw bench::Failure("the demo service's share lies on another disk"_s);
    const qint64 needed = megabyte * settings.files * settings.megabytes * 21 / 10;
    if (disk.bytesAvailable() < needed)
        throw bench::Failure("%1 MB are needed in %2"_s.arg(needed / megabyte).arg(folder));
}

void compare(const Settings &settings, const QString &folder)
{
    const QString share = DemoClient().share();
    checkRoom(settings, folder, share);
    Ledger ledger(folder + "/ledger"_s);
    ledger.makeCurrent();
    const QString yardstick =
        settings.sizeOnly != 0 ? "cp and sync"_s : "cp, sync and direct read"_s;
    bench::line("Importing %1 files of %2 MB beside xargs -P4 %3"_s.arg(settings.files)
                    .arg(settings.megabytes)
                    .arg(yardstick));
    const QString sources = folder + "/card"_s;
    bench::makePhotos(sources, settings.files, int(settings.megabytes * megabyte));
    const QStringList paths = bench::photoPaths(sources, settings.files);
    const QString ours = share + "/bench-import"_s;
    const QString plain = folder + "/plain"_s;
    QVector<double> imports;
    QVector<double> copies;
    QVector<double> ratios;
    const auto import = [&] {
        prepare(sources, ours);
        imports.append(importSeconds(paths, ours));
        checkCopies(ours + "/原片"_s, settings);
        QDir(ours).removeRecursively();
    };
    const auto copyPlainly = [&] {
        prepare(sources, plain);
        copies.append(plainSeconds(settings, paths, plain));
        checkCopies(plain, settings);
        QDir(plain).removeRecursively();
    };
    // The first copies find disk space that was never written, which costs more and counts for
    // neither.
    import();
    copyPlainly();
    imports.clear();
    copies.clear();
    for (int pair = 0; pair < settings.pairs; ++pair) {
        // Neither always comes first: the disk remembers what it was made to do before.
        if (pair % 2 == 0) {
            import();
            copyPlainly();
        } else {
            copyPlainly();
            import();
        }
        ratios.append(imports.last() / copies.last());
        bench::line("  pair %1: import %2 s, %3 %4 s, ratio %5"_s.arg(pair + 1).arg(
            bench::number(imports.last(), 2), yardstick, bench::number(copies.last(), 2),
            bench::number(ratios.last(), 3)));
    }
    const double megabytes = double(settings.files) * settings.megabytes;
    bench::line("medians: import %1 s (%2 MB/s), %3 %4 s (%5 MB/s)"_s.arg(
        bench::number(bench::median(imports), 2),
        bench::number(megabytes / bench::median(imports), 0), yardstick,
        bench::number(bench::median(copies), 2),
        bench::number(megabytes / bench::median(copies), 0)));
    bench::judge("median ratio of import to %1"_s.arg(yardstick), bench::median(ratios), ratioBound,
                 QString(), 3);
    if (settings.sizeOnly == 0) {
        const double copySeconds = bench::median(imports) * filesAtOnce / settings.files;
        bench::judge("hashing, of a copy's time"_s, 100 * hashSeconds(settings) / copySeconds,
                     hashBound, "%"_s, 1);
    }
    QDir(sources).removeRecursively();
}

/// Imports of many small files, by turns with and without the ledger.
void compareLedger(const Settings &settings, const QString &folder)
{
    if (settings.small == 0)
        return;
    bench::line("Importing %1 files of 20 kB with and without the ledger"_s.arg(settings.small));
    const QString sources = folder + "/small"_s;
    bench::makePhotos(sources, settings.small, 20000);
    const QStringList paths = bench::photoPaths(sources, settings.small);
    const QString target = DemoClient().share() + "/bench-import"_s;
    const auto secondsWith = [&](const QString &ledgerFolder) {
        Ledger ledger(ledgerFolder);
        ledger.makeCurrent();
        ledger.waitUntilWritten(); // until it is open
        prepare(sources, target);
        const double seconds = importSeconds(paths, target);
        QDir(target).removeRecursively();
        return seconds;
    };
    secondsWith({});
    QVector<double> ratios;
    for (int pair = 0; pair < settings.smallPairs; ++pair) {
        double with = pair % 2 == 0 ? secondsWith(folder + "/ledger"_s) : 0;
        const double without = secondsWith({});
        if (pair % 2 != 0)
            with = secondsWith(folder + "/ledger"_s);
        ratios.append(with / without);
        bench::line("  pair %1: with %2 s, without %3 s, ratio %4"_s.arg(pair + 1).arg(
            bench::number(with, 2), bench::number(without, 2), bench::number(ratios.last(), 3)));
    }
    bench::judge("median ratio of import with ledger to without"_s, bench::median(ratios),
                 ledgerBound, QString(), 3);
    QDir(sources).removeRecursively();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Settings settings;
    settings.folder = bench::readOptions(
        application,
        "Times an import beside a plain parallel copy of the same files and a sync, in "
        "turns. The folder has to lie on the disk of the demo service's share."_s,
        {{"files", "Number of files.", &settings.files},
         {"megabytes", "Size of each file, below 2048.", &settings.megabytes},
         {"pairs", "Times each of the two is run.", &settings.pairs},
         {"size-only", "1: copies are looked at for their size alone.", &settings.sizeOnly, 0},
         {"small", "Number of small files, imported with and without the ledger.", &settings.small,
          0},
         {"small-pairs", "Times each of those is run.", &settings.smallPairs}});
    // Read once, at the first copy.
    qputenv("TESSAVO_IMPORT_VERIFY", settings.sizeOnly != 0 ? "size" : "read-back");
    bench::logIn();
    return bench::runIn(settings.folder, [&settings](const QString &folder) {
        compare(settings, folder);
        compareLedger(settings, folder);
    });
}
