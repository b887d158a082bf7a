#pragma once

#include <QDateTime>
#include <QString>

/// When a photo or a raw file was taken, in the camera's own local time, read from the head of the
/// file alone; invalid when it does not tell. Blocks; for worker threads.
QDateTime readCaptureTime(const QString &path);
