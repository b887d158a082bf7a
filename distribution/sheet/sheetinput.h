#pragma once

#include "distribution/plan/plannedpictures.h"
#include "distribution/rules/orderdetail.h"

#include <QDateTime>
#include <QSize>
#include <QString>

#include <functional>

/// What the production sheet of one order is written from. What stands on the disk is asked through
/// sizeOf.
struct SheetInput
{
    OrderDetail detail;
    QString orderFolder;      ///< local; the pictures lie below it
    PlannedPictures pictures; ///< which of them are whose
    QDateTime printedAt;
    /// Width and height in pixels of the picture at a path; empty when there is none, which leaves
    /// its cell empty.
    std::function<QSize(const QString &path)> sizeOf;
};

/// In the fragment of a picture's address: it is to be fitted into a square.
inline const QString squareMark = QStringLiteral("square");
