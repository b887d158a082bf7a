#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "net/background.h"
#include "photoimport/decodedsources.h"
#include "photoimport/imageoperations.h"
#include "photoimport/photorules.h"
#include "photoimport/tfimportthreadmanager.h"
#include "tests/support/pictures.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QMetaEnum>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>

#include <ctime>
#include <malloc.h>

namespace {

constexpr double processorBound = 1.15;
constexpr double wallBound = 0.6;
constexpr double memoryBoundMb = 1200;
constexpr double largeBoundMb = 500; // one source of 108 MP: read reduced, written at 50 MP
constexpr double eventBoundMs = 50;
constexpr double stopBoundMs = 50;
constexpr int patienceMs = 20 * 60 * 1000;
constexpr int distinctPhotos = 4; // the others are copies of them under names of their own
const QList<int> variantSides = {90, 190, 1920};

struct Settings
{
    int photos = 12;
    int crowd = 50; // photos for the peak of memory
    int queued = 20000;
    int seconds = 30;
    int rounds = 5;
    QString folder;
};

bool readOptions(const QCoreApplication &application, Settings *settings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "What importing photos costs beside the bare work and an off-the-shelf thumbnailer."));
    parser.addHelpOption();
    const struct
    {
        const char *name;
        const char *meaning;
        int *number;
    } numbers[] = {
        {"photos", "Photos of 24 MP imported beside the thumbnailer.", &settings->photos},
        {"crowd", "Photos of 24 MP imported for the peak of memory.", &settings->crowd},
        {"queued", "Photos in the order that is queued and stopped.", &settings->queued},
        {"seconds", "How long that order is watched.", &settings->seconds},
        {"rounds", "Times each figure is taken.", &settings->rounds},
    };
    for (const auto &number : numbers) {
        parser.addOption({QLatin1String(number.name), QLatin1String(number.meaning),
                          QStringLiteral("N"), QString::number(*number.number)});
    }
    parser.addOption({QStringLiteral("folder"), QStringLiteral("Where the files lie."),
                      QStringLiteral("FOLDER"),
                      QCoreApplication::applicationDirPath() + QStringLiteral("/data")});
    parser.process(application);
    settings->folder = parser.value(QStringLiteral("folder"));
    bool fine = true;
    for (const auto &number : numbers) {
        bool isNumber = false;
        *number.number = parser.value(QLatin1String(number.name)).toInt(&isNumber);
        fine = fine && isNumber && *number.number > 0;
    }
    return fine;
}

void check(bool fine, const QString &what)
{
    if (!fine)
        throw bench::Failure(what);
}

/// Coarse shapes, finer ones and grain on top of each other, as a photograph has them.
QImage photograph(const QSize &size, quint32 seed)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    QPainter painter(&picture);
    QRandomGenerator random(seed);
    for (const int cell : {600, 120, 24, 5, 1}) {
        QImage noise(size / cell + QSize(1, 1), QImage::Format_RGB32);
        for (int y = 0; y < noise.height(); ++y) {
            auto *line = reinterpret_cast<quint32 *>(noise.scanLine(y));
            random.fillRange(line, noise.width());
            for (int x = 0; x < noise.width(); ++x)
                line[x] |= 0xff000000;
        }
        painter.setOpacity(cell == 600 ? 1.0 : cell == 1 ? 0.06 : 0.3);
        painter.drawImage(picture.rect(),
                          noise.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    return picture;
}

QStringList makePhotographs(const QString &folder, int count, bool onTheirSide)
{
    constexpr int quality = 92;
    QDir().mkpath(folder);
    QStringList paths;
    for (int index = 0; index < count; ++index) {
        const QString path = QStringLiteral("%1/IMG_%2.jpg").arg(folder).arg(index);
        if (index < distinctPhotos) {
            const int orientation = onTheirSide && index % 2 == 0 ? 6 : 1;
            QFile file(path);
            const QByteArray bytes =
                jpegOf(photograph({6000, 4000}, quint32(index)), orientation, quality);
            check(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), path);
        } else {
            check(QFile::copy(paths.at(index % distinctPhotos), path), path);
        }
        paths << path;
    }
    return paths;
}

double processorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/// Most memory that was ever resident since resetPeak(), in MB.
double peakMb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    check(status.open(QIODevice::ReadOnly), status.errorString());
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    throw bench::Failure(QStringLiteral("no peak of memory"));
}

void resetPeak()
{
    malloc_trim(0);
    QFile references(QStringLiteral("/proc/self/clear_refs"));
    check(references.open(QIODevice::WriteOnly) && references.write("5") == 1,
          QStringLiteral("the peak of memory cannot be reset"));
}

/// What nobody can do without: one decoding, three scalings, three encodings.
double bareSeconds(const QString &source)
{
    const double begun = processorSeconds();
    QImageReader reader(source);
    const QImage whole = reader.read();
    for (const int side : variantSides) {
        const QImage scaled =
            whole.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        QBuffer buffer;
        QImageWriter writer(&buffer, "jpg");
        writer.setQuality(imageoperations::variantQuality);
        check(writer.write(scaled), writer.errorString());
    }
    return processorSeconds() - begun;
}

double variantSeconds(const QString &source, const QString &folder)
{
    DecodedSources shared;
    const double begun = processorSeconds();
    for (const int side : variantSides) {
        check(imageoperations::compressImage(
                  source, QStringLiteral("%1/%2.jpg").arg(folder).arg(side), side, &shared),
              QStringLiteral("no variant"));
    }
    return processorSeconds() - begun;
}

void measureProcessor(const Settings &settings, const QStringList &photos, const QString &folder)
{
    bench::line(QStringLiteral("Three variants of 24 MP beside one decoding, three scalings and "
                               "three encodings"));
    QVector<double> ratios;
    variantSeconds(photos.first(), folder);
    for (int round = 0; round < settings.rounds; ++round) {
        double ours = 0;
        double bare = 0;
        for (int photo = 0; photo < std::min<int>(photos.size(), distinctPhotos); ++photo) {
            bare += bareSeconds(photos.at(photo));
            ours += variantSeconds(photos.at(photo), folder);
        }
        ratios << ours / bare;
        bench::line(QStringLiteral("  round %1: %2 s, bare %3 s, ratio %4")
                        .arg(round + 1)
                        .arg(bench::number(ours, 2), bench::number(bare, 2),
                             bench::number(ratios.last(), 3)));
    }
    bench::judge(QStringLiteral("median ratio of processor time"), bench::median(ratios),
                 processorBound, QString(), 3);
}

OrderInfo orderOf(const QStringList &photos, const QString &folder)
{
    OrderInfo order;
    order.id = order.orderPayForKey = QStringLiteral("bench");
    order.importPath = QString(folder).replace(QLatin1Char('/'), QLatin1Char('\\'));
    order.photos = photorules::jobsFor(order, photos, photorules::Photos);
    return order;
}

/// Seconds from the start of the order until its last photo is reported.
double importSeconds(BenchApplication *application, const QStringList &photos,
                     const QString &folder)
{
    tfimportthreadmanager pool;
    bool complete = false;
    int failed = 0;
    QObject::connect(&pool, &tfimportthreadmanager::photoImported, &pool,
                     [&failed](const OrderInfo &, const QString &, int, bool success) {
                         failed += success ? 0 : 1;
                     });
    QObject::connect(&pool, &tfimportthreadmanager::orderImportCompleted, &pool,
                     [&complete] { complete = true; });
    QElapsedTimer clock;
    clock.start();
    pool.startImportOrder(orderOf(photos, folder));
    check(application->runUntil([&complete] { return complete; }, patienceMs) && failed == 0,
          QStringLiteral("%1 photos failed").arg(failed));
    return double(clock.nsecsElapsed()) / 1e9;
}

/// The same by the off-the-shelf thumbnailer, photo after photo.
double thumbnailerSeconds(const QStringList &photos, const QString &folder)
{
    QString script = QStringLiteral("set -e; cd '%1'; mkdir all 90 190 1920; for f; do n=${f##*/}; "
                                    "cp \"$f\" all/; ")
                         .arg(folder);
    for (const int side : variantSides) {
        script += QStringLiteral("vipsthumbnail \"$f\" --size %1 -o \"$PWD/%1/$n[Q=%2]\"; ")
                      .arg(side)
                      .arg(imageoperations::variantQuality);
    }
    QProcess shell;
    shell.setProcessChannelMode(QProcess::ForwardedChannels);
    QElapsedTimer clock;
    clock.start();
    shell.start(
        QStringLiteral("sh"),
        QStringList{QStringLiteral("-c"), script + QStringLiteral("done"), QStringLiteral("sh")} +
            photos);
    check(shell.waitForFinished(patienceMs) && shell.exitCode() == 0,
          QStringLiteral("the thumbnailer failed"));
    bench::syncDisk(folder);
    return double(clock.nsecsElapsed()) / 1e9;
}

void measureOrder(BenchApplication *application, const Settings &settings,
                  const QStringList &photos, const QString &folder)
{
    bench::line(
        QStringLiteral("An order of %1 photos beside vipsthumbnail three times per photo, a "
                       "copy and a sync; %2 workers")
            .arg(photos.size())
            .arg(tfimportthreadmanager::defaultWorkers));
    check(!QStandardPaths::findExecutable(QStringLiteral("vipsthumbnail")).isEmpty(),
          QStringLiteral("vipsthumbnail is not installed (Debian package libvips-tools)"));
    QVector<double> ratios;
    for (int round = 0; round < settings.rounds; ++round) {
        double ours = 0;
        double theirs = 0;
        // Neither always comes first.
        for (const bool our : {round % 2 == 0, round % 2 != 0}) {
            const QString target = folder + QStringLiteral("/order");
            QDir().mkpath(target);
            bench::syncDisk(target);
            if (our)
                ours = importSeconds(application, photos, target);
            else
                theirs = thumbnailerSeconds(photos, target);
            for (const int side : variantSides) {
                check(QDir(QStringLiteral("%1/%2").arg(target).arg(side))
                              .entryList(QDir::Files)
                              .size() == photos.size(),
                      QStringLiteral("not all variants were made"));
            }
            QDir(target).removeRecursively();
        }
        ratios << ours / theirs;
        bench::line(QStringLiteral("  round %1: %2 s, thumbnailer %3 s, ratio %4")
                        .arg(round + 1)
                        .arg(bench::number(ours, 2), bench::number(theirs, 2),
                             bench::number(ratios.last(), 3)));
    }
    bench::judge(QStringLiteral("median ratio of wall time"), bench::median(ratios), wallBound,
                 QString(), 3);
}

void measureMemory(BenchApplication *application, const Settings &settings, const QString &folder)
{
    const auto peakOf = [&](const QStringList &photos) {
        const QString target = folder + QStringLiteral("/crowd");
        resetPeak();
        importSeconds(application, photos, target);
        QDir(target).removeRecursively();
        return peakMb();
    };
    const QString card = folder + QStringLiteral("/crowd-card");
    bench::judge(QStringLiteral("peak of memory, %1 photos of 24 MP, half of them on their side")
                     .arg(settings.crowd),
                 peakOf(makePhotographs(card, settings.crowd, true)), memoryBoundMb,
                 QStringLiteral("MB"), 0);
    QDir(card).removeRecursively();

    const QString large = folder + QStringLiteral("/large.jpg");
    {
        const QImage picture = photograph({1200, 900}, 7).scaled(12000, 9000);
        QFile file(large);
        check(file.open(QIODevice::WriteOnly) && file.write(jpegOf(picture, 6, 85)) > 0, large);
    }
    bench::judge(QStringLiteral("peak of memory, one photo of 108 MP on its side"), peakOf({large}),
                 largeBoundMb, QStringLiteral("MB"), 0);
}

void printEvents(const QVector<BenchApplication::Cost> &costs)
{
    const QMetaEnum types = QMetaEnum::fromType<QEvent::Type>();
    for (const BenchApplication::Cost &cost : costs) {
        bench::line(QStringLiteral("    %1 ms processor, %2 ms wall: %3 to %4")
                        .arg(bench::number(cost.cpuMs, 2), bench::number(cost.wallMs, 2),
                             QString::fromLatin1(types.valueToKey(cost.type)),
                             QString::fromLatin1(cost.receiver)));
    }
}

void measureDealing(BenchApplication *application, const Settings &settings, const QString &folder)
{
    bench::line(QStringLiteral("An order of %1 photos, %2 jobs, queued, watched for %3 s, stopped")
                    .arg(settings.queued)
                    .arg(settings.queued * 4)
                    .arg(settings.seconds));
    const QString card = folder + QStringLiteral("/small-card");
    QDir().mkpath(card);
    const QByteArray bytes = jpegOf(cornerPicture({300, 200}));
    QStringList photos;
    for (int index = 0; index < settings.queued; ++index) {
        QFile file(QStringLiteral("%1/IMG_%2.jpg").arg(card).arg(index));
        check(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
              file.fileName());
        photos << file.fileName();
    }
    QVector<double> costs;
    QVector<double> stops;
    int reports = 0;
    {
        tfimportthreadmanager pool;
        QObject::connect(&pool, &tfimportthreadmanager::photoImported, &pool,
                         [&reports] { ++reports; });
        application->startWatching();
        QMetaObject::invokeMethod(
            &pool,
            [&] { pool.startImportOrder(orderOf(photos, folder + QStringLiteral("/dealt"))); },
            Qt::QueuedConnection);
        application->runUntil([] { return false; }, settings.seconds * 1000);
        QElapsedTimer clock;
        bool stopped = false;
        QMetaObject::invokeMethod(
            &pool,
            [&] {
                clock.start();
                pool.stopAllImport();
                stops << double(clock.nsecsElapsed()) / 1e6;
                stopped = true;
            },
            Qt::QueuedConnection);
        application->runUntil([&] { return stopped && !pool.hasLiveWorkers(); }, patienceMs);
        const auto events = application->stopWatching();
        costs << events.first().cpuMs;
        bench::line(QStringLiteral("  %1 jobs reported, %2 s of processor time on the interface "
                                   "thread; longest events:")
                        .arg(reports)
                        .arg(bench::number(application->cpuMs() / 1e3, 2)));
        printEvents(events);
    }
    check(reports > 0, QStringLiteral("nothing was imported"));
    bench::judge(QStringLiteral("longest event, processor time"), bench::largest(costs),
                 eventBoundMs, QStringLiteral("ms"), 1);
    bench::judge(QStringLiteral("stopAllImport, wall time"), bench::largest(stops), stopBoundMs,
                 QStringLiteral("ms"), 2);
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    Settings settings;
    if (!readOptions(application, &settings)) {
        std::fprintf(stderr, "A number makes no sense; see --help\n");
        return 2;
    }
    return bench::runIn(settings.folder, [&](const QString &folder) {
        const QStringList photos =
            makePhotographs(folder + QStringLiteral("/card"), settings.photos, false);
        measureProcessor(settings, photos, folder);
        measureOrder(&application, settings, photos, folder);
        measureMemory(&application, settings, folder);
        measureDealing(&application, settings, folder);
        diskPool()->waitForDone();
    });
}
