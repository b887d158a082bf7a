#include "demo/childprogram.h"

#include <QProcess>
#include <QProcessEnvironment>

int runChildProgram(const QStringList &command, const QString &url, const QString &caFile,
                    const std::function<bool()> &stopped)
{
    constexpr int lookMs = 100;
    constexpr int failedToStart = 127;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TESSAVO_SERVICE_URL"), url);
    if (!caFile.isEmpty())
        environment.insert(QStringLiteral("TESSAVO_CA_FILE"), caFile);
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.setInputChannelMode(QProcess::ForwardedInputChannel);
    child.start(command.first(), command.mid(1));
    if (!child.waitForStarted()) {
        fprintf(stderr, "%s: %s\n", command.first().toUtf8().constData(),
                child.errorString().toUtf8().constData());
        return failedToStart;
    }
    while (!child.waitForFinished(lookMs)) {
        if (stopped())
            child.terminate();
    }
    return child.exitStatus() == QProcess::NormalExit ? child.exitCode() : failedToStart;
}
