#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>

/// What the fuzzers share. Each is a program of its own with one entry, LLVMFuzzerTestOneInput(),
/// which may be called with any bytes.
namespace fuzzing {

/// Ends the program as a finding, telling \a what and the input's \a detail, unless it \a holds.
void require(bool holds, const char *what, const QString &detail = QString());

/// The input without copying it; good for as long as the input is.
QByteArray bytesOf(const uint8_t *data, size_t size);
/// As UTF-8, and what is none of it as a mark for that.
QString textOf(const uint8_t *data, size_t size);
/// As UTF-16, with halves of characters among it, as names on a disk of Windows' may have them.
QString wideTextOf(const uint8_t *data, size_t size);
/// The input's lines.
QStringList linesOf(const uint8_t *data, size_t size);

/// A folder of this process, removed at its end.
QString scratchFolder();
/// The input as the content of the file \a name there; its path.
QString scratchFile(const QString &name, const QByteArray &content);

/// Whether \a name is one component of a path, on this system and on Windows: nothing that leads
/// elsewhere, opens a device or is refused.
bool isOneComponent(const QString &name);

} // namespace fuzzing
