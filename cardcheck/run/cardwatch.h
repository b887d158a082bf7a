#pragma once

#include "platform/removabledrives.h"
#include "tasks/workerpool.h"

#include <QDate>
#include <QObject>
#include <QTimer>
#include <QVector>

#include <memory>

/// Sees cards come and go: removable drives to which a camera has written. Looks every few seconds,
/// on a thread of its own. Interface thread.
class CardWatch : public QObject
{
    Q_OBJECT

public:
    explicit CardWatch(QObject *parent = nullptr);
    ~CardWatch() override;

    /// Looks at once, and goes on looking.
    void start();
    const QVector<platform::RemovableDrive> &cards() const { return cards_; }

signals:
    void changed();

private:
    void look();

    QTimer timer_;
    std::unique_ptr<WorkerPool> pool_;
    QVector<platform::RemovableDrive> cards_;
    bool isLooking_ = false;
};
