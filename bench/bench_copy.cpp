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
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr double ratioBound = 1.25;
constexpr qint64 megabyte = 1024 * 1024;

struct Settings
{
    int files = 400;
    int megabytes = 8; // each
    int pairs = 5;
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
        qFatal("%s", qUtf8Printable(choice.folderError));
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
    const auto isOver = [&] { return !run.isBusy(); };
    QObject::connect(&run, &ImportRun::fileChanged, &loop,
                     [&imported](const QString &, const ImportFile &file) {
                         if (file.state == ImportFile::Imported)
                             ++imported;
                     });
    QObject::connect(&run, &ImportRun::resubmitNeeded, &loop,
                     [](const QString &, const QString &question) {
                         qFatal("not registered: %s", qUtf8Printable(question));
                     });
    QObject::connect(&run, &ImportRun::mismatchFound, &loop,
                     [](const QString &, const QString &notice) {
                         qFatal("not registered: %s", qUtf8Printable(notice));
                     });
    bool announced = false;
    QObject::connect(&run, &ImportRun::allImported, &loop, [&] {
        announced = true;
        loop.quit();
    });
    QElapsedTimer clock;
    clock.start();
    if (!run.start({order},
                   {QStringLiteral("101"), QStringLiteral("7001"), QStringLiteral("3101")}))
        qFatal("nothing to import");
    loop.exec();
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    if (!announced || !isOver() || imported != sources.size())
        qFatal("%d of %d files imported", imported, int(sources.size()));
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
        qFatal("the plain copy failed");
    bench::syncDisk(target);
    return double(clock.nsecsElapsed()) / 1e9;
}

void checkCopies(const QString &folder, const Settings &settings)
{
    const QFileInfoList copies = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden);
    for (const QFileInfo &copy : copies) {
        if (copy.size() != settings.megabytes * megabyte)
            qFatal("%s has the wrong size", qUtf8Printable(copy.filePath()));
    }
    if (copies.size() != settings.files)
        qFatal("%d files in %s", int(copies.size()), qUtf8Printable(folder));
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
            qFatal("%s", qUtf8Printable(file.errorString()));
        while (file.read(buffer.data(), buffer.size()) > 0) {
        }
    }
    bench::syncDisk(sources);
}

void compare(const Settings &settings, const QString &folder, const QString &share)
{
    const QString sources = folder + QStringLiteral("/card");
    bench::makePhotos(sources, settings.files, int(settings.megabytes * megabyte));
    const QStringList paths = bench::photoPaths(sources, settings.files);
    const QString ours = share + QStringLiteral("/bench-import");
    const QString plain = folder + QStringLiteral("/plain");
    QVector<double> imports;
    QVector<double> copies;
    QVector<double> ratios;
    for (int pair = 0; pair < settings.pairs; ++pair) {
        prepare(sources, ours);
        imports.append(importSeconds(paths, ours));
        checkCopies(ours + QStringLiteral("/原片"), settings);
        QDir(ours).removeRecursively();
        prepare(sources, plain);
        copies.append(plainSeconds(paths, plain));
        checkCopies(plain, settings);
        QDir(plain).removeRecursively();
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
    bench::needDemoService();
    const auto folder = bench::makeFolder(settings.folder);
    const QString share = DemoClient().state().value(QStringLiteral("share")).toString();
    const QStorageInfo disk(folder->path());
    if (QStorageInfo(share) != disk) {
        std::fprintf(stderr, "The demo service's share lies on another disk.\n");
        return 1;
    }
    // The card and one set of copies, and some air.
    const qint64 needed = settings.files * settings.megabytes * megabyte * 21 / 10;
    if (disk.bytesAvailable() < needed) {
        std::fprintf(stderr, "%lld MB are needed in %s.\n", needed / megabyte,
                     qUtf8Printable(folder->path()));
        return 1;
    }
    bench::logTo(folder->filePath(QStringLiteral("program.log")));
    bench::line(QStringLiteral("Importing %1 files of %2 MB beside xargs -P4 cp and a sync")
                    .arg(settings.files)
                    .arg(settings.megabytes));
    compare(settings, folder->path(), share);
    return 0;
}
