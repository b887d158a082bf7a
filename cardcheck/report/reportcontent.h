#pragma once

#include "cardcheck/rules/verdict.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

/// What a report of a card check says. Pure functions.
namespace reportcontent {

struct Report
{
    verdict::Findings findings;
    QString card; ///< as the user knows it
    QString who;
    QDateTime when;
};

/// A file name to propose, with the suffix \a suffix.
QString fileName(const Report &report, const QString &suffix);

/// A page for the card's envelope: the light, the counts, a line an order, and every file that is
/// not proved.
QString html(const Report &report);

/// A line for every file, with the hashes of both sides.
QByteArray csvTable(const Report &report);

} // namespace reportcontent
