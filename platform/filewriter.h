#pragma once

#include <QString>

#include <memory>

namespace platform {

/// A new file that is written once, from its beginning to its end. What was begun is left behind:
/// removing it is the caller's. Its members block; for worker threads.
class FileWriter
{
public:
    /// The file is not open afterwards when something stands at \a path, or nothing can be written
    /// there. \a expectedBytes help the system to lay it out in one piece.
    FileWriter(const QString &path, qint64 expectedBytes);
    ~FileWriter();
    Q_DISABLE_COPY_MOVE(FileWriter)

    bool isOpen() const;
    /// Writes the next bytes: past the system's memory where that can be had and \a data are those
    /// of a FileReader, so that the flush at the end finds little left to do.
    bool write(const char *data, qint64 size);
    /// Gives the file its time of modification (nanoseconds since 1970, UTC), which not every disk
    /// keeps, and returns when all is on the medium. Nothing can be written after that.
    bool finish(qint64 modified);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace platform
