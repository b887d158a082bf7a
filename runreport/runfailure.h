#pragma once

#include "app/context/orderidentity.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QVector>

/// One file that a run did not bring to its end.
struct RunFailure
{
    OrderIdentity order;
    QString orderName; ///< as users know it: number and customers
    QString key;       ///< tells the file from the order's others
    QString file;      ///< as users know it
    QString reason;    ///< whole; may be several lines

    bool isOf(const OrderIdentity &itsOrder, const QString &itsKey) const
    {
        return key == itsKey && order == itsOrder;
    }
};
Q_DECLARE_METATYPE(RunFailure)

namespace runfailures {

/// Whether one of its texts holds \a words, in whatever case.
bool matches(const RunFailure &failure, const QString &words);
/// A line each, of tab-separated texts.
QString text(const QVector<RunFailure> &failures);
QByteArray csv(const QVector<RunFailure> &failures);

} // namespace runfailures
