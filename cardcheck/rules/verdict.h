#pragma once

#include "cardcheck/rules/evidence.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <array>

/// May the card be formatted? Pure functions.
namespace verdict {

enum class Light {
    None, ///< nothing can be said: not checked, empty, cancelled
    Green,
    Amber, ///< something is unproved
    Red,   ///< something is missing or different
};

/// All that a check has found.
struct Findings
{
    cardfiles::CardListing card; ///< without its files, which are below
    QString branch;              ///< in whose name the service was asked
    QVector<evidence::CheckedFile> files;
    bool isFinished = false;
    bool wasCancelled = false;
    bool cardChanged = false; ///< other files, sizes or times after the check than before it
    QString problem;          ///< why there was no check; empty when there was
};

/// How many files are in which state.
struct Tally
{
    std::array<int, evidence::stateCount> counting{}; ///< photos, raw files and videos
    std::array<int, evidence::stateCount> others{};

    int of(evidence::State state) const { return counting[std::size_t(state)]; }
    int all(evidence::State state) const { return of(state) + others[std::size_t(state)]; }
    int counted() const;
};
Tally tallyOf(const QVector<evidence::CheckedFile> &files);

struct Verdict
{
    Light light = Light::None;
    QString headline;
    QStringList notes; ///< below it, a line each
};

Verdict of(const Findings &findings);

/// "绿灯"; a light is never told by its colour alone.
QString lightText(Light light);
unsigned int lightColour(Light light);

/// Paths of the files that are to be imported: photos, raw files and videos that stand nowhere, or
/// otherwise than on the card.
QStringList missingFiles(const QVector<evidence::CheckedFile> &files);

} // namespace verdict
