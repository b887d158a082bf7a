#include "bench/benchapplication.h"

#include "bench/measure.h"
#include "tests/support/text.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QMetaEnum>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <ctime>

namespace {

constexpr int eventsKept = 5;

double threadCpuMs()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

} // namespace

void BenchApplication::print(const QVector<Cost> &costs)
{
    const QMetaEnum types = QMetaEnum::fromType<QEvent::Type>();
    for (const Cost &cost : costs) {
        const char *type = types.valueToKey(cost.type);
        bench::line("    %1 ms processor, %2 ms wall: %3 to %4"_s.arg(
            bench::number(cost.cpuMs, 2), bench::number(cost.wallMs, 2),
            type ? QString::fromLatin1(type) : QString::number(cost.type),
            QString::fromLatin1(cost.receiver)));
    }
}

void BenchApplication::startWatching()
{
    longest_.clear();
    cpuMs_ = 0;
    watching_ = true;
}

QVector<BenchApplication::Cost> BenchApplication::stopWatching()
{
    watching_ = false;
    return longest_;
}

bool BenchApplication::runUntil(const std::function<bool()> &done, int timeoutMs)
{
    if (done())
        return true;
    QEventLoop loop;
    bool held = false;
    afterEvent_ = [&] {
        if (!held && done()) {
            held = true;
            loop.quit();
        }
    };
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    loop.exec();
    afterEvent_ = nullptr;
    return held;
}

bool BenchApplication::notify(QObject *receiver, QEvent *event)
{
    if (QThread::currentThread() != thread())
        return QApplication::notify(receiver, event);
    const int level = thread()->loopLevel();
    if (level == loopLevel_)
        return deliver(receiver, event); // part of the event that sent it

    const int outerLevel = loopLevel_;
    loopLevel_ = level;
    waited_ = false;
    // Neither may be left to ask afterwards.
    Cost cost;
    cost.type = event->type();
    cost.receiver = receiver->metaObject()->className();
    const double cpuBefore = threadCpuMs();
    QElapsedTimer wall;
    wall.start();
    const bool result = deliver(receiver, event);
    cost.wallMs = double(wall.nsecsElapsed()) / 1e6;
    cost.cpuMs = threadCpuMs() - cpuBefore;
    if (watching_ && !waited_)
        add(cost);
    waited_ = outerLevel >= 0; // for the event this one's loop runs in
    loopLevel_ = outerLevel;
    if (afterEvent_)
        afterEvent_();
    return result;
}

bool BenchApplication::deliver(QObject *receiver, QEvent *event)
{
    if (delivering)
        delivering(receiver);
    const bool isPaint = event->type() == QEvent::Paint;
    const bool result = QApplication::notify(receiver, event);
    if (isPaint && painted)
        painted(receiver);
    return result;
}

void BenchApplication::add(const Cost &cost)
{
    cpuMs_ += cost.cpuMs;
    const auto place = std::find_if(longest_.begin(), longest_.end(), [&cost](const Cost &other) {
        return other.cpuMs < cost.cpuMs;
    });
    longest_.insert(place, cost);
    if (longest_.size() > eventsKept)
        longest_.removeLast();
}
