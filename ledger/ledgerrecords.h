#pragma once

#include "app/context/orderidentity.h"
#include "files/proof.h"

#include <QByteArray>
#include <QDate>
#include <QMetaType>
#include <QString>
#include <QVector>

#include <optional>

/// What the ledger keeps, as plain values. Times are ms since 1970 in UTC, 0 for "not (yet)"; sizes
/// are bytes, -1 for unknown. The numbers of the enumerations are those in the database: they are
/// never given to another meaning.
namespace ledger {

/// What a run of the program was for.
enum class Work {
    Unknown = 0,
    ImportOriginals = 1,   ///< 导入原片
    ImportRetouched = 2,   ///< 导入精修片
    PhotoImport = 3,       ///< 导片工具
    Distribution = 4,      ///< 设计分件
    DownloadOriginals = 5, ///< 下载原始档
    DownloadSelection = 6, ///< 下载选片结果
    DownloadDelivery = 7,  ///< 下载照片交付
    BatchDeletion = 8,     ///< 批量删除
    PhotoDeletion = 9,     ///< single photos, in a tool's view of what was imported
};

enum class CopyKind {
    Bytes = 1,   ///< the target has the source's bytes
    Upright = 2, ///< the source turned upright, encoded anew
    Variant = 3, ///< made smaller of the source
    Stored = 4,  ///< made by the program or fetched from the service; has no source file
};

using Proof = ::Proof;

/// XXH3-128, 16 bytes; empty where none was computed.
using Hash = QByteArray;

/// What names a row. A negative one was given out by this process before the row was written, and
/// is good in this process alone; a positive one is the row's own. Every call takes both. 0 is
/// none.
using RunId = qint64;
using CopyId = qint64;
using DeletionId = qint64;
/// Names what one run did for one order; always the row's own.
using EntryId = qint64;

/// A card, drive or share; what cannot be told is empty.
struct Volume
{
    QString label;
    QString serial;
};

/// An order and how it was called when the row was written.
struct OrderKey
{
    OrderIdentity identity;
    QString number; ///< as shown, with the number of the service
    QString name;   ///< the customers'
};

/// In whose name a tool works. In questions an empty branch stands for all of the account's, and
/// Work::Unknown for every work.
struct Desk
{
    QString account;
    QString branch;
    Work work = Work::Unknown;
};

/// A file by what a folder's listing says of it; names are compared without case.
struct FileStamp
{
    QString name; ///< without a folder
    qint64 bytes = -1;
    qint64 modifiedMs = 0;
};

struct NewRun
{
    Desk desk;
    QString who; ///< the employee, as shown
};

struct Run
{
    RunId id = 0;
    Desk desk;
    QString who;
    qint64 begunMs = 0;
    qint64 endedMs = 0;     ///< 0 while it goes on, and for one that was broken off
    bool brokenOff = false; ///< its process is gone and never said that it ended
    qint64 processId = 0;
};

/// What is known before a file is copied.
struct NewCopy
{
    QString source; ///< whole path, either form; empty for Stored
    Volume volume;  ///< that the source lies on
    qint64 sourceBytes = -1;
    qint64 sourceModifiedMs = 0;
    QString target; ///< whole path, wire form
    CopyKind kind = CopyKind::Bytes;
    bool toRegister = false; ///< whether the service is to be told of it
};

/// How a copy went well. For Bytes both hashes are the same or empty.
struct CopyResult
{
    Proof proof = Proof::None;
    Hash sourceHash; ///< of the source as it was read
    Hash targetHash; ///< of the target as it was written
    qint64 targetBytes = -1;
    qint64 targetModifiedMs = 0;       ///< as the target's folder tells it; 0 for the source's
    std::optional<CopyKind> kind = {}; ///< where it was not known before
};

enum class Registration {
    NotWanted = 0, ///< the service is not told of such a file
    Awaited = 1,
    Done = 2,
    Dismissed = 3, ///< the user wants no more of it
};

/// One file that was to be written. It says less than the disk, never more: one that is begun and
/// neither finished nor failed may stand there or not.
struct Copy
{
    CopyId id = 0;
    EntryId entry = 0;
    RunId run = 0;
    Work work = Work::Unknown;
    OrderKey order;
    QString who;
    QString source;
    Volume volume;
    qint64 sourceBytes = -1;
    qint64 sourceModifiedMs = 0;
    QString target;
    qint64 targetBytes = -1;
    qint64 targetModifiedMs = 0;
    CopyKind kind = CopyKind::Bytes;
    Proof proof = Proof::None;
    Hash sourceHash;
    Hash targetHash;
    qint64 begunMs = 0;
    qint64 finishedMs = 0;
    Registration registration = Registration::NotWanted;
    qint64 registeredMs = 0;
    QString failure; ///< why it was not copied, or after that not registered; empty otherwise

    bool isFinished() const { return finishedMs != 0; }
};

/// The failure of a deletion that was asked for and of which nobody knows what became.
inline QString unansweredText()
{
    return QStringLiteral("服务端没有答复");
}

struct NewDeletion
{
    QString path; ///< wire form
    qint64 bytes = -1;
    qint64 modifiedMs = 0;
    Hash hash;     ///< of the file, when the ledger knew it
    QString photo; ///< id or name of the photo at the service; may be empty
};

/// One file that was to be deleted, at the service and on the disk.
struct Deletion
{
    DeletionId id = 0;
    EntryId entry = 0;
    RunId run = 0;
    Work work = Work::Unknown;
    OrderKey order;
    NewDeletion file;
    qint64 begunMs = 0;
    qint64 announcedMs = 0; ///< the service knows, or has deleted the photo itself
    qint64 deletedMs = 0;   ///< gone from the disk
    qint64 reportedMs = 0;  ///< the service was told that it is gone
    bool dismissed = false; ///< the user wants no more of it
    QString failure;
};

/// What one run did for one order: a line of the history.
struct Entry
{
    EntryId id = 0;
    Run run;
    OrderKey order;
    qint64 begunMs = 0;
    int chosen = 0; ///< copies begun
    int finished = 0;
    int proved = 0;  ///< finished with a proof better than the size
    int awaited = 0; ///< finished, and still to be registered
    int registered = 0;
    int failed = 0;
    qint64 bytes = 0;  ///< of the finished ones' sources
    int deletions = 0; ///< files to be deleted
    int deleted = 0;
    QVector<Volume> volumes; ///< that the sources lay on
};

/// What is looked for in the history; all that is said must hold. A text is compared without case.
struct HistorySearch
{
    QString order;     ///< beginning of the order's number, or part of the customers' names
    QString card;      ///< part of a volume's label, or its serial
    QString fileStart; ///< beginning of a file's name
    QString filePart;  ///< part of a file's name; only with an order or at most some 31 days
    QDate from;        ///< local days, both included; invalid for no bound
    QDate to;
    QVector<Work> works; ///< empty for all
    EntryId before = 0;  ///< the page that follows this entry; 0 for the newest
    int most = 100;
};

struct HistoryPage
{
    QVector<Entry> entries; ///< newest first
    bool hasMore = false;
};

/// What a tool keeps for the next time it is opened.
enum class PendingKind {
    ChosenFiles = 1, ///< chosen for an order and not imported
    CopiedUnregistered = 2,
    Mismatched = 3,       ///< folder and service differ
    DeletedAtService = 4, ///< deleted there, and still on the disk
    UnreportedDeletions = 5,
};

struct PendingFile
{
    QString path;   ///< of the source, or of the file that the item is about
    QString target; ///< may be empty
    qint64 bytes = -1;
    qint64 modifiedMs = 0;
    Hash hash;
    QString note; ///< the tool's own: a role, a state, a photo's id
};

/// An item is known by its kind, desk and order's identity: a later one replaces it.
struct Pending
{
    PendingKind kind = PendingKind::ChosenFiles;
    Desk desk;
    OrderKey order;
    QVector<PendingFile> files;
    QString note;       ///< the tool's own
    qint64 savedMs = 0; ///< set by the ledger
};

/// How large the ledger has become.
struct Extent
{
    qint64 fileBytes = 0;
    qint64 copies = 0;
    qint64 deletions = 0;
    qint64 oldestMs = 0;
};

} // namespace ledger
