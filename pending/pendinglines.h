#pragma once

#include <QString>
#include <QVector>

/// What a tool offers to go on with, in words. Values and pure functions.
namespace pendinglines {

enum class Kind {
    Choices,          ///< chosen and not imported
    Unregistered,     ///< copied, and the service was not told
    PartlyCopied,     ///< the same where not all of the order's files were copied
    LeftPhotos,       ///< deleted at the service, still on the disk
    UnansweredPhotos, ///< the service was asked to delete them, nobody knows whether it has
    UnreportedFiles,  ///< gone from the disk, and the service was not told
};

enum class Offer {
    Show,
    Forget,
    RegisterAgain,
    Ignore,
    DeleteFiles,
    KeepFiles,
    Verify, ///< ask the service what became of them
    Report,
    SwitchBranch, ///< all that is offered for what belongs to another branch
};

/// How much of a kind waits for one branch.
struct Count
{
    Kind kind = Kind::Choices;
    QString branch; ///< id
    int orders = 0;
    int files = 0;
};

struct Line
{
    QString id; ///< by kind and branch, from "pending." on
    Kind kind = Kind::Choices;
    QString branch;
    bool warns = false; ///< more than a hint
    QString text;
    QVector<Offer> offers;
};

/// One line for each count with any files, this branch's first. \a branchName gives the name of a
/// branch by its id.
QVector<Line> linesOf(const QVector<Count> &counts, const QString &hereBranch,
                      const QVector<QPair<QString, QString>> &branchNames);

QString offerText(Offer offer);
/// What to ask before \a offer is taken; empty for what can be taken at once.
QString questionBefore(Offer offer, const Line &line);

} // namespace pendinglines
