#pragma once

#include <QByteArray>

namespace demo {

// The JPEG with an orientation tag (EXIF, 1 to 8) put in front of what it holds; Qt's own writer
// turns the pixels instead. A tag that the JPEG has already is not looked for.
QByteArray withOrientation(QByteArray jpeg, int orientation);

} // namespace demo
