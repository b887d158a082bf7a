#pragma once

#include "tasks/latest.h"
#include "tasks/stopflag.h"

#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

/// What lies in an order's folder.
struct FolderContent
{
    enum class State {
        There,
        Missing,
        Denied,
        Failed,   ///< reading it broke off
        Refused,  ///< its path is none that is looked at
        TimedOut, ///< the disk or share did not answer in time
    };
    struct Part
    {
        QString name; ///< of the sub-folder; empty: the files beside those
        int files = 0;
        qint64 bytes = 0;
    };

    State state = State::Missing;
    QVector<Part> parts; ///< in the order of their names
};

/// Looks at one folder at a time, on the disk pool and no longer than a time limit: a share that
/// has gone away answers nobody. Interface thread.
class FolderLook : public QObject
{
    Q_OBJECT

public:
    explicit FolderLook(QObject *parent = nullptr, int limitMs = 20000);
    ~FolderLook() override;

    /// An earlier look is abandoned. \a path in Windows form.
    void look(const QString &path);
    void cancel();
    bool isUnderWay() const { return latest_.isUnderWay(); }

signals:
    void found(const FolderContent &content);

private:
    Latest latest_;
    StopFlag stop_;
    QTimer limit_;
};
