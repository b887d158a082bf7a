#include "tests/support/loglines.h"

#include <QtGlobal>

#include <algorithm>
#include <mutex>

namespace {

std::mutex mutex;
QStringList lines;
QtMessageHandler earlier = nullptr;

void collect(QtMsgType, const QMessageLogContext &, const QString &text)
{
    const std::lock_guard<std::mutex> lock(mutex);
    lines.append(text);
}

} // namespace

LogLines::LogLines()
{
    clear();
    earlier = qInstallMessageHandler(collect);
}

LogLines::~LogLines()
{
    qInstallMessageHandler(earlier);
    clear();
}

QStringList LogLines::all() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return lines;
}

int LogLines::count(const QString &beginning) const
{
    const QStringList seen = all();
    return int(std::count_if(seen.cbegin(), seen.cend(), [&beginning](const QString &line) {
        return line.startsWith(beginning);
    }));
}

void LogLines::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    lines.clear();
}
