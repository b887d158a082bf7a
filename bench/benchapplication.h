#pragma once

#include <QApplication>
#include <QEvent>
#include <QVector>

#include <functional>

/// An application that takes the time of every event on the interface thread: of processor time
/// for what the event costs, and of the wall clock. An event lasts from its delivery until its
/// receiver has returned, with whatever it sends meanwhile. One that waits in an event loop of its
/// own, as a box does, is left out; the events of that loop are not.
class BenchApplication : public QApplication
{
    Q_OBJECT

public:
    struct Cost
    {
        double cpuMs = 0;
        double wallMs = 0;
        QEvent::Type type = QEvent::None;
        const char *receiver = ""; ///< class name
    };

    using QApplication::QApplication;

    /// One line each, the longest first.
    static void print(const QVector<Cost> &costs);

    /// Forgets earlier events and counts from here on.
    void startWatching();
    /// The events since startWatching() that took most processor time, the longest first.
    QVector<Cost> stopWatching();

    /// Processor time of all events since startWatching().
    double cpuMs() const { return cpuMs_; }

    /// Serves events until \a done is true, which is asked after each; false after \a timeoutMs.
    bool runUntil(const std::function<bool()> &done, int timeoutMs);

    /// Called before an event of the interface thread reaches its receiver.
    std::function<void(QObject *receiver)> delivering;
    /// Called when a widget has painted itself.
    std::function<void(QObject *widget)> painted;

    bool notify(QObject *receiver, QEvent *event) override;

private:
    bool deliver(QObject *receiver, QEvent *event);
    void add(const Cost &cost);

    bool watching_ = false;
    double cpuMs_ = 0;
    QVector<Cost> longest_;
    int loopLevel_ = -1;  ///< event loop of the event being timed; -1 outside of any
    bool waited_ = false; ///< whether that event ran a loop of its own
    std::function<void()> afterEvent_;
};
