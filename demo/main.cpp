#include "demo/childprogram.h"
#include "demo/demoservice.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

int stopPipe[2] = {-1, -1};

void onStopSignal(int)
{
    const char byte = 0;
    // Nothing can be done about a failure in here, and a full pipe already means "stop".
    [[maybe_unused]] const ssize_t written = write(stopPipe[1], &byte, 1);
}

bool watchSignals()
{
    if (pipe(stopPipe) != 0)
        return false;
    fcntl(stopPipe[1], F_SETFL, O_NONBLOCK);
    struct sigaction action = {};
    action.sa_handler = onStopSignal;
    return sigaction(SIGTERM, &action, nullptr) == 0 && sigaction(SIGINT, &action, nullptr) == 0;
}

bool inputEnded()
{
    char bytes[256];
    return read(STDIN_FILENO, bytes, sizeof bytes) <= 0;
}

void waitForTheEnd(bool untilEndOfInput)
{
    pollfd watched[2] = {{stopPipe[0], POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    for (;;) {
        // A poll that a signal interrupted finds the pipe readable the next time round.
        if (poll(watched, untilEndOfInput ? 2 : 1, -1) <= 0)
            continue;
        if (watched[0].revents != 0 || (watched[1].revents != 0 && inputEnded()))
            return;
    }
}

bool askedToStop()
{
    pollfd watched = {stopPipe[0], POLLIN, 0};
    return poll(&watched, 1, 0) > 0;
}

struct Settings
{
    DemoService::Options service;
    bool untilEndOfInput = false;
    QStringList command; // to run beside the service, if any
};

// Returns false when a value makes no sense.
bool readOptions(const QCoreApplication &application, Settings *settings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Stand-in of the studio-management service"));
    parser.addHelpOption();
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("Port, 0 for any."),
                                  QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption data(
        QStringLiteral("data"), QStringLiteral("Folder for the share and the material."),
        QStringLiteral("FOLDER"), QDir::tempPath() + QStringLiteral("/tessavo-demo"));
    const QCommandLineOption tls(QStringLiteral("tls"),
                                 QStringLiteral("Speak TLS; clients trust FOLDER/tls/ca.pem."));
    const QCommandLineOption orders(QStringLiteral("orders"), QStringLiteral("Number of orders."),
                                    QStringLiteral("N"), QStringLiteral("40"));
    const QCommandLineOption prefix(QStringLiteral("path-prefix"),
                                    QStringLiteral("Put before paths in answers, such as Z:"),
                                    QStringLiteral("PREFIX"));
    const QCommandLineOption noPictures(QStringLiteral("no-pictures"),
                                        QStringLiteral("Make no material to import."));
    const QCommandLineOption verbose(QStringLiteral("verbose"),
                                     QStringLiteral("One line a request on stderr."));
    const QCommandLineOption untilEof(QStringLiteral("until-eof"),
                                      QStringLiteral("End when the standard input ends."));
    const QCommandLineOption run(
        QStringLiteral("run"),
        QStringLiteral("Run the program after -- against this service, end with it."));
    parser.addOptions({port, data, tls, orders, prefix, noPictures, verbose, untilEof, run});
    parser.process(application);

    bool portFine = false;
    bool ordersFine = false;
    DemoService::Options *options = &settings->service;
    options->port = parser.value(port).toInt(&portFine);
    options->orders = parser.value(orders).toInt(&ordersFine);
    options->dataFolder = parser.value(data);
    options->tls = parser.isSet(tls);
    options->pathPrefix = parser.value(prefix);
    options->pictures = !parser.isSet(noPictures);
    options->verbose = parser.isSet(verbose);
    settings->untilEndOfInput = parser.isSet(untilEof);
    settings->command = parser.positionalArguments();
    return parser.isSet(run) != settings->command.isEmpty() && portFine && options->port >= 0 &&
           options->port <= 65535 && ordersFine && options->orders >= 0 &&
           !options->dataFolder.isEmpty();
}

} // namespace

int main(int argc, char **argv)
{
    // Under a plain C locale Qt would write "?" for every Chinese folder name.
    qputenv("LC_ALL", "C.UTF-8");
    const QCoreApplication application(argc, argv);
    Settings settings;
    if (!readOptions(application, &settings)) {
        fprintf(stderr, "--port, --orders, --data or --run makes no sense; see --help\n");
        return 2;
    }
    DemoService service(settings.service);
    const QString problem = watchSignals() ? service.start() : QStringLiteral("no signal handling");
    if (!problem.isEmpty()) {
        fprintf(stderr, "%s\n", problem.toUtf8().constData());
        return 1;
    }
    printf("listening on %s\n", service.url().toUtf8().constData());
    fflush(stdout);
    int exitCode = 0;
    if (settings.command.isEmpty())
        waitForTheEnd(settings.untilEndOfInput);
    else
        exitCode = runChildProgram(settings.command, service.url(), service.caFile(), askedToStop);
    service.stop();
    return exitCode;
}
