#include "app/context/k.h"
#include "ledger/ledger.h"
#include "tests/support/text.h"
#include "tour/guide.h"
#include "tour/steps.h"
#include "widgets/inputs/editmenus.h"
#include "widgets/theme/theme.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTemporaryDir>

#include <cstdio>

namespace {

/// The tour's own lines are what its reader wants; the program's log goes on when asked for.
void onlyTrouble(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtDebugMsg && !message.startsWith(QLatin1String("This plugin does not support")))
        fprintf(stderr, "%s\n", qUtf8Printable(message));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName("tessavo_tools"_s);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.setApplicationDescription("Guided tour against the demo studio service"_s);
    parser.addHelpOption();
    const QCommandLineOption scale("scale"_s, "Interface scale, 1.0 to 3.0."_s, "FACTOR"_s,
                                   "1.0"_s);
    const QCommandLineOption log("log"_s, "Show the program's log, too."_s);
    parser.addOptions({scale, log});
    parser.addPositionalArgument("folder"_s, "Where the pictures go."_s);
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    if (!parser.isSet(log))
        qInstallMessageHandler(onlyTrouble);

    K::instance()->initApplication(&application);
    theme::applyApplicationFont();
    new EditMenus(&application);
    // A virtual screen reports a density of its own; the tour says what it shows.
    K::uiScale = parser.value(scale).toFloat();

    const QTemporaryDir kept;
    Ledger ledger(kept.path());
    ledger.makeCurrent();
    Guide guide(parser.positionalArguments().constFirst(), K::uiScale);
    try {
        guide.studio().reset();
        tourLogin(guide);
        tourImportOriginals(guide);
        tourImportRetouched(guide);
        tourPhotoImport(guide);
        tourDistribution(guide);
        tourBatchDelete(guide);
        tourOrderList(guide);
        tourHistory(guide);
        tourRestoring(guide);
        tourCardCheck(guide);
        guide.step("关闭"_s);
        guide.closeWindows();
        guide.finish();
    } catch (const TourFailure &failure) {
        fprintf(stderr, "tour: not so: %s\n", qUtf8Printable(failure.what));
        return 1;
    }
    printf("The tour is complete.\n");
    return 0;
}
