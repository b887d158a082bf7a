#pragma once

#include "orderbrowser/rules/ordersheet.h"
#include "tasks/latest.h"

#include <QByteArray>
#include <QObject>
#include <QString>

/// Writes orders into a file: some thousands at a time on the processor pool, then the whole on the
/// disk pool. An earlier file stays when that fails. Interface thread.
class SheetWriter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// One file at a time; \a path in the form of this machine.
    void start(const QString &path, const OrderSheet &sheet);
    /// Nothing more is heard of it. What is being written to the disk by now will be there.
    void cancel();
    bool isUnderWay() const { return step_.isUnderWay(); }
    /// All rows are made, the disk is at work.
    bool isSaving() const { return isUnderWay() && saving_; }

signals:
    void progressed(int rows, int total);
    void finished(const QString &path, bool written);

private:
    void makeLines(int first);
    void write();

    QString path_;
    OrderSheet sheet_;
    QByteArray table_;
    bool saving_ = false;
    Latest step_;
};
