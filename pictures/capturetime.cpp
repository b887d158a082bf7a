#include "pictures/capturetime.h"

#include "pictures/jpeghead.h"

#include <QFile>

QDateTime readCaptureTime(const QString &path)
{
    constexpr int rawHeadBytes = 128 * 1024; // cameras put their data in front of the pictures
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    if (file.peek(2) == "\xff\xd8")
        return takenAt(readJpegHead(&file).cameraData.exif);
    return takenAt(file.read(rawHeadBytes));
}
