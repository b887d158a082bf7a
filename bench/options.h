#pragma once

#include "tests/support/text.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QVector>

#include <cstdio>
#include <cstdlib>

namespace bench {

/// A number on the command line; \a value holds the default and takes what was given.
struct Number
{
    const char *name;
    const char *meaning;
    int *value;
    int least = 1;
};

/// Reads the numbers and returns --folder. Ends the program where a number makes no sense, as the
/// parser does for options it does not know.
inline QString readOptions(const QCoreApplication &application, const QString &description,
                           const QVector<Number> &numbers)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addHelpOption();
    for (const Number &number : numbers) {
        parser.addOption({QLatin1String(number.name), QLatin1String(number.meaning), "N"_s,
                          QString::number(*number.value)});
    }
    const QString folder = "folder"_s;
    parser.addOption({folder, "Where the files lie."_s, "FOLDER"_s,
                      QCoreApplication::applicationDirPath() + "/data"_s});
    parser.process(application);
    for (const Number &number : numbers) {
        bool isNumber = false;
        *number.value = parser.value(QLatin1String(number.name)).toInt(&isNumber);
        if (!isNumber || *number.value < number.least) {
            std::fprintf(stderr, "--%s wants a number of %d or more\n", number.name, number.least);
            std::exit(2);
        }
    }
    return parser.value(folder);
}

} // namespace bench
