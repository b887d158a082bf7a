#include "app/context/k.h"
#include "tests/tour/guide.h"
#include "tests/tour/steps.h"
#include "widgets/theme.h"

#include <QApplication>
#include <QCommandLineParser>

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
    QCoreApplication::setApplicationName(QStringLiteral("tessavo_tools"));
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Guided tour against the demo studio service"));
    parser.addHelpOption();
    const QCommandLineOption scale(QStringLiteral("scale"),
                                   QStringLiteral("Interface scale, 1.0 to 3.0."),
                                   QStringLiteral("FACTOR"), QStringLiteral("1.0"));
    const QCommandLineOption log(QStringLiteral("log"),
                                 QStringLiteral("Show the program's log, too."));
    parser.addOptions({scale, log});
    parser.addPositionalArgument(QStringLiteral("folder"),
                                 QStringLiteral("Where the pictures go."));
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    if (!parser.isSet(log))
        qInstallMessageHandler(onlyTrouble);

    K::instance()->initApplication(&application);
    theme::applyApplicationFont();
    // A virtual screen reports a density of its own; the tour says what it shows.
    K::uiScale = parser.value(scale).toFloat();

    Guide guide(parser.positionalArguments().constFirst(), K::uiScale);
    try {
        guide.studio().reset();
        tourLogin(guide);
        tourImportOriginals(guide);
        tourImportRetouched(guide);
        tourPhotoImport(guide);
        tourDistribution(guide);
        tourBatchDelete(guide);
        guide.finish();
    } catch (const TourFailure &failure) {
        fprintf(stderr, "tour: not so: %s\n", qUtf8Printable(failure.what));
        return 1;
    }
    printf("The tour is complete.\n");
    return 0;
}
