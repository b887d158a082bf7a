#pragma once

#include "app/context/orderidentity.h"

#include <QMetaType>
#include <QRgb>
#include <QString>
#include <QVector>

/// One file below an order's folder. Small, since an order may have a million of them: what can be
/// told from the rest is not kept.
struct BatchDeleteFileInfo
{
    enum State {
        NotDeleted = 0,
        Deleting = 1,
        Deleted = 2,
        NotReported = 3, ///< removed, but the service was not told
        Failed = 4,
        InUse = 5,
        // What the thread that deletes answers besides; recorded as Failed with the reason.
        Unreachable = 6,
        NotWritable = 7,
        UnknownFailure = 8,
    };

    QString folderPath; ///< absolute, in this machine's form; one text for all files of a folder
    QString fileName;
    QString reason; ///< of the last failure, or why the file is kept
    qint64 size = 0;
    qint64 modified = 0; ///< as platform::FolderEntry has it
    qint32 state = NotDeleted;
    qint32 rootLength = 0;  ///< how much of the path is the order's folder
    bool kept = false;      ///< listed, but never deleted: see reason
    bool missing = false;   ///< was gone already when it was to be deleted
    bool announced = false; ///< the service knows that it is to go, as it was listed
    bool changed = false;   ///< since it was listed: has to be listed again before anything else

    /// Name of the folder that holds the file; empty for the root of a drive.
    QString folder() const;
    QString fullPath() const;
    /// Relative to the order's folder, with slashes.
    QString shortPath() const;
    /// The file's name with what is remarkable about it.
    QString displayName() const;

    bool isRemoved() const { return state == Deleted || state == NotReported; }
    bool hasFailed() const { return state >= NotReported; }
    bool mayRetryDelete() const { return state > NotReported && !kept && !changed; }
};
Q_DECLARE_TYPEINFO(BatchDeleteFileInfo, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(BatchDeleteFileInfo)

/// What stands there instead of an announced file, which the service knows nothing of.
QString changedFileText();

/// The text and the colour of a file's state.
QString deletionStateText(int state);
QRgb deletionStateColour(int state);

/// What a scan of an order's folder found.
struct FileScanResult
{
    bool success = false;
    QString errorText; ///< empty on success
    QVector<BatchDeleteFileInfo> files;
    bool missing = false; ///< it failed because there is no such folder
};
Q_DECLARE_METATYPE(FileScanResult)

/// One order of a search, and what became of its files. Paths are in Windows form.
struct BatchDeleteOrderInfo
{
    QString branch; ///< id of the shop under which the order was listed
    QString id;
    QString orderPhotoId;
    QString orderPayForKey;
    QString serviceTimes;
    QString mname;
    QString wname;
    QString role1;      ///< photographer
    QString tiaoseName; ///< pre-sample retoucher
    QString fulfilTime; ///< completion date
    QString netPath;    ///< the order's folder on the storage
    QString note;       ///< why the order was skipped or not finished; empty otherwise
    int listed = 0;     ///< how many files were found when they were looked at last
    bool checked = false;
    bool processed = false; ///< a run had its turn with it: the files tell what became of them
    bool outdated = false;  ///< since the files were listed time has passed: look again

    OrderIdentity identity() const { return {branch, id, orderPhotoId}; }
    QString displayNumber() const;
    QString customers() const;

    const QVector<BatchDeleteFileInfo> &files() const { return files_; }
    int succeeded() const { return succeeded_; }
    int failed() const { return failed_; }
    int total() const { return files_.isEmpty() ? listed : files_.size(); }
    int unreported() const { return unreported_; }
    qint64 bytes() const { return bytes_; }
    /// Of the files that have succeeded or failed.
    qint64 bytesDone() const { return bytesDone_; }
    /// Whether one of the files at \a indexes has to be listed again before it can be retried.
    bool hasChanged(const QVector<int> &indexes) const;
    /// Whether a file is known that is there still and may be deleted.
    bool hasFilesLeft() const;
    /// Those that are gone without the service knowing.
    QVector<BatchDeleteFileInfo> unreportedFiles() const;
    void setFiles(const QVector<BatchDeleteFileInfo> &files);
    /// The only way in which a file changes, so that the counts always are those of the states. An
    /// index out of range is ignored.
    void setFile(int index, const BatchDeleteFileInfo &file);

private:
    void count(const BatchDeleteFileInfo &file, int by);

    QVector<BatchDeleteFileInfo> files_;
    int succeeded_ = 0;
    int failed_ = 0;
    int unreported_ = 0;
    qint64 bytes_ = 0;
    qint64 bytesDone_ = 0;
};
Q_DECLARE_METATYPE(BatchDeleteOrderInfo)
