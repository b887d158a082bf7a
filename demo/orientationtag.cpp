#include "demo/orientationtag.h"

namespace demo {

QByteArray withOrientation(QByteArray jpeg, int orientation)
{
    // An application segment with one big-endian directory that has a single short value.
    QByteArray segment = QByteArray::fromHex("ffe10022457869660000"
                                             "4d4d002a00000008"
                                             "0001011200030000000100000000"
                                             "00000000");
    constexpr int valueOffset = 29;
    constexpr int startOfImageSize = 2;
    segment[valueOffset] = static_cast<char>(orientation);
    return jpeg.insert(startOfImageSize, segment);
}

} // namespace demo
