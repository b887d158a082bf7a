#include "app/context/accountcontext.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "fileimport/filechoice.h"
#include "fileimport/importrun.h"
#include "tests/support/democlient.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStorageInfo>

#include <cstdio>

namespace {

constexpr double ratioBound = 1.25;
constexpr qint64 megabyte = 1 << 20;

struct Settings
{
    int files = 400;
    int megabytes = 8; // each
    int pairs = 6;
    QString folder;
};

bool readNumber(const QCommandLineParser &parser, const QString &name, int *number)
{
    bool fine = false;
    *number = parser.value(name).toInt(&fine);
    return fine && *number > 0;
}

bool readOptions(const QCoreApplication &application, Settings *settings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Times an import beside a plain parallel copy of the same files and a sync, in turns."));
    parser.addHelpOption();
    parser.addOptions(
        {{QStringLiteral("files"), QStringLiteral("Number of files."), QStringLiteral("N"),
          QString::number(settings->files)},
         {QStringLiteral("megabytes"), QStringLiteral("Size of each file."), QStringLiteral("N"),
          QString::number(settings->megabytes)},
         {QStringLiteral("pairs"), QStringLiteral("Times each of the two is run."),
          QStringLiteral("N"), QString::number(settings->pairs)},
         {QStringLiteral("folder"),
          QStringLiteral("Where the files lie; on the disk of the demo service's share."),
          QStringLiteral("FOLDER"),
          QCoreApplication::applicationDirPath() + QStringLiteral("/data")}});
    parser.process(application);
    settings->folder = parser.value(QStringLiteral("folder"));
    return readNumber(parser, QStringLiteral("files"), &settings->files) &&
           readNumber(parser, QStringLiteral("megabytes"), &settings->megabytes) &&
           settings->megabytes < 2048 &&
           readNumber(parser, QStringLiteral("pairs"), &settings->pairs);
}

QString wireForm(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

/// The first of the demo service's orders, with \a sources chosen for it.
ImportOrder orderFor(const QStringList &sources, const QString &target)
{
    ImportOrder order;
    order.id = QStringLiteral("50001");
    order.orderPhotoId = QStringLiteral("800001");
    order.orderPayForKey = QStringLiteral("TS10001");
    order.serviceTimes = QStringLiteral("1");
    order.importPath = wireForm(target);
    const ChoiceResult choice =
        prepareChoice({ImportMode::Originals, order.importPath, 0, sources, false});
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
    QString problem = QStringLiteral("the run ended early");
    QObject::connect(&run, &ImportRun::fileChanged, &loop,
                     [&imported](const QString &, const ImportFile &file) {
                         if (file.state == ImportFile::Imported)
                             ++imported;
                     });
    const auto endWith = [&](const QString &text) {
        problem = text;
        loop.quit();
    };
    QObject::connect(&run, &ImportRun::allImported, &loop, [&] { endWith(QString()); });
    QObject::connect(&run, &ImportRun::resubmitNeeded, &loop,
                     [&](const QString &, const QString &question) { endWith(question); });
    QObject::connect(&run, &ImportRun::mismatchFound, &loop,
                     [&](const QString &, const QString &notice) { endWith(notice); });
    QElapsedTimer clock;
    clock.start();
    if (!run.start({order}, {AccountContext::shopId, AccountContext::superId, AccountContext::eid}))
        throw bench::Failure(QStringLiteral("nothing to import"));
    loop.exec();
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    if (!problem.isEmpty() || imported != sources.size()) {
        throw bench::Failure(QStringLiteral("%1 of %2 files imported; %3")
                                 .arg(imported)
                                 .arg(sources.size())
                                 .arg(problem));
    }
    return seconds;
}

/// Seconds that four plain copying processes and a sync of the disk take.
double plainSeconds(const QStringList &sources, const QString &target)
{
    QDir().mkpath(target);
    QByteArray names;
    for (const QString &source : sources)
        names += QFile::encodeName(source) + '\0';
    QProcess copying;
    copying.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer clock;
    clock.start();
    copying.start(QStringLiteral("xargs"),
                  {QStringLiteral("-0"), QStringLiteral("-P4"), QStringLiteral("-n10"),
                   QStringLiteral("cp"), QStringLiteral("-t"), target});
    copying.write(names);
    copying.closeWriteChannel();
    if (!copying.waitForFinished(-1) || copying.exitStatus() != QProcess::NormalExit ||
        copying.exitCode() != 0)
        throw bench::Failure(QStringLiteral("the plain copy failed"));
    bench::syncDisk(target);
    return double(clock.nsecsElapsed()) / 1e9;
}

void checkCopies(const QString &folder, const Settings &settings)
{
    const QFileInfoList copies = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden);
    for (const QFileInfo &copy : copies) {
        if (copy.size() != settings.megabytes * megabyte)
            throw bench::Failure(QStringLiteral("%1 has the wrong size").arg(copy.filePath()));
    }
    if (copies.size() != settings.files)
        throw bench::Failure(QStringLiteral("%1 files in %2").arg(copies.size()).arg(folder));
}

/// Both meet the same state: sources in memory, no targets, nothing left to be written.
void prepare(const QString &sources, const QString &target)
{
    QDir(target).removeRecursively();
    const QFileInfoList files = QDir(sources).entryInfoList(QDir::Files);
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        QByteArray buffer(int(megabyte), Qt::Uninitialized);
        if (!file.open(QIODevice::ReadOnly))
            throw bench::Failure(file.errorString());
        while (file.read(buffer.data(), buffer.size()) > 0) {
        }
    }
    bench::syncDisk(sources);
}

void logIn()
{
    AccountContext::uid = QStringLiteral("9001");
    AccountContext::eid = QStringLiteral("3101");
    AccountContext::superId = QStringLiteral("7001");
    AccountContext::shopId = QStringLiteral("101");
}

/// The card and one set of copies have to fit, on the one disk that both are measured on.
void checkRoom(const Settings &settings, const QString &folder, const QString &share)
{
    const QStorageInfo disk(folder);
    if (QStorageInfo(share) != disk)
        throw bench::Failure(QStringLiteral("the demo service's share lies on another disk"));
    const qint64 needed = megabyte * settings.files * settings.megabytes * 21 / 10;
    if (disk.bytesAvailable() < needed)
        throw bench::Failure(
            QStringLiteral("%1 MB are needed in %2").arg(needed / megabyte).arg(folder));
}

void compare(const Settings &settings, const QString &folder)
{
    const QString share = DemoClient().state().value(QStringLiteral("share")).toString();
    checkRoom(settings, folder, share);
    bench::line(QStringLiteral("Importing %1 files of %2 MB beside xargs -P4 cp and a sync")
                    .arg(settings.files)
                    .arg(settings.megabytes));
    const QString sources = folder + QStringLiteral("/card");
    bench::makePhotos(sources, settings.files, int(settings.megabytes * megabyte));
    const QStringList paths = bench::photoPaths(sources, settings.files);
    const QString ours = share + QStringLiteral("/bench-import");
    const QString plain = folder + QStringLiteral("/plain");
    QVector<double> imports;
    QVector<double> copies;
    QVector<double> ratios;
    const auto import = [&] {
        prepare(sources, ours);
        imports.append(importSeconds(paths, ours));
        checkCopies(ours + QStringLiteral("/原片"), settings);
        QDir(ours).removeRecursively();
    };
    const auto copyPlainly = [&] {
        prepare(sources, plain);
        copies.append(plainSeconds(paths, plain));
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
        bench::line(QStringLiteral("  pair %1: import %2 s, plain copy and sync %3 s, ratio %4")
                        .arg(pair + 1)
                        .arg(bench::number(imports.last(), 2), bench::number(copies.last(), 2),
                             bench::number(ratios.last(), 3)));
    }
    const double megabytes = double(settings.files) * settings.megabytes;
    bench::line(QStringLiteral("medians: import %1 s (%2 MB/s), plain copy and sync %3 s (%4 MB/s)")
                    .arg(bench::number(bench::median(imports), 2),
                         bench::number(megabytes / bench::median(imports), 0),
                         bench::number(bench::median(copies), 2),
                         bench::number(megabytes / bench::median(copies), 0)));
    bench::judge(QStringLiteral("median ratio of import to plain copy and sync"),
                 bench::median(ratios), ratioBound, QString(), 3);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Settings settings;
    if (!readOptions(application, &settings)) {
        std::fprintf(stderr, "--files, --megabytes or --pairs makes no sense; see --help\n");
        return 2;
    }
    logIn();
    return bench::runIn(settings.folder,
                        [&settings](const QString &folder) { compare(settings, folder); });
}
