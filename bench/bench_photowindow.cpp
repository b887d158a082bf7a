#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "net/background.h"
#include "photoimport/tfhome.h"
#include "photoimport/tfhomeorders_orderlistwidget.h"
#include "tests/support/democlient.h"
#include "tests/support/pictures.h"
#include "widgets/filedialog.h"
#include "widgets/messagebox.h"

#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMetaEnum>
#include <QPushButton>

#include <cstdio>

using Column = tforderlistmodel::Column;

namespace {

constexpr double eventBoundMs = 50;
constexpr int patienceMs = 5 * 60 * 1000;

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

void makeCard(const QString &card, int photos)
{
    QDir().mkpath(card);
    const QByteArray bytes = jpegOf(cornerPicture({300, 200}));
    for (int index = 0; index < photos; ++index) {
        QFile file(QStringLiteral("%1/IMG_%2.jpg").arg(card).arg(index));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            throw bench::Failure(file.errorString());
    }
}

/// One step of the user's: what it cost at most, judged.
class Step
{
public:
    Step(BenchApplication *application, const QString &what)
        : application_(application), what_(what)
    {
        application_->startWatching();
    }

    void runUntil(const std::function<bool()> &done) const
    {
        if (!application_->runUntil(done, patienceMs))
            throw bench::Failure(QStringLiteral("no end of: ") + what_);
    }

    void judge() const
    {
        const auto events = application_->stopWatching();
        bench::line(QStringLiteral("%1: %2 s of processor time on the interface thread; longest "
                                   "events:")
                        .arg(what_, bench::number(application_->cpuMs() / 1e3, 2)));
        printEvents(events);
        bench::judge(QStringLiteral("  longest event, processor time"), events.first().cpuMs,
                     eventBoundMs, QStringLiteral("ms"), 1);
    }

private:
    BenchApplication *application_;
    QString what_;
};

void measure(BenchApplication *application, int photos, int seconds, const QString &folder)
{
    const QString card = folder + QStringLiteral("/card");
    makeCard(card, photos);
    DemoClient().reset();
    tfhome window;
    window.resize(1600, 800);
    window.show();
    auto *table = window.findChild<tfhomeorders_OrderListWidget *>(QStringLiteral("orderTable"));
    const auto cell = [table](int column) {
        return table->model()->index(0, column).data().toString();
    };
    const auto press = [&window](const char *name) {
        QMetaObject::invokeMethod(window.findChild<QPushButton *>(QLatin1String(name)), "click",
                                  Qt::QueuedConnection);
    };
    if (!application->runUntil([table] { return table->model()->rowCount() > 0; }, patienceMs))
        throw bench::Failure(QStringLiteral("no orders"));
    table->selectRow(0);

    const Step adding(application, QStringLiteral("Adding a folder of %1 photos").arg(photos));
    FileDialog::setNextFolder(card);
    press("addFolderButton");
    adding.runUntil([&] { return cell(Column::ChosenColumn) == QString::number(photos); });
    application->runUntil([] { return false; }, 2000); // the panel lays them out
    adding.judge();

    const Step importing(application, QStringLiteral("Importing them for %1 s").arg(seconds));
    press("startOrderButton");
    application->runUntil([] { return false; }, seconds * 1000);
    importing.judge();
    bench::line(QStringLiteral("  ") + cell(Column::StateColumn));

    const Step stopping(application, QStringLiteral("Stopping"));
    QElapsedTimer clock;
    clock.start();
    press("startButton");
    stopping.runUntil(
        [&] { return cell(Column::StateColumn).startsWith(QStringLiteral("已停止")); });
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    application->runUntil([] { return false; }, 3000); // the counts are renewed
    stopping.judge();
    bench::line(QStringLiteral("  stopped after %1 ms").arg(bench::number(ms, 1)));
    MessageBox::setNextAnswer(QMessageBox::Ok);
    window.close();
    application->runUntil([] { return false; }, 1000);
    diskPool()->waitForDone();
    DemoClient().reset();
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("How long the photo import's window keeps its user waiting."));
    parser.addHelpOption();
    parser.addOptions({{QStringLiteral("photos"), QStringLiteral("Photos of the order."),
                        QStringLiteral("N"), QStringLiteral("20000")},
                       {QStringLiteral("seconds"), QStringLiteral("How long to watch."),
                        QStringLiteral("N"), QStringLiteral("30")},
                       {QStringLiteral("folder"), QStringLiteral("Where the files lie."),
                        QStringLiteral("FOLDER"),
                        QCoreApplication::applicationDirPath() + QStringLiteral("/data")}});
    parser.process(application);
    const int photos = parser.value(QStringLiteral("photos")).toInt();
    const int seconds = parser.value(QStringLiteral("seconds")).toInt();
    if (photos <= 0 || seconds <= 0) {
        std::fprintf(stderr, "A number makes no sense; see --help\n");
        return 2;
    }
    return bench::runIn(parser.value(QStringLiteral("folder")), [&](const QString &folder) {
        K::instance()->initApplication(&application);
        QApplication::setQuitOnLastWindowClosed(false);
        MessageBox::setScripted(true);
        AccountContext::uid = QStringLiteral("9001");
        AccountContext::eid = QStringLiteral("3101");
        AccountContext::superId = QStringLiteral("7001");
        AccountContext::shopId = QStringLiteral("101");
        AccountContext::shopList = {{AccountContext::shopId, QStringLiteral("一店"), {}, {}}};
        measure(&application, photos, seconds, folder);
    });
}
