#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "fileimport/importfiles.h"
#include "net/background.h"
#include "tests/support/democlient.h"
#include "widgets/filedialog.h"
#include "widgets/messagebox.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QMetaEnum>
#include <QNetworkReply>
#include <QTableView>

#include <cstdio>
#include <malloc.h>
#include <unistd.h>

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

bool readOptions(const QCoreApplication &application, Settings *settings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("What the import window costs in memory and keeps its user waiting."));
    parser.addHelpOption();
    const QVector<QPair<QString, int *>> numbers{{QStringLiteral("chosen"), &settings->chosen},
                                                 {QStringLiteral("orders"), &settings->orders},
                                                 {QStringLiteral("imported"), &settings->imported},
                                                 {QStringLiteral("bytes"), &settings->bytes},
                                                 {QStringLiteral("rounds"), &settings->rounds}};
    const QStringList meanings{
        QStringLiteral("Files chosen for measuring memory."),
        QStringLiteral("Orders in the branch."), QStringLiteral("Files imported."),
        QStringLiteral("Size of an imported file."), QStringLiteral("Times each figure is taken.")};
    for (int index = 0; index < numbers.size(); ++index) {
        parser.addOption({numbers.at(index).first, meanings.at(index), QStringLiteral("N"),
                          QString::number(*numbers.at(index).second)});
    }
    parser.addOption({QStringLiteral("folder"), QStringLiteral("Where the files lie."),
                      QStringLiteral("FOLDER"),
                      QCoreApplication::applicationDirPath() + QStringLiteral("/data")});
    parser.process(application);
    settings->folder = parser.value(QStringLiteral("folder"));
    bool fine = true;
    for (const auto &number : numbers) {
        bool isNumber = false;
        *number.second = parser.value(number.first).toInt(&isNumber);
        fine = fine && isNumber && *number.second > 0;
    }
    return fine;
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

void logIn()
{
    AccountContext::uid = QStringLiteral("9001");
    AccountContext::eid = QStringLiteral("3101");
    AccountContext::superId = QStringLiteral("7001");
    AccountContext::shopId = QStringLiteral("101");
    AccountContext::shopList = {{QStringLiteral("101"), QStringLiteral("一店"), {}, {}}};
}

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
        diskPool()->waitForDone();
    }
    Q_DISABLE_COPY_MOVE(Desk)

    ImportFiles *window() { return &window_; }
    QTableView *table() { return window_.findChild<QTableView *>(QStringLiteral("orderTable")); }
    int rows() { return table()->model()->rowCount(); }
    QString text(int column) { return table()->model()->index(0, column).data().toString(); }

    void await(const QString &what, const std::function<bool()> &done)
    {
        if (application_->runUntil(done, patienceMs))
            return;
        QString problem = QStringLiteral("waited in vain for ") + what;
        for (const MessageBox::Shown &box : MessageBox::takeShown())
            problem += QLatin1Char('\n') + box.text;
        throw bench::Failure(problem);
    }
    void awaitOrders()
    {
        await(QStringLiteral("orders"), [this] { return rows() > 0; });
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
        await(QStringLiteral("chosen files"), [&] { return text(Column::ChosenColumn) == wanted; });
    }

private:
    BenchApplication *application_;
    ImportFiles window_;
};

void printEvents(const QVector<BenchApplication::Cost> &costs)
{
    const QMetaEnum types = QMetaEnum::fromType<QEvent::Type>();
    for (const BenchApplication::Cost &cost : costs) {
        const char *type = types.valueToKey(cost.type);
        bench::line(QStringLiteral("    %1 ms processor, %2 ms wall: %3 to %4")
                        .arg(bench::number(cost.cpuMs, 2), bench::number(cost.wallMs, 2),
                             type ? QString::fromLatin1(type) : QString::number(cost.type),
                             QString::fromLatin1(cost.receiver)));
    }
}

void measureMemory(BenchApplication *application, const Settings &settings, const QString &folder)
{
    bench::line(QStringLiteral("Choosing %1 files for one order").arg(settings.chosen));
    const QString card = folder + QStringLiteral("/full-card");
    bench::makePhotos(card, settings.chosen, 1);
    QVector<double> growths;
    QVector<double> costs;
    for (int round = 0; round < settings.rounds; ++round) {
        Desk desk(application);
        desk.awaitOrders();
        desk.settle();
        const double before = residentMb();
        application->startWatching();
        desk.choose(card, settings.chosen);
        const auto events = application->stopWatching();
        desk.settle();
        const double after = residentMb();
        growths.append(after - before);
        costs.append(events.first().cpuMs);
        bench::line(QStringLiteral("  round %1: resident %2 MB idle, %3 MB with the files, %4 more")
                        .arg(round + 1)
                        .arg(bench::number(before, 1), bench::number(after, 1),
                             bench::number(after - before, 1)));
        if (round == settings.rounds - 1)
            printEvents(events);
    }
    bench::line(QStringLiteral("median growth of resident memory: %1 MB")
                    .arg(bench::number(bench::median(growths), 1)));
    bench::judge(QStringLiteral("largest growth of resident memory"), bench::largest(growths),
                 memoryBoundMb, QStringLiteral("MB"), 1);
    bench::judge(QStringLiteral("longest event while choosing, median of processor time"),
                 bench::median(costs), eventBoundMs, QStringLiteral("ms"), 1);
}

/// Milliseconds from the search reply's end until the table has painted its rows.
double msUntilTable(BenchApplication *application, int orders,
                    QVector<BenchApplication::Cost> *events)
{
    Desk desk(application);
    QElapsedTimer clock;
    QNetworkReply *reply = nullptr;
    bool painted = false;
    application->painted = [&](QObject *widget) {
        painted = painted || (widget == desk.table()->viewport() && desk.rows() == orders);
    };
    desk.await(QStringLiteral("painted orders"), [&] {
        if (reply)
            return painted;
        const auto replies = desk.window()->findChildren<QNetworkReply *>();
        for (QNetworkReply *candidate : replies) {
            if (!candidate->url().query().contains(QLatin1String("a=order_list")))
                continue;
            reply = candidate;
            // Comes right before finished(), which the program has connected to first.
            QObject::connect(reply, &QIODevice::readChannelFinished, desk.window(),
                             [&clock] { clock.start(); });
        }
        return false;
    });
    application->painted = nullptr;
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    *events = application->stopWatching();
    return ms;
}

void measureTable(BenchApplication *application, const Settings &settings)
{
    bench::line(QStringLiteral("Showing the %1 orders of a branch").arg(settings.orders));
    DemoClient demo;
    demo.reset();
    int already = 0;
    {
        Desk desk(application);
        desk.awaitOrders();
        already = desk.rows();
    }
    if (already > settings.orders)
        throw bench::Failure(QStringLiteral("there are %1 orders already").arg(already));
    demo.addOrders(settings.orders - already, AccountContext::shopId);
    QVector<double> times;
    QVector<double> costs;
    for (int round = 0; round < settings.rounds; ++round) {
        QVector<BenchApplication::Cost> events;
        application->startWatching();
        times.append(msUntilTable(application, settings.orders, &events));
        costs.append(events.first().cpuMs);
        bench::line(
            QStringLiteral("  round %1: %2 ms").arg(round + 1).arg(bench::number(times.last(), 1)));
        if (round == settings.rounds - 1)
            printEvents(events);
    }
    bench::judge(QStringLiteral("median from the reply's arrival to the painted table"),
                 bench::median(times), tableBoundMs, QStringLiteral("ms"), 1);
    bench::judge(QStringLiteral("longest event of opening, median of processor time"),
                 bench::median(costs), eventBoundMs, QStringLiteral("ms"), 1);
}

/// Seconds that the import of the chosen files takes, from the button to the last box.
double importSeconds(Desk *desk, const Settings &settings)
{
    QElapsedTimer clock;
    clock.start();
    QMetaObject::invokeMethod(desk->window(), &ImportFiles::onStartAllClicked,
                              Qt::QueuedConnection);
    QStringList boxes;
    desk->await(QStringLiteral("end of the import"), [&boxes] {
        for (const MessageBox::Shown &box : MessageBox::takeShown())
            boxes.append(box.text);
        return !boxes.isEmpty();
    });
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    if (boxes != QStringList(QStringLiteral("导入完成！")) ||
        desk->text(Column::OriginalsColumn).toInt() != settings.imported)
        throw bench::Failure(QStringLiteral("not imported: ") + boxes.join(QLatin1Char('\n')));
    return seconds;
}

void measureImport(BenchApplication *application, const Settings &settings, const QString &folder)
{
    bench::line(QStringLiteral("Importing %1 files of %2 bytes")
                    .arg(settings.imported)
                    .arg(settings.bytes));
    const QString card = folder + QStringLiteral("/small-files");
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
        bench::line(QStringLiteral("  round %1: %2 s, %3 files/s, %4 s of processor time on the "
                                   "interface thread; longest events:")
                        .arg(round + 1)
                        .arg(bench::number(durations.last(), 2),
                             bench::number(settings.imported / durations.last(), 0),
                             bench::number(application->cpuMs() / 1e3, 2)));
        printEvents(events);
    }
    bench::line(QStringLiteral("median duration: %1 s, %2 files/s")
                    .arg(bench::number(bench::median(durations), 2),
                         bench::number(settings.imported / bench::median(durations), 0)));
    bench::judge(QStringLiteral("longest event during an import, median of processor time"),
                 bench::median(costs), eventBoundMs, QStringLiteral("ms"), 1);
    bench::judge(QStringLiteral("longest event during an import, the worst round"),
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
        measureMemory(&application, settings, folder);
        measureTable(&application, settings);
        measureImport(&application, settings, folder);
    });
}
