#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "files/paths.h"
#include "marks/run/choicemarks.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QElapsedTimer>
#include <QFile>

namespace {

constexpr int boundMs = 1000; ///< for 1,000 files
constexpr double eventBoundMs = 50;
constexpr int patienceMs = 10 * 60 * 1000;

QString nameOf(int index)
{
    return "IMG_%1.JPG"_s.arg(index, 5, 10, QLatin1Char('0'));
}

/// A card of \a count files, and a target in which half of them stand with another size.
marks::Choice chosenIn(const QString &folder, int count)
{
    marks::Choice choice;
    choice.order = {"101"_s, "1"_s, "p1"_s};
    choice.folders.append(wireForm(folder + "/target"_s));
    choice.shotDate = "2026-11-20"_s;
    choice.fileWord = "照片"_s;
    for (int index = 0; index < count; ++index) {
        const QString name = nameOf(index);
        const QString source = writeFile(folder + "/card/DCIM/"_s + name, "as the camera made it");
        if (index % 2 == 0)
            writeFile(folder + "/target/"_s + name, "another");
        choice.files.append({source, joinWirePath(choice.folders.first(), name)});
    }
    return choice;
}

void measure(BenchApplication *application, const marks::Choice &choice, const QString &what)
{
    ChoiceMarks choices;
    const auto isMarked = [&choices] {
        const auto looks = choices.looks();
        return !looks.isEmpty() && looks.first().marks.files.last().mark != marks::Mark::None;
    };
    QElapsedTimer clock;
    clock.start();
    application->startWatching();
    choices.sync({choice});
    if (!application->runUntil(isMarked, patienceMs))
        throw bench::Failure("the files are not marked"_s);
    const qint64 elapsed = clock.elapsed();
    if (!application->runUntil([&choices] { return !choices.isLooking(); }, patienceMs))
        throw bench::Failure("the looking does not end"_s);
    const auto costs = application->stopWatching();
    bench::judge(what, double(elapsed), boundMs * choice.files.size() / 1000.0, "ms"_s, 0);
    bench::judge("  longest event"_s, costs.isEmpty() ? 0 : costs.first().cpuMs, eventBoundMs,
                 "ms of processor time"_s, 1);
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    int files = 1000;
    const QString parent =
        bench::readOptions(application, "How long it takes to mark chosen files."_s,
                           {{"files", "Files that are chosen.", &files, 10}});
    return bench::runIn(parent, [&](const QString &folder) {
        const marks::Choice choice = chosenIn(folder, files);
        measure(&application, choice, "%1 files, none of which has to be read"_s.arg(files));
    });
}
