#pragma once

#include "marks/rules/capturedays.h"
#include "marks/rules/filemark.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QVector>

/// What the marks mean for the import that is about to start, in sentences with their ways out.
/// Values and pure functions.
namespace marks {

/// All that is known of the files chosen for one order.
struct OrderLook
{
    OrderMarks marks;
    Captures captures;
    QDate shootingDay; ///< invalid when the service tells none
    QString fileWord;  ///< how the files are called, such as 照片
};

enum class Way { View, Skip, Rename };
QString textOf(Way way);

struct Line
{
    enum class Topic { Differs, Imported, OtherOrder, Captured };

    Topic topic = Topic::Differs;
    QString id; ///< tells it from the other lines
    QString text;
    QVector<Way> ways;
    QHash<OrderIdentity, QSet<QString>> sources; ///< the files it is about, by their orders
};

/// The sentences for all orders that are to be started, what would be replaced first. \a
/// mayRename: whether files may get other names than their own.
QVector<Line> linesOf(const QVector<OrderLook> &looks, bool mayRename);

/// One row of what a line's 查看 lists; texts are empty where there is nothing to tell.
struct Detail
{
    QString orderNumber;
    ChosenFile file;
    QString note;                      ///< why it is listed, beyond the line
    std::optional<StandingFile> other; ///< what it is compared with
    QString otherPath;                 ///< also where that is not known to stand any more
};

QVector<Detail> detailsOf(const Line &line, const QVector<OrderLook> &looks);

} // namespace marks
