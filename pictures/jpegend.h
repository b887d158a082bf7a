#pragma once

#include <QString>

/// Whether the JPEG at \a path goes on to the mark of its end. The image reader fills up what a
/// file cut short lacks with grey and calls it read; a photo must not be taken for whole then. What
/// follows the end mark, as some cameras write it, does not matter. Blocks; for worker threads.
bool jpegReachesItsEnd(const QString &path);
