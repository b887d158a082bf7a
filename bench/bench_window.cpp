#include "app/context/accountcontext.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "bench/windowbench.h"
#include "fileimport/window/importfiles.h"
#include "tasks/background.h"
#include "tests/support/democlient.h"
#include "tests/support/text.h"
#include "widgets/boxes/filedialog.h"

#include <QElapsedTimer>
#include <QNetworkReply>
#include <QTableView>

using Column = ImportOrderTableModel::Column;

namespace {

constexpr double memoryBoundMb = 50;
constexpr double tableBoundMs = 300;
constexpr double eventBoundMs = 50;
constexpr int patienceMs = 10 * 60 * 1000;

struct Settings
{
    int chosen = 20000;
    int orders = 5000;
    int imported = 5000;
    int bytes = 20000; // of each imported file
    int rounds = 5;
    QString folder;
};

/// The import window and its user.
class Desk
{
public:
    explicit Desk(BenchApplication *application) : application_(application)
    {
        window_.setMode(int(ImportMode::Originals));
        window_.resize(1600, 800);
        window_.show();
    }
    ~Desk()
    {
        window_.close();
        diskPool().waitForDone();
    }
    Q_DISABLE_COPY_MOVE(Desk)

    ImportFiles *window() { return &window_; }
    QTableView *table() { return window_.findChild<QTableView *>("orderTable"_s); }
    int rows() { return table()->model()->rowCount(); }
    QString text(int column) { return table()->model()->index(0, column).data().toString(); }

    void await(const QString &what, const std::function<bool()> &done)
    {
        if (application_->runUntil(done, patienceMs))
            return;
        QString problem = "waited in vain for "_s + what;
        for (const MessageBox::Shown &box : MessageBox::takeShown())
            problem += QLatin1Char('\n') + box.text;
        throw bench::Failure(problem);
    }
    void awaitOrders()
    {
        await("orders"_s, [this] { return rows() > 0; });
    }
    /// Until animations have ended and everything is painted.
    void settle()
    {
        constexpr int settleMs = 500;
        application_->runUntil([] { return false; }, settleMs);
    }
    /// Chooses files for the first order while it is selected.
    void choose(const QString &folder, int count)
    {
        table()->selectRow(0);
        // The dialog's list belongs to whoever takes it; a copy here would hide its size.
        FileDialog::setNextFiles(bench::photoPaths(folder, count));
        QMetaObject::invokeMethod(
            &window_, [this] { window_.onSelectFilesClicked(0); }, Qt::QueuedConnection);
        const QString wanted = QString::number(count);
        await("chosen files"_s, [&] { return text(Column::ChosenColumn) == wanted; });
    }

private:
    BenchApplication *application_;
    ImportFiles window_;
};

void measureMemory(BenchApplication *application, const Settings &settings, const QString &folder)
{
    bench::line("Choosing %1 files for one order"_s.arg(settings.chosen));
    const QString card = folder + "/full-card"_s;
    bench::makePhotos(card, settings.chosen, 1);
    QVector<double> growths;
    QVector<double> costs;
    for (int round = 0; round < settings.rounds; ++round) {
        Desk desk(application);
        desk.awaitOrders();
        desk.settle();
        const double before = bench::residentMb();
        application->startWatching();
        desk.choose(card, settings.chosen);
        const auto events = application->stopWatching();
        desk.settle();
        const double after = bench::residentMb();
        growths.append(after - before);
        costs.append(events.first().cpuMs);
        bench::line(
            "  round %1: resident %2 MB idle, %3 MB with the files, %4 more"_s.arg(round + 1).arg(
                bench::number(before, 1), bench::number(after, 1),
                bench::number(after - before, 1)));
        if (round == settings.rounds - 1)
            BenchApplication::print(events);
    }
    bench::line(
        "median growth of resident memory: %1 MB"_s.arg(bench::number(bench::median(growths), 1)));
    bench::judge("largest growth of resident memory"_s, bench::largest(growths), memoryBoundMb,
                 "MB"_s, 1);
    bench::judge("longest event while choosing, median of processor time"_s, bench::median(costs),
                 eventBoundMs, "ms"_s, 1);
}

/// Milliseconds from the search reply's end until the table has painted its rows.
double msUntilTable(BenchApplication *application, int orders,
                    QVector<BenchApplication::Cost> *events)
{
    Desk desk(application);
    QElapsedTimer clock;
    bool searching = false;
    bool painted = false;
    // A reply's first event tells of it wherever in the program it belongs.
    application->delivering = [&](QObject *receiver) {
        const auto *reply = qobject_cast<QNetworkReply *>(receiver);
        if (searching || !reply || !reply->url().query().contains(QLatin1String("a=order_list")))
            return;
        searching = true;
        // Comes right before finished(), which the program has connected to first.
        QObject::connect(reply, &QIODevice::readChannelFinished, desk.window(),
                         [&clock] { clock.start(); });
    };
    application->painted = [&](QObject *widget) {
        painted =
            painted || (searching && widget == desk.table()->viewport() && desk.rows() == orders);
    };
    desk.await("painted orders"_s, [&painted] { return painted; });
    application->delivering = nullptr;
    application->painted = nullptr;
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    *events = application->stopWatching();
    return ms;
}

void measureTable(BenchApplication *application, const Settings &settings)
{
    bench::line("Showing the %1 orders of a branch"_s.arg(settings.orders));
    DemoClient demo;
    demo.reset();
    int already = 0;
    {
        Desk desk(application);
        desk.awaitOrders();
        already = desk.rows();
    }
    if (already > settings.orders)
        throw bench::Failure("there are %1 orders already"_s.arg(already));
    demo.addOrders(settings.orders - already, AccountContext::shopId);
    QVector<double> times;
    QVector<double> costs;
    for (int round = 0; round < settings.rounds; ++round) {
        QVector<BenchApplication::Cost> events;
        application->startWatching();
        times.append(msUntilTable(application, settings.orders, &events));
        costs.append(events.first().cpuMs);
        bench::line("  round %1: %2 ms"_s.arg(round + 1).arg(bench::number(times.last(), 1)));
        if (round == settings.rounds - 1)
            BenchApplication::print(events);
    }
    bench::judge("median from the reply's arrival to the painted table"_s, bench::median(times),
                 tableBoundMs, "ms"_s, 1);
    bench::judge("longest event of opening, median of processor time"_s, bench::median(costs),
                 eventBoundMs, "ms"_s, 1);
}

/// Seconds that the import of the chosen files takes, from the button to the last box.
double importSeconds(Desk *desk, const Settings &settings)
{
    QElapsedTimer clock;
    clock.start();
    QMetaObject::invokeMethod(desk->window(), &ImportFiles::onStartAllClicked,
                              Qt::QueuedConnection);
    QStringList boxes;
    desk->await("end of the import"_s, [&boxes] {
        for (const MessageBox::Shown &box : MessageBox::takeShown())
            boxes.append(box.text);
        return !boxes.isEmpty();
    });
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    if (boxes != QStringList("导入完成！"_s) ||
        desk->text(Column::OriginalsColumn).toInt() != settings.imported)
        throw bench::Failure("not imported: "_s + boxes.join(QLatin1Char('\n')));
    return seconds;
}

void measureImport(BenchApplication *application, const Settings &settings, const QString &folder)
{
    bench::line("Importing %1 files of %2 bytes"_s.arg(settings.imported).arg(settings.bytes));
    const QString card = folder + "/small-files"_s;
    bench::makePhotos(card, settings.imported, settings.bytes);
    QVector<double> durations;
    QVector<double> costs;
    for (int round = 0; round < settings.rounds; ++round) {
        DemoClient().reset();
        Desk desk(application);
        desk.awaitOrders();
        desk.choose(card, settings.imported);
        desk.settle();
        bench::syncDisk(card);
        MessageBox::takeShown();
        application->startWatching();
        durations.append(importSeconds(&desk, settings));
        const auto events = application->stopWatching();
        costs.append(events.first().cpuMs);
        bench::line("  round %1: %2 s, %3 files/s, %4 s of processor time on the "
                    "interface thread; longest events:"_s.arg(round + 1)
                        .arg(bench::number(durations.last(), 2),
                             bench::number(settings.imported / durations.last(), 0),
                             bench::number(application->cpuMs() / 1e3, 2)));
        BenchApplication::print(events);
    }
    bench::line("median duration: %1 s, %2 files/s"_s.arg(
        bench::number(bench::median(durations), 2),
        bench::number(settings.imported / bench::median(durations), 0)));
    bench::judge("longest event during an import, median of processor time"_s, bench::median(costs),
                 eventBoundMs, "ms"_s, 1);
    bench::judge("longest event during an import, the worst round"_s, bench::largest(costs),
                 eventBoundMs, "ms"_s, 1);
    DemoClient().reset();
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    Settings settings;
    settings.folder = bench::readOptions(
        application, "What the import window costs in memory and keeps its user waiting."_s,
        {{"chosen", "Files chosen for measuring memory.", &settings.chosen},
         {"orders", "Orders in the branch.", &settings.orders},
         {"imported", "Files imported.", &settings.imported},
         {"bytes", "Size of an imported file.", &settings.bytes},
         {"rounds", "Times each figure is taken.", &settings.rounds}});
    return bench::runWindowIn(&application, settings.folder, [&](const QString &folder) {
        measureMemory(&application, settings, folder);
        measureTable(&application, settings);
        measureImport(&application, settings, folder);
    });
}
