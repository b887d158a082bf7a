#include "bench/measure.h"
#include "bench/options.h"
#include "bench/windowbench.h"
#include "photoimport/window/tfhome.h"
#include "photoimport/window/tfhomeorders_orderlistwidget.h"
#include "tasks/background.h"
#include "tests/support/democlient.h"
#include "tests/support/text.h"
#include "widgets/boxes/filedialog.h"

#include <QElapsedTimer>
#include <QPushButton>

using Column = tforderlistmodel::Column;

namespace {

constexpr double eventBoundMs = 50;
constexpr int patienceMs = 5 * 60 * 1000;

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
            throw bench::Failure("no end of: "_s + what_);
    }

    void judge() const
    {
        const auto events = application_->stopWatching();
        bench::line("%1: %2 s of processor time on the interface thread; longest "
                    "events:"_s.arg(what_, bench::number(application_->cpuMs() / 1e3, 2)));
        BenchApplication::print(events);
        bench::judge("  longest event, processor time"_s, events.first().cpuMs, eventBoundMs,
                     "ms"_s, 1);
    }

private:
    BenchApplication *application_;
    QString what_;
};

void measure(BenchApplication *application, int photos, int seconds, const QString &folder)
{
    const QString card = folder + "/card"_s;
    bench::makePictures(card, photos);
    DemoClient().reset();
    tfhome window;
    window.resize(1600, 800);
    window.show();
    auto *table = window.findChild<tfhomeorders_OrderListWidget *>("orderTable"_s);
    const auto cell = [table](int column) {
        return table->model()->index(0, column).data().toString();
    };
    const auto press = [&window](const char *name) {
        QMetaObject::invokeMethod(window.findChild<QPushButton *>(QLatin1String(name)), "click",
                                  Qt::QueuedConnection);
    };
    if (!application->runUntil([table] { return table->model()->rowCount() > 0; }, patienceMs))
        throw bench::Failure("no orders"_s);
    table->selectRow(0);

    const Step adding(application, "Adding a folder of %1 photos"_s.arg(photos));
    FileDialog::setNextFolder(card);
    press("addFolderButton");
    adding.runUntil([&] { return cell(Column::ChosenColumn) == QString::number(photos); });
    application->runUntil([] { return false; }, 2000); // the panel lays them out
    adding.judge();

    const Step importing(application, "Importing them for %1 s"_s.arg(seconds));
    press("startOrderButton");
    application->runUntil([] { return false; }, seconds * 1000);
    importing.judge();
    bench::line("  "_s + cell(Column::StateColumn));

    const Step stopping(application, "Stopping"_s);
    QElapsedTimer clock;
    clock.start();
    press("startButton");
    stopping.runUntil([&] { return cell(Column::StateColumn).startsWith("已停止"_s); });
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    application->runUntil([] { return false; }, 3000); // the counts are renewed
    stopping.judge();
    bench::line("  stopped after %1 ms"_s.arg(bench::number(ms, 1)));
    MessageBox::setNextAnswer(QMessageBox::Ok);
    window.close();
    application->runUntil([] { return false; }, 1000);
    diskPool().waitForDone();
    DemoClient().reset();
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    int photos = 20000;
    int seconds = 30;
    const QString parent = bench::readOptions(
        application, "How long the photo import's window keeps its user waiting."_s,
        {{"photos", "Photos of the order.", &photos}, {"seconds", "How long to watch.", &seconds}});
    return bench::runWindowIn(&application, parent, [&](const QString &folder) {
        measure(&application, photos, seconds, folder);
    });
}
