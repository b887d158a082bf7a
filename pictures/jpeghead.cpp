#include "pictures/jpeghead.h"

#include <QIODevice>
#include <QMap>

#include <algorithm>

namespace {

constexpr int endOfImage = 0xd9;
constexpr int startOfScan = 0xda;
constexpr int exifSegment = 0xe1;
constexpr int profileSegment = 0xe2;
constexpr int largestProfile = 4 * 1024 * 1024;

const QByteArray exifMark("Exif\0\0", 6);
const QByteArray profileMark("ICC_PROFILE\0", 12);

/// -1 at the end.
int nextByte(QIODevice *device)
{
    char byte = 0;
    return device->getChar(&byte) ? uchar(byte) : -1;
}

/// The next mark, whatever lies before it; -1 at the end.
int nextMark(QIODevice *device)
{
    int byte = nextByte(device);
    while (byte >= 0 && byte != 0xff)
        byte = nextByte(device);
    while (byte == 0xff)
        byte = nextByte(device);
    return byte;
}

bool isFrame(int mark)
{
    // The three others in this range are tables.
    return mark >= 0xc0 && mark <= 0xcf && mark != 0xc4 && mark != 0xc8 && mark != 0xcc;
}

bool isProgressive(int frame)
{
    return (frame & 3) == 2;
}

/// The pieces in their order, when all are there.
QByteArray joined(const QMap<int, QByteArray> &pieces, int wanted)
{
    QByteArray whole;
    if (pieces.size() == wanted && !pieces.isEmpty() && pieces.firstKey() == 1 &&
        pieces.lastKey() == wanted) {
        for (const QByteArray &piece : pieces)
            whole += piece;
    }
    return whole;
}

} // namespace

JpegHead readJpegHead(QIODevice *device)
{
    JpegHead head;
    QMap<int, QByteArray> profile;
    int profilePieces = 0;
    qint64 profileBytes = 0;
    if (device->read(2) != "\xff\xd8")
        return head;
    for (int mark = nextMark(device); mark > 0 && mark != endOfImage; mark = nextMark(device)) {
        const int high = nextByte(device);
        const int low = nextByte(device);
        const int length = high * 256 + low - 2;
        if (low < 0 || length < 0)
            break;
        const bool wanted =
            mark == exifSegment || mark == profileSegment || mark == startOfScan || isFrame(mark);
        if (!wanted) {
            device->skip(length);
            continue;
        }
        const QByteArray segment = device->read(length);
        if (segment.size() < length)
            break;
        const auto byte = [&segment](int at) {
            return at < segment.size() ? int(uchar(segment.at(at))) : 0;
        };
        if (isFrame(mark)) {
            head.components = byte(5);
            head.heldWhole = isProgressive(mark);
        } else if (mark == startOfScan) {
            head.heldWhole = head.heldWhole || byte(0) < head.components;
            break;
        } else if (mark == exifSegment && head.cameraData.exif.isEmpty() &&
                   segment.startsWith(exifMark)) {
            head.cameraData.exif = segment.mid(exifMark.size());
        } else if (mark == profileSegment && segment.startsWith(profileMark)) {
            const int numbers = profileMark.size();
            profileBytes += length;
            if (profileBytes <= largestProfile)
                profile.insert(byte(numbers), segment.mid(numbers + 2));
            profilePieces = byte(numbers + 1);
        }
    }
    head.cameraData.profile = joined(profile, profilePieces);
    return head;
}
