#pragma once

#include "distribution/proof/orderproof.h"

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

/// What became of files that were to be put away.
struct PutAway
{
    QString folder; ///< that they lie in now; empty when none was moved
    int moved = 0;
    QStringList problems; ///< a line for each file that stayed, or one for all

    bool isWhole() const { return problems.isEmpty(); }
};
Q_DECLARE_METATYPE(PutAway)

namespace oldfiles {

/// Moves \a files, which this program wrote below \a orderFolder, into a new folder
/// "旧文件/<date time>" there, each as deep as it lay. What is not as it was written any more
/// stays, so does what is protected, and what a link leads to; nothing is replaced or copied.
/// Blocks; for worker threads.
PutAway putAway(const QString &orderFolder, const QVector<EarlierFile> &files,
                const QDateTime &now = QDateTime::currentDateTime());

} // namespace oldfiles
