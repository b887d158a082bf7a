#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// Runs a program that is to meet the service at url: it finds the address in TESSAVO_SERVICE_URL
// and, when caFile is not empty, the authority to trust in TESSAVO_CA_FILE. Its input and output
// are ours. Waits for its end and returns its exit code; when stopped() says so it is asked to end
// first.
int runChildProgram(const QStringList &command, const QString &url, const QString &caFile,
                    const std::function<bool()> &stopped);
