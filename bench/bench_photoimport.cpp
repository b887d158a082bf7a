#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "photoimport/rules/photorules.h"
#include "photoimport/run/decodedsources.h"
#include "photoimport/run/sizevariants.h"
#include "photoimport/run/tfimportthreadmanager.h"
#include "tasks/background.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
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
        const QString path = "%1/IMG_%2.jpg"_s.arg(folder).arg(index);
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
    QFile status("/proc/self/status"_s);
    check(status.open(QIODevice::ReadOnly), status.errorString());
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    throw bench::Failure("no peak of memory"_s);
}

void resetPeak()
{
    malloc_trim(0);
    QFile references("/proc/self/clear_refs"_s);
    check(references.open(QIODevice::WriteOnly) && references.write("5") == 1,
          "the peak of memory cannot be reset"_s);
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
        check(imageoperations::compressImage(source, "%1/%2.jpg"_s.arg(folder).arg(side), side,
                                             &shared),
              "no variant"_s);
    }
    return processorSeconds() - begun;
}

void measureProcessor(const Settings &settings, const QStringList &photos, const QString &folder)
{
    bench::line("Three variants of 24 MP beside one decoding, three scalings and "
                "three encodings"_s);
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
        bench::line("  round %1: %2 s, bare %3 s, ratio %4"_s.arg(round + 1).arg(
            bench::number(ours, 2), bench::number(bare, 2), bench::number(ratios.last(), 3)));
    }
    bench::judge("median ratio of processor time"_s, bench::median(ratios), processorBound,
                 QString(), 3);
}

OrderInfo orderOf(const QStringList &photos, const QString &folder)
{
    OrderInfo order;
    order.id = order.orderPayForKey = "bench"_s;
    order.importPath = QString(folder).replace(QLatin1Char('/'), QLatin1Char('\\'));
    order.photos = photorules::jobsFor(order, photos, PhotoMode::Photos);
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
          "%1 photos failed"_s.arg(failed));
    return double(clock.nsecsElapsed()) / 1e9;
}

/// The same by the off-the-shelf thumbnailer, photo after photo.
double thumbnailerSeconds(const QStringList &photos, const QString &folder)
{
    QString script = "set -e; cd '%1'; mkdir all 90 190 1920; for f; do n=${f##*/}; "
                     "cp \"$f\" all/; "_s.arg(folder);
    for (const int side : variantSides) {
        script += "vipsthumbnail \"$f\" --size %1 -o \"$PWD/%1/$n[Q=%2]\"; "_s.arg(side).arg(
            imageoperations::variantQuality);
    }
    QProcess shell;
    shell.setProcessChannelMode(QProcess::ForwardedChannels);
    QElapsedTimer clock;
    clock.start();
    shell.start("sh"_s, QStringList{"-c"_s, script + "done"_s, "sh"_s} + photos);
    check(shell.waitForFinished(patienceMs) && shell.exitCode() == 0, "the thumbnailer failed"_s);
    bench::syncDisk(folder);
    return double(clock.nsecsElapsed()) / 1e9;
}

void measureOrder(BenchApplication *application, const Settings &settings,
                  const QStringList &photos, const QString &folder)
{
    bench::line("An order of %1 photos beside vipsthumbnail three times per photo, a "
                "copy and a sync; %2 workers"_s.arg(photos.size())
                    .arg(tfimportthreadmanager::defaultWorkers));
    check(!QStandardPaths::findExecutable("vipsthumbnail"_s).isEmpty(),
          "vipsthumbnail is not installed (Debian package libvips-tools)"_s);
    QVector<double> ratios;
    for (int round = 0; round < settings.rounds; ++round) {
        double ours = 0;
        double theirs = 0;
        // Neither always comes first.
        for (const bool our : {round % 2 == 0, round % 2 != 0}) {
            const QString target = folder + "/order"_s;
            QDir().mkpath(target);
            bench::syncDisk(target);
            if (our)
                ours = importSeconds(application, photos, target);
            else
                theirs = thumbnailerSeconds(photos, target);
            for (const int side : variantSides) {
                check(QDir("%1/%2"_s.arg(target).arg(side)).entryList(QDir::Files).size() ==
                          photos.size(),
                      "not all variants were made"_s);
            }
            QDir(target).removeRecursively();
        }
        ratios << ours / theirs;
        bench::line("  round %1: %2 s, thumbnailer %3 s, ratio %4"_s.arg(round + 1).arg(
            bench::number(ours, 2), bench::number(theirs, 2), bench::number(ratios.last(), 3)));
    }
    bench::judge("median ratio of wall time"_s, bench::median(ratios), wallBound, QString(), 3);
}

void measureMemory(BenchApplication *application, const Settings &settings, const QString &folder)
{
    const auto peakOf = [&](const QStringList &photos) {
        const QString target = folder + "/crowd"_s;
        resetPeak();
        importSeconds(application, photos, target);
        QDir(target).removeRecursively();
        return peakMb();
    };
    const QString card = folder + "/crowd-card"_s;
    bench::judge(
        "peak of memory, %1 photos of 24 MP, half of them on their side"_s.arg(settings.crowd),
        peakOf(makePhotographs(card, settings.crowd, true)), memoryBoundMb, "MB"_s, 0);
    QDir(card).removeRecursively();

    const QString large = folder + "/large.jpg"_s;
    {
        const QImage picture = photograph({1200, 900}, 7).scaled(12000, 9000);
        QFile file(large);
        check(file.open(QIODevice::WriteOnly) && file.write(jpegOf(picture, 6, 85)) > 0, large);
    }
    bench::judge("peak of memory, one photo of 108 MP on its side"_s, peakOf({large}), largeBoundMb,
                 "MB"_s, 0);
}

void measureDealing(BenchApplication *application, const Settings &settings, const QString &folder)
{
    bench::line(
        "An order of %1 photos, %2 jobs, queued, watched for %3 s, stopped"_s.arg(settings.queued)
            .arg(settings.queued * 4)
            .arg(settings.seconds));
    const QStringList photos = bench::makePictures(folder + "/small-card"_s, settings.queued);
    QVector<double> costs;
    QVector<double> stops;
    int reports = 0;
    {
        tfimportthreadmanager pool;
        QObject::connect(&pool, &tfimportthreadmanager::photoImported, &pool,
                         [&reports] { ++reports; });
        application->startWatching();
        QMetaObject::invokeMethod(
            &pool, [&] { pool.startImportOrder(orderOf(photos, folder + "/dealt"_s)); },
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
        bench::line("  %1 jobs reported, %2 s of processor time on the interface "
                    "thread; longest events:"_s.arg(reports)
                        .arg(bench::number(application->cpuMs() / 1e3, 2)));
        BenchApplication::print(events);
    }
    check(reports > 0, "nothing was imported"_s);
    bench::judge("longest event, processor time"_s, bench::largest(costs), eventBoundMs, "ms"_s, 1);
    bench::judge("stopAllImport, wall time"_s, bench::largest(stops), stopBoundMs, "ms"_s, 2);
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    Settings settings;
    settings.folder = bench::readOptions(
        application,
        "What importing photos costs beside the bare work and an off-the-shelf thumbnailer."_s,
        {{"photos", "Photos of 24 MP imported beside the thumbnailer.", &settings.photos},
         {"crowd", "Photos of 24 MP imported for the peak of memory.", &settings.crowd},
         {"queued", "Photos in the order that is queued and stopped.", &settings.queued},
         {"seconds", "How long that order is watched.", &settings.seconds},
         {"rounds", "Times each figure is taken.", &settings.rounds}});
    return bench::runIn(settings.folder, [&](const QString &folder) {
        const QStringList photos = makePhotographs(folder + "/card"_s, settings.photos, false);
        measureProcessor(settings, photos, folder);
        measureOrder(&application, settings, photos, folder);
        measureMemory(&application, settings, folder);
        measureDealing(&application, settings, folder);
        diskPool().waitForDone();
    });
}
