#pragma once

#include "tasks/latest.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>

/// Makes a table on the processor pool and writes it on the disk pool. An earlier file stays when
/// that fails. Interface thread.
class SheetFile : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// One at a time; \a path in the form of this machine. \a make: values in, bytes out.
    void write(const QString &path, std::function<QByteArray()> make);
    bool isUnderWay() const { return step_.isUnderWay(); }

signals:
    void finished(const QString &path, bool isWritten);

private:
    Latest step_;
};
