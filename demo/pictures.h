#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace demo {

// Makes material to import below the folder, and leaves alone what is there already:
//   camera-card/DCIM/100TESSA  IMG_0001.jpg … IMG_0011.jpg, IMG_0012.JPEG, and raw files, which are
//                              noise under a raw suffix
//   retouched                  one picture for each name of chosen, and IMG_0099.jpg, which nobody
//                              chose
// IMG_0004.jpg and IMG_0008.jpg lie on their side and say so in their orientation tag.
// Returns an empty text or what went wrong.
QString makeMaterial(const QString &folder, const QStringList &chosen);

// A believable photograph as a small JPEG, the same one for the same seed.
QByteArray inventedPicture(const QString &seed);
// The picture in the file, upright, as a small JPEG; empty when the file is missing or no picture.
QByteArray smallPicture(const QString &file);
// A picture of few bytes that would take 1.6 GB of memory: 20,000 × 20,000 pixels, PNG.
QByteArray hugePicture();

} // namespace demo
