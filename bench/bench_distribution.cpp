#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "distribution/fjhome.h"
#include "distribution/fjleftpanel.h"
#include "distribution/fjrightpanel.h"
#include "net/background.h"
#include "tests/support/democlient.h"
#include "tests/support/pictures.h"
#include "widgets/filedialog.h"
#include "widgets/messagebox.h"

#include <QAbstractButton>
#include <QCommandLineParser>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QMetaEnum>
#include <QProcess>
#include <QStorageInfo>
#include <QTableView>

#include <cstdio>

namespace {

constexpr double ratioBound = 1.5;
constexpr double eventBoundMs = 50;
constexpr int patienceMs = 10 * 60 * 1000;
constexpr qint64 megabyte = 1 << 20;
const QString orderId = QStringLiteral("50001");

struct Settings
{
    int photos = 1000;
    int megabytes = 3; // each
    int pairs = 3;
    QString folder;
};

bool readOptions(const QCoreApplication &application, Settings *settings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Times the distribution of an order beside a plain parallel copy of the same files and a "
        "sync, in turns, and watches the interface thread meanwhile."));
    parser.addHelpOption();
    const QVector<QPair<QString, int *>> numbers{
        {QStringLiteral("photos"), &settings->photos},
        {QStringLiteral("megabytes"), &settings->megabytes},
        {QStringLiteral("pairs"), &settings->pairs}};
    for (const auto &[name, number] : numbers) {
        parser.addOption({name, QStringLiteral("See the first line."), QStringLiteral("N"),
                          QString::number(*number)});
    }
    parser.addOption({QStringLiteral("folder"), QStringLiteral("Where the files lie."),
                      QStringLiteral("FOLDER"),
                      QCoreApplication::applicationDirPath() + QStringLiteral("/data")});
    parser.process(application);
    settings->folder = parser.value(QStringLiteral("folder"));
    bool fine = true;
    for (const auto &[name, number] : numbers) {
        *number = parser.value(name).toInt();
        fine = fine && *number > 0;
    }
    return fine;
}

void logIn()
{
    AccountContext::uid = QStringLiteral("9001");
    AccountContext::eid = QStringLiteral("3101");
    AccountContext::superId = QStringLiteral("7001");
    AccountContext::shopId = QStringLiteral("101");
    AccountContext::shopList = {{QStringLiteral("101"), QStringLiteral("一店"), {}, {}}};
}

/// Puts an order's photos on the share, each with its thumbnail; returns their folder.
QString makeOrder(const Settings &settings)
{
    DemoClient demo;
    demo.reset();
    demo.choosePhotos(orderId, settings.photos);
    const QString folder = demo.state().value(QStringLiteral("share")).toString() +
                           QStringLiteral("/海棠路旗舰店/选片/TS10001-1/选片");
    const QString photos = folder + QStringLiteral("/all");
    bench::makePhotos(photos, settings.photos, int(settings.megabytes * megabyte));
    QDir().mkpath(folder + QStringLiteral("/90"));
    const QByteArray thumbnail = jpegOf(cornerPicture({90, 60}));
    QStringList names = QDir(photos).entryList(QDir::Files);
    for (const char *archive : {"RD_0001.jpg", "RD_0002.jpg"}) {
        QFile::copy(photos + QLatin1Char('/') + names.first(),
                    photos + QLatin1Char('/') + QString::fromLatin1(archive));
        names.append(QString::fromLatin1(archive));
    }
    for (const QString &name : qAsConst(names)) {
        QFile file(folder + QStringLiteral("/90/") + name);
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
        window_.setCard(QStringLiteral("设计分件"));
        window_.resize(1600, 900);
        window_.show();
        await(QStringLiteral("orders"), [this] { return rows() > 2; });
        window_.findChild<QLineEdit *>(QStringLiteral("keywordEdit"))
            ->setText(QStringLiteral("TS10001"));
        click("searchButton");
        await(QStringLiteral("the order"), [this] { return rows() == 2; });
        window_.findChild<FJLeftPanel *>()->onCellClicked(0, 0);
        click("option精修"); // off: the bench has one version of each photo
    }
    ~Desk()
    {
        window_.close();
        diskPool()->waitForDone();
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
        await(QStringLiteral("end of the run"), [&boxes] {
            const auto shown = MessageBox::takeShown();
            for (const MessageBox::Shown &box : shown)
                boxes.append(box.text);
            return !boxes.isEmpty();
        });
        const double seconds = double(clock.nsecsElapsed()) / 1e9;
        if (boxes != QStringList(QStringLiteral("1个订单分件完成!")))
            throw bench::Failure(boxes.join(QLatin1Char('\n')));
        return seconds;
    }

private:
    int rows()
    {
        return window_.findChild<QTableView *>(QStringLiteral("orderTable"))->model()->rowCount();
    }
    void click(const char *name)
    {
        window_.findChild<QAbstractButton *>(QString::fromUtf8(name))->click();
    }
    void await(const QString &what, const std::function<bool()> &done)
    {
        if (!application_->runUntil(done, patienceMs))
            throw bench::Failure(QStringLiteral("waited in vain for ") + what);
    }

    BenchApplication *application_;
    FJHome window_;
};

/// The files of a distributed order that were copied, by the folder they lie in (relative), each as
/// its path on the share.
QMap<QString, QStringList> copiedFiles(const QString &made, const QString &share)
{
    QMap<QString, QStringList> copied;
    QDirIterator files(made, {QStringLiteral("IMG_*"), QStringLiteral("RD_*")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        const QString folder = QDir(made).relativeFilePath(files.fileInfo().path());
        if (folder == QStringLiteral("其他/标记"))
            continue; // came over the network
        const QString variant = folder.endsWith(QStringLiteral("缩略图")) ? QStringLiteral("/90/")
                                                                          : QStringLiteral("/all/");
        copied[folder].append(share + variant + files.fileName());
    }
    return copied;
}

/// Seconds that four plain copying processes and a sync take for the same files.
double plainSeconds(const QMap<QString, QStringList> &files, const QString &target)
{
    QElapsedTimer clock;
    clock.start();
    for (auto folder = files.cbegin(); folder != files.cend(); ++folder) {
        const QString into = target + QLatin1Char('/') + folder.key();
        QDir().mkpath(into);
        QByteArray names;
        for (const QString &source : folder.value())
            names += QFile::encodeName(source) + '\0';
        QProcess copying;
        copying.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        copying.start(QStringLiteral("xargs"),
                      {QStringLiteral("-0"), QStringLiteral("-P4"), QStringLiteral("-n10"),
                       QStringLiteral("cp"), QStringLiteral("-t"), into});
        copying.write(names);
        copying.closeWriteChannel();
        if (!copying.waitForFinished(-1) || copying.exitCode() != 0)
            throw bench::Failure(QStringLiteral("the plain copy failed"));
    }
    bench::syncDisk(target);
    return double(clock.nsecsElapsed()) / 1e9;
}

/// Both meet the same state: sources in memory, no targets, nothing left to be written.
void prepare(const QString &share, const QString &target)
{
    QDir(target).removeRecursively();
    QDir().mkpath(target);
    QDirIterator files(share, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            throw bench::Failure(file.errorString());
        QByteArray buffer(int(megabyte), Qt::Uninitialized);
        while (file.read(buffer.data(), buffer.size()) > 0) {
        }
    }
    bench::syncDisk(share);
}

void compare(BenchApplication *application, const Settings &settings, const QString &folder)
{
    const qint64 needed = megabyte * settings.photos * settings.megabytes * 21 / 10;
    if (QStorageInfo(folder).bytesAvailable() < needed)
        throw bench::Failure(QStringLiteral("%1 MB are needed").arg(needed / megabyte));
    bench::line(
        QStringLiteral("Distributing an order of %1 photos of %2 MB, sheet included, beside "
                       "xargs -P4 cp of the same files and a sync")
            .arg(settings.photos)
            .arg(settings.megabytes));
    const QString share = makeOrder(settings);
    const QString ours = folder + QStringLiteral("/distributed");
    const QString plain = folder + QStringLiteral("/plain");
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
        const char *type = QMetaEnum::fromType<QEvent::Type>().valueToKey(events.first().type);
        bench::line(QStringLiteral("  pair %1: %2 files distributed in %3 s, plain copy and sync "
                                   "%4 s, ratio %5; longest event %6 ms processor, %7 ms wall, %8 "
                                   "to %9")
                        .arg(pair)
                        .arg(count)
                        .arg(bench::number(distributed, 2), bench::number(copied, 2),
                             bench::number(ratios.last(), 3), bench::number(costs.last(), 1),
                             bench::number(events.first().wallMs, 1),
                             QString::fromLatin1(type ? type : "event"),
                             QString::fromLatin1(events.first().receiver)));
    }
    bench::judge(QStringLiteral("median ratio of distribution to plain copy and sync"),
                 bench::median(ratios), ratioBound, QString(), 3);
    bench::judge(QStringLiteral("longest event during a distribution, the worst round"),
                 bench::largest(costs), eventBoundMs, QStringLiteral("ms"), 1);
    DemoClient().reset();
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
        K::instance()->initApplication(&application);
        QApplication::setQuitOnLastWindowClosed(false);
        MessageBox::setScripted(true);
        logIn();
        compare(&application, settings, folder);
    });
}
