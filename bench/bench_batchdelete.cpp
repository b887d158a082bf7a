#include "batchdelete/run/batchdeleterun.h"
#include "batchdelete/run/filescanthread.h"
#include "batchdelete/window/batchdelete.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "bench/windowbench.h"
#include "tasks/background.h"
#include "tests/support/democlient.h"
#include "tests/support/text.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTableView>

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

/// \a count empty files in folders of two levels.
void makeTree(const QString &root, int count)
{
    for (int index = 0; index < count; ++index) {
        const QString folder = "%1/%2/%3"_s.arg(root)
                                   .arg(index % foldersPerLevel)
                                   .arg(index / foldersPerLevel % foldersPerLevel);
        if (index < foldersPerLevel * foldersPerLevel && !QDir().mkpath(folder))
            throw bench::Failure("no folder "_s + folder);
        QFile file("%1/IMG_%2.jpg"_s.arg(folder).arg(index, 6, 10, QLatin1Char('0')));
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
    process.start("find"_s, {root, "-printf"_s, "%s %p\\n"_s});
    if (!process.waitForFinished(patienceMs) || process.exitCode() != 0)
        throw bench::Failure("find did not work"_s);
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
        throw bench::Failure("the scan did not end"_s);
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
        throw bench::Failure("the scan was too fast to be cancelled"_s);
    return double(clock.nsecsElapsed()) / 1e6;
}

void measureScan(BenchApplication *application, const Settings &settings, const QString &root)
{
    bench::line("Scanning %1 files"_s.arg(settings.files));
    QVector<double> ratios;
    QVector<double> growths;
    QVector<double> cancels;
    find(root); // both then find the names in memory
    for (int round = 0; round < settings.rounds; ++round) {
        const double theirs = secondsOf([&root] { find(root); });
        const double before = bench::residentMb();
        FileScanResult result;
        const double ours = secondsOf([&] { result = scan(application, root); });
        if (result.files.size() != settings.files)
            throw bench::Failure("%1 files found"_s.arg(result.files.size()));
        growths.append(bench::residentMb() - before);
        ratios.append(ours / theirs);
        cancels.append(cancelMs(application, root, settings.files / 4));
        bench::line("  round %1: find %2 ms, ours %3 ms, %4 MB more"_s.arg(round + 1).arg(
            bench::number(theirs * 1e3, 1), bench::number(ours * 1e3, 1),
            bench::number(growths.last(), 1)));
    }
    bench::judge("time beside find, median"_s, bench::median(ratios), findBound, {}, 2);
    bench::judge("largest growth of resident memory"_s, bench::largest(growths), memoryBoundMb,
                 "MB"_s, 1);
    bench::judge("longest time until cancelled"_s, bench::largest(cancels), cancelBoundMs, "ms"_s,
                 1);
}

void giveFolder(const QString &folder)
{
    DemoClient().changeOrder(
        "50001"_s, {{"netpath"_s, QString(folder).replace(QLatin1Char('/'), QLatin1Char('\\'))}});
}

void measureList(BenchApplication *application, const Settings &settings, const QString &root)
{
    bench::line("Listing %1 files in the window"_s.arg(settings.files));
    QVector<double> costs;
    giveFolder(root);
    for (int round = 0; round < settings.rounds; ++round) {
        BatchDelete window;
        window.resize(1600, 800);
        window.show();
        auto *orders = window.findChild<QTableView *>("orderTable"_s);
        auto *files = window.findChild<QTableView *>("fileTable"_s);
        if (!application->runUntil([&] { return orders->model()->rowCount() > 0; }, patienceMs))
            throw bench::Failure("no orders"_s);
        application->startWatching();
        QMetaObject::invokeMethod(
            orders, [orders] { orders->selectRow(0); }, Qt::QueuedConnection);
        if (!application->runUntil([&] { return files->model()->rowCount() == settings.files; },
                                   patienceMs))
            throw bench::Failure("the files are not listed"_s);
        QMetaObject::invokeMethod(
            files, [files] { files->scrollToBottom(); }, Qt::QueuedConnection);
        application->runUntil([] { return false; }, 300);
        const auto events = application->stopWatching();
        costs.append(events.first().cpuMs);
        bench::line(
            "  round %1: longest event %2 ms of processor time, %3 ms wall"_s.arg(round + 1).arg(
                bench::number(events.first().cpuMs, 1), bench::number(events.first().wallMs, 1)));
        window.close();
        diskPool().waitForDone();
    }
    bench::judge("longest event while listing, the worst round"_s, bench::largest(costs),
                 eventBoundMs, "ms"_s, 1);
}

void measureDeletion(BenchApplication *application, const Settings &settings, const QString &root)
{
    bench::line("Deleting and reporting %1 files"_s.arg(settings.deleted));
    QVector<double> perFile;
    QVector<double> costs;
    for (int round = 0; round < settings.rounds; ++round) {
        DemoClient().reset();
        makeTree(root, settings.deleted);
        BatchDeleteOrderInfo order;
        order.branch = "101"_s;
        order.id = "50001"_s;
        order.orderPhotoId = "800001"_s;
        order.netPath = QString(root).replace(QLatin1Char('/'), QLatin1Char('\\'));
        BatchDeleteRun run;
        DeletionSummary end;
        bool done = false;
        QObject::connect(&run, &BatchDeleteRun::finished, &run,
                         [&](const DeletionSummary &summary) { end = summary; });
        QObject::connect(&run, &BatchDeleteRun::ended, &run, [&done] { done = true; });
        application->startWatching();
        const double seconds = secondsOf([&] {
            run.start({order}, {"101"_s, "7001"_s, "3101"_s}, {});
            application->runUntil([&done] { return done; }, patienceMs);
        });
        const auto events = application->stopWatching();
        costs.append(events.first().cpuMs);
        if (end.deleted != settings.deleted)
            throw bench::Failure("%1 files deleted"_s.arg(end.deleted));
        perFile.append(seconds * 1e3 / settings.deleted);
        bench::line("  round %1: %2 ms a file, longest event %3 ms"_s.arg(round + 1).arg(
            bench::number(perFile.last(), 2), bench::number(costs.last(), 1)));
    }
    bench::judge("time a file, median"_s, bench::median(perFile), deletionBoundMs, "ms"_s, 2);
    bench::judge("longest event while deleting, the worst round"_s, bench::largest(costs),
                 eventBoundMs, "ms"_s, 1);
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    Settings settings;
    settings.folder = bench::readOptions(
        application, "What scanning, listing and deleting orders of many files takes."_s,
        {{"files", "Files in the tree that is scanned.", &settings.files},
         {"deleted", "Files that are deleted.", &settings.deleted},
         {"rounds", "Times each figure is taken.", &settings.rounds}});
    return bench::runWindowIn(&application, settings.folder, [&](const QString &folder) {
        const QString tree = folder + "/tree"_s;
        makeTree(tree, settings.files);
        measureScan(&application, settings, tree);
        measureList(&application, settings, tree);
        measureDeletion(&application, settings, folder + "/deleted"_s);
    });
}
