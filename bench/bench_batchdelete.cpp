#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "batchdelete/batchdelete.h"
#include "batchdelete/batchdeleterun.h"
#include "batchdelete/filescanthread.h"
#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "net/background.h"
#include "tests/support/democlient.h"
#include "widgets/messagebox.h"

#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTableView>

#include <cstdio>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr double findBound = 1.5;
constexpr double memoryBoundMb = 150;
constexpr double cancelBoundMs = 100;
constexpr double eventBoundMs = 50;
constexpr double deletionBoundMs = 25;
constexpr int patienceMs = 10 * 60 * 1000;
constexpr int foldersPerLevel = 10;

struct Settings
{
    int files = 100000; // in the tree that is scanned
    int deleted = 2000;
    int rounds = 5;
    QString folder;
};

void readOptions(const QCoreApplication &application, Settings *settings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("What scanning, listing and deleting orders of many files takes."));
    parser.addHelpOption();
    const auto number = [&parser](const char *name, const char *meaning, int otherwise) {
        parser.addOption({QLatin1String(name), QLatin1String(meaning), QStringLiteral("N"),
                          QString::number(otherwise)});
    };
    number("files", "Files in the tree that is scanned.", settings->files);
    number("deleted", "Files that are deleted.", settings->deleted);
    number("rounds", "Times each figure is taken.", settings->rounds);
    parser.addOption({QStringLiteral("folder"), QStringLiteral("Where the files lie."),
                      QStringLiteral("FOLDER"),
                      QCoreApplication::applicationDirPath() + QStringLiteral("/data")});
    parser.process(application);
    settings->files = parser.value(QStringLiteral("files")).toInt();
    settings->deleted = parser.value(QStringLiteral("deleted")).toInt();
    settings->rounds = qMax(1, parser.value(QStringLiteral("rounds")).toInt());
    settings->folder = parser.value(QStringLiteral("folder"));
}

double residentMb()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        throw bench::Failure(file.errorString());
    const qint64 pages = file.readAll().split(' ').value(1).toLongLong();
    return double(pages * sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

/// \a count empty files in folders of two levels.
void makeTree(const QString &root, int count)
{
    for (int index = 0; index < count; ++index) {
        const QString folder = QStringLiteral("%1/%2/%3")
                                   .arg(root)
                                   .arg(index % foldersPerLevel)
                                   .arg(index / foldersPerLevel % foldersPerLevel);
        if (index < foldersPerLevel * foldersPerLevel && !QDir().mkpath(folder))
            throw bench::Failure(QStringLiteral("no folder ") + folder);
        QFile file(QStringLiteral("%1/IMG_%2.jpg").arg(folder).arg(index, 6, 10, QLatin1Char('0')));
        if (!file.open(QIODevice::WriteOnly))
            throw bench::Failure(file.errorString());
    }
}

double secondsOf(const std::function<void()> &work)
{
    QElapsedTimer clock;
    clock.start();
    work();
    return double(clock.nsecsElapsed()) / 1e9;
}

void find(const QString &root)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(QStringLiteral("find"),
                  {root, QStringLiteral("-printf"), QStringLiteral("%s %p\\n")});
    if (!process.waitForFinished(patienceMs) || process.exitCode() != 0)
        throw bench::Failure(QStringLiteral("find did not work"));
}

FileScanResult scan(BenchApplication *application, const QString &root)
{
    FileScanThread thread;
    FileScanResult result;
    bool done = false;
    QObject::connect(&thread, &FileScanThread::finished, &thread, [&](const FileScanResult &found) {
        result = found;
        done = true;
    });
    thread.scan(root);
    if (!application->runUntil([&done] { return done; }, patienceMs))
        throw bench::Failure(QStringLiteral("the scan did not end"));
    return result;
}

/// Milliseconds from asking a scan in mid-tree to end until it has.
double cancelMs(BenchApplication *application, const QString &root, int after)
{
    FileScanThread thread;
    QElapsedTimer clock;
    bool done = false;
    QObject::connect(&thread, &FileScanThread::progress, &thread, [&](int count) {
        if (count < after || clock.isValid())
            return;
        clock.start();
        thread.cancel();
    });
    QObject::connect(&thread, &FileScanThread::finished, &thread, [&done] { done = true; });
    thread.scan(root);
    if (!application->runUntil([&done] { return done; }, patienceMs) || !clock.isValid())
        throw bench::Failure(QStringLiteral("the scan was too fast to be cancelled"));
    return double(clock.nsecsElapsed()) / 1e6;
}

void measureScan(BenchApplication *application, const Settings &settings, const QString &root)
{
    bench::line(QStringLiteral("Scanning %1 files").arg(settings.files));
    QVector<double> ratios;
    QVector<double> growths;
    QVector<double> cancels;
    find(root); // both then find the names in memory
    for (int round = 0; round < settings.rounds; ++round) {
        const double theirs = secondsOf([&root] { find(root); });
        const double before = residentMb();
        FileScanResult result;
        const double ours = secondsOf([&] { result = scan(application, root); });
        if (result.files.size() != settings.files)
            throw bench::Failure(QStringLiteral("%1 files found").arg(result.files.size()));
        growths.append(residentMb() - before);
        ratios.append(ours / theirs);
        cancels.append(cancelMs(application, root, settings.files / 4));
        bench::line(QStringLiteral("  round %1: find %2 ms, ours %3 ms, %4 MB more")
                        .arg(round + 1)
                        .arg(bench::number(theirs * 1e3, 1), bench::number(ours * 1e3, 1),
                             bench::number(growths.last(), 1)));
    }
    bench::judge(QStringLiteral("time beside find, median"), bench::median(ratios), findBound, {},
                 2);
    bench::judge(QStringLiteral("largest growth of resident memory"), bench::largest(growths),
                 memoryBoundMb, QStringLiteral("MB"), 1);
    bench::judge(QStringLiteral("longest time until cancelled"), bench::largest(cancels),
                 cancelBoundMs, QStringLiteral("ms"), 1);
}

void giveFolder(const QString &folder)
{
    DemoClient().changeOrder(QStringLiteral("50001"),
                             {{QStringLiteral("netpath"),
                               QString(folder).replace(QLatin1Char('/'), QLatin1Char('\\'))}});
}

void measureList(BenchApplication *application, const Settings &settings, const QString &root)
{
    bench::line(QStringLiteral("Listing %1 files in the window").arg(settings.files));
    QVector<double> costs;
    giveFolder(root);
    for (int round = 0; round < settings.rounds; ++round) {
        BatchDelete window;
        window.resize(1600, 800);
        window.show();
        auto *orders = window.findChild<QTableView *>(QStringLiteral("orderTable"));
        auto *files = window.findChild<QTableView *>(QStringLiteral("fileTable"));
        if (!application->runUntil([&] { return orders->model()->rowCount() > 0; }, patienceMs))
            throw bench::Failure(QStringLiteral("no orders"));
        application->startWatching();
        QMetaObject::invokeMethod(
            orders, [orders] { orders->selectRow(0); }, Qt::QueuedConnection);
        if (!application->runUntil([&] { return files->model()->rowCount() == settings.files; },
                                   patienceMs))
            throw bench::Failure(QStringLiteral("the files are not listed"));
        QMetaObject::invokeMethod(
            files, [files] { files->scrollToBottom(); }, Qt::QueuedConnection);
        application->runUntil([] { return false; }, 300);
        const auto events = application->stopWatching();
        costs.append(events.first().cpuMs);
        bench::line(QStringLiteral("  round %1: longest event %2 ms of processor time, %3 ms wall")
                        .arg(round + 1)
                        .arg(bench::number(events.first().cpuMs, 1),
                             bench::number(events.first().wallMs, 1)));
        window.close();
        diskPool()->waitForDone();
    }
    bench::judge(QStringLiteral("longest event while listing, the worst round"),
                 bench::largest(costs), eventBoundMs, QStringLiteral("ms"), 1);
}

void measureDeletion(BenchApplication *application, const Settings &settings, const QString &root)
{
    bench::line(QStringLiteral("Deleting and reporting %1 files").arg(settings.deleted));
    QVector<double> perFile;
    QVector<double> costs;
    for (int round = 0; round < settings.rounds; ++round) {
        DemoClient().reset();
        makeTree(root, settings.deleted);
        BatchDeleteOrderInfo order;
        order.id = QStringLiteral("50001");
        order.orderPhotoId = QStringLiteral("800001");
        order.netPath = QString(root).replace(QLatin1Char('/'), QLatin1Char('\\'));
        BatchDeleteRun run;
        DeletionSummary end;
        bool done = false;
        QObject::connect(&run, &BatchDeleteRun::finished, &run,
                         [&](const DeletionSummary &summary) { end = summary; });
        QObject::connect(&run, &BatchDeleteRun::ended, &run, [&done] { done = true; });
        application->startWatching();
        const double seconds = secondsOf([&] {
            run.start({order},
                      {QStringLiteral("101"), QStringLiteral("7001"), QStringLiteral("3101")}, {});
            application->runUntil([&done] { return done; }, patienceMs);
        });
        const auto events = application->stopWatching();
        costs.append(events.first().cpuMs);
        if (end.deleted != settings.deleted)
            throw bench::Failure(QStringLiteral("%1 files deleted").arg(end.deleted));
        perFile.append(seconds * 1e3 / settings.deleted);
        bench::line(QStringLiteral("  round %1: %2 ms a file, longest event %3 ms")
                        .arg(round + 1)
                        .arg(bench::number(perFile.last(), 2), bench::number(costs.last(), 1)));
    }
    bench::judge(QStringLiteral("time a file, median"), bench::median(perFile), deletionBoundMs,
                 QStringLiteral("ms"), 2);
    bench::judge(QStringLiteral("longest event while deleting, the worst round"),
                 bench::largest(costs), eventBoundMs, QStringLiteral("ms"), 1);
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    Settings settings;
    readOptions(application, &settings);
    return bench::runIn(settings.folder, [&](const QString &folder) {
        K::instance()->initApplication(&application);
        QApplication::setQuitOnLastWindowClosed(false);
        MessageBox::setScripted(true);
        AccountContext::uid = QStringLiteral("9001");
        AccountContext::eid = QStringLiteral("3101");
        AccountContext::superId = QStringLiteral("7001");
        AccountContext::shopId = QStringLiteral("101");
        AccountContext::shopList = {{QStringLiteral("101"), QStringLiteral("一店"), {}, {}}};
        const QString tree = folder + QStringLiteral("/tree");
        makeTree(tree, settings.files);
        measureScan(&application, settings, tree);
        measureList(&application, settings, tree);
        measureDeletion(&application, settings, folder + QStringLiteral("/deleted"));
    });
}
