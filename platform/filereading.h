#pragma once

#include <QString>

#include <memory>

namespace platform {

/// What tells a file from one that was written to since, or that took its name.
struct FileStamp
{
    qint64 size = -1;    ///< bytes; -1 when the system told nothing at all
    qint64 modified = 0; ///< when it was last written to: nanoseconds since 1970, UTC
    quint64 id = 0;      ///< the file's number on its disk; 0 where disks number nothing

    bool isKnown() const { return size >= 0; }
    friend bool operator==(const FileStamp &one, const FileStamp &other)
    {
        return one.size == other.size && one.modified == other.modified && one.id == other.id;
    }
    friend bool operator!=(const FileStamp &one, const FileStamp &other) { return !(one == other); }
};

/// The stamp of the file that \a path names now. Touches the disk.
FileStamp stampOf(const QString &path);

/// Where the bytes came from that were read of a file, as far as the system promises it.
enum class ReadOrigin {
    Cache,  ///< perhaps from this machine's memory
    Server, ///< from a share's server, past this machine's memory
    Medium, ///< from a disk of this machine, past its memory
};

/// A file that is read once, from its beginning to its end. Its members block; for worker threads.
class FileReader
{
public:
    enum class Way {
        Cached,
        /// Past the memory in which the system keeps files, where the system can do it; through it,
        /// emptied first if that can be had, where it cannot. origin() tells.
        PastCache,
    };

    /// The file is not open afterwards when it cannot be read, or is none.
    FileReader(const QString &path, Way way);
    ~FileReader();
    Q_DISABLE_COPY_MOVE(FileReader)

    bool isOpen() const;
    /// The stamp that the open file has now.
    FileStamp stamp() const;
    /// Fetches the next bytes, a few megabytes, into data() and returns how many; 0 at the end, -1
    /// when reading failed. Only the last piece is not a multiple of 4096 bytes.
    qint64 read();
    const char *data() const;
    /// The weakest of all that was read so far.
    ReadOrigin origin() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace platform
