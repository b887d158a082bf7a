#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QVector>

namespace marks {

/// When one chosen photo was taken, in local time as the camera wrote it.
struct Capture
{
    QString source; ///< as this machine writes it
    QDateTime taken;
    bool isFileTime = false; ///< the camera's data could not be read: the file's own time
};

/// What was found among the files chosen for one order.
struct Captures
{
    QVector<Capture> photos; ///< those that were looked at and tell a time
    int lookedAt = 0;
    int chosen = 0; ///< of how many files those were taken
};

/// Positions of the files to look at: \a most of \a count, evenly spread, with the first and the
/// last.
QVector<int> sampleOf(int count, int most);

/// The shooting day that the service tells, "2024-3-7"; invalid when it tells none.
QDate shootingDayOf(const QString &shotDate);

/// Whether a photo taken at \a taken belongs to the shooting of \a day: a party goes on after
/// midnight.
bool belongsTo(const QDateTime &taken, const QDate &day);

/// Those that were taken on other days than \a day.
QVector<Capture> takenElsewhen(const Captures &captures, const QDate &day);

/// "照片拍摄于 11-22，订单拍照日期 11-20", and when not all were looked at how many; empty when all
/// belong to \a day, and when nothing can be told. \a what is how the files are called.
QString captureSentence(const Captures &captures, const QDate &day, const QString &what);

} // namespace marks
