#pragma once

#include "cardcheck/rules/places.h"

#include <QString>
#include <QVector>

/// One order's folder, the service's list and this machine's ledger, side by side. Pure functions.
namespace orderfilelist {

enum class State {
    // From the worst to the best.
    FileMissing,    ///< the service or the ledger names it; it is not in the folder
    SizeDiffers,    ///< not as large as when it was imported
    ContentDiffers, ///< other bytes than those that were imported
    Unreadable,     ///< it is there, and cannot be read to its end
    Unregistered,   ///< in the folder; the service should list it and does not
    ServiceUnknown, ///< the service has not answered
    NotCompared,    ///< in its place; nothing tells on this machine what its bytes should be
    NotToRegister,  ///< of a kind that the service is not told of, or lists nowhere
    Matches,        ///< the bytes that were imported, and the service lists it
};
constexpr int stateCount = int(State::Matches) + 1;

QString stateText(State state);
unsigned int stateColour(State state);

/// What reading a file told beside what was written when it was imported.
enum class Content { NotRead, Same, Differs, Unreadable };

struct OrderFile
{
    QString path;            ///< wire form
    QString shown;           ///< from the order's folder on
    qint64 folderBytes = -1; ///< -1: not there
    bool isListed = false;   ///< by the service
    ledger::Copy copy;       ///< id 0 when the ledger does not know it
    Content content = Content::NotRead;
    State state = State::ServiceUnknown;

    /// Whether reading it would tell anything.
    bool isToBeRead() const;
};

struct Comparison
{
    bool isServiceKnown = false;
    QString problem; ///< why there is nothing to compare; empty when there is
    QVector<OrderFile> files;

    /// A file was read.
    void settle(int index, Content content);
    int count(State state) const;
    int inFolder() const;
    int atService() const;
};

/// What is found, when \a list may be null, and \a copies are the newest onto each file.
Comparison compare(const QString &folder, const QVector<places::FolderFile> &files,
                   const evidence::ServiceList *list, const QVector<ledger::Copy> &copies);

/// "服务端 412 张，文件夹 415 个，3 个未登记"
QString summary(const Comparison &comparison);
/// Whether telling the service of 导入原片's folders would mend something.
bool canRegister(const Comparison &comparison);

} // namespace orderfilelist
