#pragma once

#include <QByteArray>

class QIODevice;

/// Whether the picture of the kind \a format (as the reader of images names it) on \a device goes
/// on to its end. Readers fill up what a file cut short lacks, with grey or black, and call it
/// read; a photo must not be taken for whole then. True for kinds whose readers notice by
/// themselves. What follows the end, as some cameras write it, does not matter. Reads from the
/// start of \a device, all of it. Blocks; for worker threads.
bool reachesItsEnd(QIODevice *device, const QByteArray &format);
