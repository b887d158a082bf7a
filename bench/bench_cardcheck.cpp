#include "app/context/accountcontext.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "cardcheck/run/cardcheckrun.h"
#include "tasks/workerpool.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>

#include <algorithm>
#include <mutex>

namespace {

constexpr double shareBound = 0.9;
constexpr qint64 megabyte = 1 << 20;
constexpr int readersOfOneVolume = 2;

struct Settings
{
    int files = 60;
    int megabytes = 8; // each
    int pairs = 3;
    int cardRate = 90; // MB/s
    int shareRate = 110;
    QString folder;
};

/// A device that gives so many bytes in a second, whoever reads. This machine has one disk; a card
/// and a share are two.
class Device
{
public:
    explicit Device(double bytesPerSecond) : bytesPerSecond_(bytesPerSecond) { clock_.start(); }

    /// Returns when the device has given \a bytes.
    void give(qint64 bytes)
    {
        qint64 until = 0;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            freeAtMs_ = std::max(freeAtMs_, double(clock_.elapsed())) +
                        double(bytes) / bytesPerSecond_ * 1000;
            until = qint64(freeAtMs_);
        }
        const qint64 now = clock_.elapsed();
        if (until > now)
            QThread::msleep(static_cast<unsigned long>(until - now));
    }

private:
    const double bytesPerSecond_;
    std::mutex mutex_;
    QElapsedTimer clock_;
    double freeAtMs_ = 0;
};

/// Reads and hashes as the program does, from the memory that holds the files, at the pace of the
/// device that the file would lie on.
filereadings::Reader pacedReader(const QString &card, Device *cardDevice, Device *shareDevice)
{
    return [=](const QString &path, const platform::TransferControl &control) {
        Device *device = path.startsWith(card) ? cardDevice : shareDevice;
        platform::TransferControl paced = control;
        qint64 before = 0;
        paced.progress = [&](qint64 bytes) {
            device->give(bytes - before);
            before = bytes;
            if (control.progress)
                control.progress(bytes);
        };
        ContentReading reading = readContent(path, paced, platform::FileReader::Way::Cached);
        reading.proof = Proof::Medium;
        return reading;
    };
}

double aloneSeconds(const QStringList &paths, const filereadings::Reader &read)
{
    WorkerPool pool("alone"_s, readersOfOneVolume);
    QElapsedTimer clock;
    clock.start();
    for (const QString &path : paths)
        pool.start([&read, path] { read(path, {}); });
    pool.waitForDone();
    return double(clock.nsecsElapsed()) / 1e9;
}

double checkSeconds(const QString &card, const QString &target, const filereadings::Reader &read)
{
    CardCheckRun run(read);
    QEventLoop loop;
    QObject::connect(&run, &CardCheckRun::finished, &loop, &QEventLoop::quit);
    const ledger::OrderKey order{
        {AccountContext::shopId, "50001"_s, "800001"_s}, "TS10001-1"_s, {}};
    QElapsedTimer clock;
    clock.start();
    run.start({card,
               {AccountContext::shopId, AccountContext::superId, AccountContext::eid},
               {{order, wireForm(target)}}});
    loop.exec();
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    const verdict::Tally tally = verdict::tallyOf(run.findings().files);
    if (tally.of(evidence::State::VerifiedOnStorage) != run.findings().files.size())
        throw bench::Failure(verdict::of(run.findings()).headline);
    return seconds;
}

void compare(const Settings &settings, const QString &folder)
{
    bench::line("Checking %1 files of %2 MB, card %3 MB/s and storage %4 MB/s"_s.arg(settings.files)
                    .arg(settings.megabytes)
                    .arg(settings.cardRate)
                    .arg(settings.shareRate));
    const QString card = folder + "/card/DCIM"_s;
    const QString target = folder + "/order/精修片"_s; // of which the service lists nothing
    bench::makePhotos(card, settings.files, int(settings.megabytes * megabyte));
    QDir().mkpath(target);
    const QStringList sources = bench::photoPaths(card, settings.files);
    bench::copyPlainly(sources, target);
    const QStringList targets = bench::photoPaths(target, settings.files);
    bench::warm(folder);
    Device cardDevice(double(settings.cardRate) * megabyte);
    Device shareDevice(double(settings.shareRate) * megabyte);
    const filereadings::Reader read = pacedReader(card, &cardDevice, &shareDevice);
    QVector<double> shares;
    for (int pair = 0; pair < settings.pairs; ++pair) {
        const double slower = std::max(aloneSeconds(sources, read), aloneSeconds(targets, read));
        const double check = checkSeconds(folder + "/card"_s, folder + "/order"_s, read);
        shares.append(slower / check);
        bench::line("  pair %1: slower side alone %2 s, check %3 s, share %4"_s.arg(pair + 1).arg(
            bench::number(slower, 2), bench::number(check, 2), bench::number(shares.last(), 3)));
    }
    const double median = bench::median(shares);
    bench::line("median share of the slower side's speed: %1 (at least %2) %3"_s.arg(
        bench::number(median, 3), bench::number(shareBound, 1),
        median >= shareBound ? "within"_s : "MISSED"_s));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Settings settings;
    settings.folder = bench::readOptions(
        application,
        "Times a card check beside the reading of its slower side alone. Both devices are "
        "stood in for: reading is held to a pace."_s,
        {{"files", "Number of files.", &settings.files},
         {"megabytes", "Size of each file, below 2048.", &settings.megabytes},
         {"pairs", "Times each of the two is run.", &settings.pairs},
         {"card-rate", "MB/s of the card.", &settings.cardRate},
         {"share-rate", "MB/s of the storage.", &settings.shareRate}});
    bench::logIn();
    return bench::runIn(settings.folder,
                        [&settings](const QString &folder) { compare(settings, folder); });
}
