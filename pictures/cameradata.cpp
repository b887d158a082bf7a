#include "pictures/cameradata.h"

#include <QtEndian>

namespace {

/// The camera's block as numbers at places. Nothing outside of it is read or written.
class ExifBlock
{
public:
    explicit ExifBlock(QByteArray *bytes) : bytes_(bytes), isBig_(bytes->startsWith("MM")) {}

    /// Whether the head is one; \a first is where the first directory starts.
    bool readHead(quint32 *first) const
    {
        constexpr quint32 magic = 42;
        const bool isKnown = isBig_ || bytes_->startsWith("II");
        if (!isKnown || !holds(0, 8) || number16(2) != magic)
            return false;
        *first = number32(4);
        return true;
    }

    bool holds(quint64 at, quint64 count) const { return at + count <= quint64(bytes_->size()); }

    quint32 number16(quint32 at) const
    {
        const char *from = bytes_->constData() + at;
        return isBig_ ? qFromBigEndian<quint16>(from) : qFromLittleEndian<quint16>(from);
    }

    quint32 number32(quint32 at) const
    {
        const char *from = bytes_->constData() + at;
        return isBig_ ? qFromBigEndian<quint32>(from) : qFromLittleEndian<quint32>(from);
    }

    void set16(quint32 at, quint16 value)
    {
        char *to = bytes_->data() + at;
        isBig_ ? qToBigEndian(value, to) : qToLittleEndian(value, to);
    }

    void set32(quint32 at, quint32 value)
    {
        char *to = bytes_->data() + at;
        isBig_ ? qToBigEndian(value, to) : qToLittleEndian(value, to);
    }

private:
    QByteArray *bytes_;
    const bool isBig_;
};

constexpr quint32 entryBytes = 12;
constexpr quint16 shortType = 3;
constexpr quint16 longType = 4;

enum Tag : quint32 {
    ImageWidth = 0x0100,
    ImageLength = 0x0101,
    Orientation = 0x0112,
    ExifDirectory = 0x8769,
    TakenAt = 0x9003,
    PixelXDimension = 0xa002,
    PixelYDimension = 0xa003,
};

/// One value in place of whatever the entry at \a at holds, which is no longer than it.
void setShort(ExifBlock *block, quint32 at, quint16 value)
{
    block->set16(at + 2, shortType);
    block->set32(at + 4, 1);
    block->set16(at + 8, value);
    block->set16(at + 10, 0);
}

void setLong(ExifBlock *block, quint32 at, int value)
{
    block->set16(at + 2, longType);
    block->set32(at + 4, 1);
    block->set32(at + 8, quint32(value));
}

/// Patches the directory at \a at. Where the one of the exposure starts goes to \a below, where the
/// place of the next one is told to \a next. False when the directory does not lie in the block.
bool patchDirectory(ExifBlock *block, quint32 at, const QSize &size, quint32 *below, quint32 *next)
{
    if (!block->holds(at, 2))
        return false;
    const quint32 entries = block->number16(at);
    const quint64 end = quint64(at) + 2 + quint64(entries) * entryBytes;
    if (!block->holds(0, end))
        return false;
    for (quint32 entry = at + 2; entry < end; entry += entryBytes) {
        switch (block->number16(entry)) {
        case Orientation:
            setShort(block, entry, 1);
            break;
        case ImageWidth:
        case PixelXDimension:
            setLong(block, entry, size.width());
            break;
        case ImageLength:
        case PixelYDimension:
            setLong(block, entry, size.height());
            break;
        case ExifDirectory:
            *below = block->number32(entry + 8);
            break;
        default:
            break;
        }
    }
    *next = quint32(end);
    return true;
}

/// What the entry of \a tag holds in its last four bytes, in the directory at \a at: a number, or
/// where the value starts. 0 when there is none, or it does not lie in the block.
quint32 valueOf(const ExifBlock &block, quint32 at, quint32 tag)
{
    if (at == 0 || !block.holds(at, 2))
        return 0;
    const quint64 end = quint64(at) + 2 + quint64(block.number16(at)) * entryBytes;
    for (quint64 entry = at + 2; entry + entryBytes <= end; entry += entryBytes) {
        if (!block.holds(entry, entryBytes))
            return 0;
        if (block.number16(quint32(entry)) == tag)
            return block.number32(quint32(entry) + 8);
    }
    return 0;
}

bool isProfileFor(const QByteArray &profile, const char *colours)
{
    constexpr int headBytes = 128;
    return profile.size() > headBytes && profile.mid(36, 4) == "acsp" &&
           profile.mid(16, 4) == colours &&
           qFromBigEndian<quint32>(profile.constData()) == quint32(profile.size());
}

constexpr int largestSegment = 65533; // two bytes tell the length, and count

QByteArray segment(char mark, const QByteArray &content)
{
    const int length = content.size() + 2;
    return QByteArray("\xff") + mark + char(length >> 8) + char(length & 0xff) + content;
}

} // namespace

QByteArray exifOfUpright(QByteArray exif, const QSize &size)
{
    ExifBlock block(&exif);
    quint32 first = 0;
    quint32 below = 0;
    quint32 next = 0;
    if (!block.readHead(&first) || !patchDirectory(&block, first, size, &below, &next))
        return {};
    if (block.holds(next, 4))
        block.set32(next, 0);
    quint32 none = 0;
    if (below != 0)
        patchDirectory(&block, below, size, &none, &next);
    return exif;
}

QDateTime takenAt(QByteArray exif)
{
    const ExifBlock block(&exif);
    quint32 first = 0;
    if (!block.readHead(&first))
        return {};
    const QString format = QStringLiteral("yyyy:MM:dd HH:mm:ss");
    const quint32 at = valueOf(block, valueOf(block, first, ExifDirectory), TakenAt);
    if (at == 0 || !block.holds(at, quint64(format.size())))
        return {};
    return QDateTime::fromString(QString::fromLatin1(exif.mid(int(at), format.size())), format);
}

bool isGrayProfile(const QByteArray &profile)
{
    return isProfileFor(profile, "GRAY");
}

bool isRgbProfile(const QByteArray &profile)
{
    return isProfileFor(profile, "RGB ");
}

QByteArray withCameraData(QByteArray jpeg, const CameraData &data)
{
    constexpr char exifSegment = char(0xe1);
    constexpr char profileSegment = char(0xe2);
    const QByteArray exifMark("Exif\0\0", 6);
    const QByteArray profileMark("ICC_PROFILE\0", 12);
    QByteArray added;
    if (!data.exif.isEmpty() && data.exif.size() + exifMark.size() <= largestSegment)
        added += segment(exifSegment, exifMark + data.exif);
    const int room = largestSegment - profileMark.size() - 2;
    const int pieces = (data.profile.size() + room - 1) / room;
    for (int piece = 0; piece < pieces && pieces <= 255; ++piece)
        added += segment(profileSegment, profileMark + char(piece + 1) + char(pieces) +
                                             data.profile.mid(piece * room, room));
    // Behind the segment that names the file's format, where there is one.
    int at = 2;
    if (jpeg.mid(at, 2) == "\xff\xe0" && jpeg.size() > at + 4)
        at += 2 + uchar(jpeg.at(at + 2)) * 256 + uchar(jpeg.at(at + 3));
    return jpeg.insert(at, added);
}
