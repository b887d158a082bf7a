#pragma once

#include <QString>
#include <QtGlobal>

/// One file that was to be written, and what became of it. Paths as this machine writes them.
struct FileOutcome
{
    enum class Ending : quint8 {
        NotWritten = 0,
        Written,
        IsSource, ///< the target is the file it was to be copied from
    };
    enum class Kind : quint8 {
        Copy,    ///< byte for byte
        Upright, ///< a copy that was turned
        Made,    ///< here, of what the service says: texts, sheets, pictures over the network
    };

    QString target;
    QString source; ///< empty for Made
    Ending ending = Ending::NotWritten;
    Kind kind = Kind::Copy;
    // Of the target as it was written.
    qint64 size = 0;
    qint64 modified = 0; ///< ms since 1970, UTC

    bool isWritten() const { return ending == Ending::Written; }
};
