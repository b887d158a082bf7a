#pragma once

#include "files/proof.h"
#include "platform/filereading.h"
#include "platform/filetransfer.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>

/// The hash of bytes that come piece by piece: XXH3 of 128 bits, in the byte order that is the same
/// on every machine. It finds damage; it is no proof against somebody who makes two files alike.
class ContentHash
{
public:
    static constexpr int bytes = 16;

    ContentHash();
    ~ContentHash();
    Q_DISABLE_COPY_MOVE(ContentHash)

    void add(const char *data, qint64 size);
    /// Of all that was added so far; as many bytes as the constant says.
    QByteArray result() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// What reading a file from its beginning to its end told.
struct ContentReading
{
    enum class Ending {
        Read,
        Cancelled, ///< on request
        Failed,    ///< it is not there, is no file, or could not be read to its end
        Changed,   ///< it was written to, or replaced, while it was read
    };

    Ending ending = Ending::Failed;
    QByteArray hash;    ///< empty unless read
    qint64 size = 0;    ///< bytes that were read
    QDateTime modified; ///< when the file was last written to, in UTC
    /// How far the bytes are those on the medium, and not in memory: Cache, Server or Medium; None
    /// unless read.
    Proof proof = Proof::None;

    bool isRead() const { return ending == Ending::Read; }
};

/// Reads the whole file at \a path and hashes it: past the system's memory, as far as that can be
/// had, unless \a way is the faster one through it. \a control is asked and told every few
/// megabytes. Blocks; for worker threads.
ContentReading readContent(const QString &path, const platform::TransferControl &control = {},
                           platform::FileReader::Way way = platform::FileReader::Way::PastCache);
