#pragma once

#include <QString>

/// Whether the picture at \a target looks like the one at \a source made upright: the source is one
/// that is turned, the target is not, both are whole, of one size once upright and taken at one
/// moment, and show the same. Bytes prove nothing between two such files; this is what can be told
/// when nobody has recorded the making. Reads both at a small size. Blocks; for worker threads.
bool looksUprightCopyOf(const QString &source, const QString &target);
