#include "bench/measure.h"
#include "bench/options.h"
#include "bench/windowbench.h"
#include "distribution/window/fjhome.h"
#include "distribution/window/fjleftpanel.h"
#include "distribution/window/fjrightpanel.h"
#include "tasks/background.h"
#include "tests/support/democlient.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"
#include "widgets/boxes/filedialog.h"

#include <QAbstractButton>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QStorageInfo>
#include <QTableView>

namespace {

constexpr double ratioBound = 1.5;
constexpr double eventBoundMs = 50;
constexpr int patienceMs = 10 * 60 * 1000;
constexpr qint64 megabyte = 1 << 20;
const QString orderId = "50001"_s;

struct Settings
{
    int photos = 1000;
    int megabytes = 3; // each
    int pairs = 3;
    QString folder;
};

/// Puts an order's photos on the share, each with its thumbnail; returns their folder.
QString makeOrder(const Settings &settings)
{
    DemoClient demo;
    demo.reset();
    demo.choosePhotos(orderId, settings.photos);
    const QString folder = demo.share() + "/海棠路旗舰店/选片/TS10001-1/选片"_s;
    const QString photos = folder + "/all"_s;
    bench::makePhotos(photos, settings.photos, int(settings.megabytes * megabyte));
    QDir().mkpath(folder + "/90"_s);
    const QByteArray thumbnail = jpegOf(cornerPicture({90, 60}));
    QStringList names = QDir(photos).entryList(QDir::Files);
    for (const char *archive : {"RD_0001.jpg", "RD_0002.jpg"}) {
        QFile::copy(photos + QLatin1Char('/') + names.first(),
                    photos + QLatin1Char('/') + QString::fromLatin1(archive));
        names.append(QString::fromLatin1(archive));
    }
    for (const QString &name : qAsConst(names)) {
        QFile file(folder + "/90/"_s + name);
        if (!file.open(QIODevice::WriteOnly) || file.write(thumbnail) != thumbnail.size())
            throw bench::Failure(file.errorString());
    }
    return folder;
}

/// The window of 设计分件 and its user, who has searched and ticked the order.
class Desk
{
public:
    explicit Desk(BenchApplication *application) : application_(application)
    {
        window_.setCard("设计分件"_s);
        window_.resize(1600, 900);
        window_.show();
        await("orders"_s, [this] { return rows() > 2; });
        window_.findChild<QLineEdit *>("keywordEdit"_s)->setText("TS10001"_s);
        click("searchButton");
        await("the order"_s, [this] { return rows() == 2; });
        window_.findChild<FJLeftPanel *>()->onCellClicked(0, 0);
        click("option精修"); // off: the bench has one version of each photo
    }
    ~Desk()
    {
        window_.close();
        diskPool().waitForDone();
    }
    Q_DISABLE_COPY_MOVE(Desk)

    /// Seconds from the button to the last box.
    double distributeTo(const QString &directory)
    {
        FileDialog::setNextFolder(directory);
        click("directoryButton");
        MessageBox::takeShown();
        QElapsedTimer clock;
        clock.start();
        QMetaObject::invokeMethod(
            &window_, [this] { window_.findChild<FJRightPanel *>()->onStartProcessClicked(); },
            Qt::QueuedConnection);
        QStringList boxes;
        await("end of the run"_s, [&boxes] {
            const auto shown = MessageBox::takeShown();
            for (const MessageBox::Shown &box : shown)
                boxes.append(box.text);
            return !boxes.isEmpty();
        });
        const double seconds = double(clock.nsecsElapsed()) / 1e9;
        if (boxes != QStringList("1个订单分件完成!"_s))
            throw bench::Failure(boxes.join(QLatin1Char('\n')));
        return seconds;
    }

private:
    int rows() { return window_.findChild<QTableView *>("orderTable"_s)->model()->rowCount(); }
    void click(const char *name)
    {
        window_.findChild<QAbstractButton *>(QString::fromUtf8(name))->click();
    }
    void await(const QString &what, const std::function<bool()> &done)
    {
        if (!application_->runUntil(done, patienceMs))
            throw bench::Failure("waited in vain for "_s + what);
    }

    BenchApplication *application_;
    FJHome window_;
};

/// The files of a distributed order that were copied, by the folder they lie in (relative), each as
/// its path on the share.
QMap<QString, QStringList> copiedFiles(const QString &made, const QString &share)
{
    QMap<QString, QStringList> copied;
    QDirIterator files(made, {"IMG_*"_s, "RD_*"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        const QString folder = QDir(made).relativeFilePath(files.fileInfo().path());
        if (folder == "其他/标记"_s)
            continue; // came over the network
        const QString variant = folder.endsWith("缩略图"_s) ? "/90/"_s : "/all/"_s;
        copied[folder].append(share + variant + files.fileName());
    }
    return copied;
}

/// Seconds that four plain copying processes and a sync take for the same files.
double plainSeconds(const QMap<QString, QStringList> &files, const QString &target)
{
    QElapsedTimer clock;
    clock.start();
    for (auto folder = files.cbegin(); folder != files.cend(); ++folder)
        bench::copyPlainly(folder.value(), target + QLatin1Char('/') + folder.key());
    bench::syncDisk(target);
    return double(clock.nsecsElapsed()) / 1e9;
}

/// Both meet the same state: sources in memory, no targets, nothing left to be written.
void prepare(const QString &share, const QString &target)
{
    QDir(target).removeRecursively();
    QDir().mkpath(target);
    bench::warm(share);
}

void compare(BenchApplication *application, const Settings &settings, const QString &folder)
{
    const qint64 needed = megabyte * settings.photos * settings.megabytes * 21 / 10;
    if (QStorageInfo(folder).bytesAvailable() < needed)
        throw bench::Failure("%1 MB are needed"_s.arg(needed / megabyte));
    bench::line("Distributing an order of %1 photos of %2 MB, sheet included, beside "
                "xargs -P4 cp of the same files and a sync"_s.arg(settings.photos)
                    .arg(settings.megabytes));
    const QString share = makeOrder(settings);
    const QString ours = folder + "/distributed"_s;
    const QString plain = folder + "/plain"_s;
    Desk desk(application);
    QVector<double> ratios;
    QVector<double> costs;
    QMap<QString, QStringList> files;
    // The first pair finds disk space that was never written, which costs more and does not count.
    for (int pair = 0; pair <= settings.pairs; ++pair) {
        prepare(share, ours);
        application->startWatching();
        const double distributed = desk.distributeTo(ours);
        const auto events = application->stopWatching();
        const QStringList made = QDir(ours).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        files = copiedFiles(ours + QLatin1Char('/') + made.value(0), share);
        int count = 0;
        for (const QStringList &each : qAsConst(files))
            count += each.size();
        QDir(ours).removeRecursively();
        prepare(share, plain);
        const double copied = plainSeconds(files, plain);
        QDir(plain).removeRecursively();
        if (pair == 0)
            continue;
        ratios.append(distributed / copied);
        costs.append(events.first().cpuMs);
        bench::line("  pair %1: %2 files distributed in %3 s, plain copy and sync "
                    "%4 s, ratio %5; longest events:"_s.arg(pair)
                        .arg(count)
                        .arg(bench::number(distributed, 2), bench::number(copied, 2),
                             bench::number(ratios.last(), 3)));
        BenchApplication::print(events);
    }
    bench::judge("median ratio of distribution to plain copy and sync"_s, bench::median(ratios),
                 ratioBound, QString(), 3);
    bench::judge("longest event during a distribution, the worst round"_s, bench::largest(costs),
                 eventBoundMs, "ms"_s, 1);
    DemoClient().reset();
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    Settings settings;
    settings.folder = bench::readOptions(
        application,
        "Times the distribution of an order beside a plain parallel copy of the same files and a "
        "sync, in turns, and watches the interface thread meanwhile."_s,
        {{"photos", "Photos of the order.", &settings.photos},
         {"megabytes", "Size of each photo.", &settings.megabytes},
         {"pairs", "Times each of the two is run.", &settings.pairs}});
    return bench::runWindowIn(&application, settings.folder, [&](const QString &folder) {
        compare(&application, settings, folder);
    });
}
