#include "photoimport/imageoperations.h"
namespace imageoperations {
int readExifOrientation(const QString &)
{
    return 1;
}
QImage rotateImageByExif(const QImage &image, int)
{
    return image;
}
QSize calculateIntermediateSize(const QSize &original, int)
{
    return original;
}
bool rotateCopyImage(const QString &, const QString &)
{
    return false;
}
bool copyOriginal(const QString &, const QString &)
{
    return false;
}
bool compressImage(const QString &, const QString &, int, DecodedSources *)
{
    return false;
}
} // namespace imageoperations
