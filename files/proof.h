#pragma once

#include <QMetaType>
#include <QString>

/// What is known of a copy beyond that writing it did not fail. The numbers are kept on disk: new
/// ones are added, none is changed.
enum class Proof : quint8 {
    None = 0,   ///< nothing
    Size = 1,   ///< it is as large as its source
    Cache = 2,  ///< it was read back and equals its source; perhaps out of this machine's memory
    Server = 3, ///< it was read back from the server of its share and equals its source
    Medium = 4, ///< it was read back from this machine's disk and equals its source
    /// It is no copy of its source's bytes but a picture made of them, which decodes whole and in
    /// the size that was to be.
    Derived = 5,
};

/// Whether \a proof is that of equal bytes, read past this machine's memory.
constexpr bool isReadPastCache(Proof proof)
{
    return proof == Proof::Server || proof == Proof::Medium;
}

/// What is proved of the file's bytes, no more: a copy whose size alone was compared is not called
/// verified. Empty when nothing is.
QString proofText(Proof proof);

Q_DECLARE_METATYPE(Proof)
