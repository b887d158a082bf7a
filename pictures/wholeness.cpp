#include "pictures/wholeness.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace {

/// The bytes of a device, one after the other.
class Bytes
{
public:
    explicit Bytes(QIODevice *device) : device_(device) {}

    /// The next byte; -1 at the end.
    int next()
    {
        if (at_ == end_ && !fill())
            return -1;
        return uchar(buffer_[at_++]);
    }

    /// Goes on behind the next byte of this value; false when there is none.
    bool findBehind(char byte)
    {
        while (at_ < end_ || fill()) {
            const char *from = buffer_.constData() + at_;
            if (const void *found = std::memchr(from, byte, size_t(end_ - at_))) {
                at_ += int(static_cast<const char *>(found) - from) + 1;
                return true;
            }
            at_ = end_;
        }
        return false;
    }

    /// False when there are not as many.
    bool skip(int count)
    {
        while (count > end_ - at_) {
            count -= end_ - at_;
            if (!fill())
                return false;
        }
        at_ += count;
        return true;
    }

private:
    bool fill()
    {
        at_ = 0;
        end_ = int(std::max<qint64>(0, device_->read(buffer_.data(), buffer_.size())));
        return end_ > 0;
    }

    static constexpr int blockBytes = 256 * 1024;

    QIODevice *device_;
    QByteArray buffer_ = QByteArray(blockBytes, Qt::Uninitialized);
    int at_ = 0;
    int end_ = 0;
};

constexpr char markStart = char(0xff);
constexpr int startOfImage = 0xd8;
constexpr int endOfImage = 0xd9;

/// Marks that stand by themselves, without a segment: the escaped byte, restarts and the filler.
bool standsAlone(int mark)
{
    return mark == 0x00 || mark == 0x01 || (mark >= 0xd0 && mark <= startOfImage);
}

bool isWholeJpeg(Bytes *bytes)
{
    while (bytes->findBehind(markStart)) {
        int mark = bytes->next();
        while (mark == uchar(markStart))
            mark = bytes->next();
        if (mark == endOfImage)
            return true;
        if (mark < 0)
            return false;
        if (standsAlone(mark))
            continue;
        const int high = bytes->next();
        const int low = bytes->next();
        if (low < 0 || !bytes->skip(std::max(0, high * 256 + low - 2)))
            return false;
    }
    return false;
}

/// The bytes of a table of colours that a byte of flags announces.
int gifTableBytes(int flags)
{
    return (flags & 0x80) != 0 ? 3 << ((flags & 7) + 1) : 0;
}

bool skipGifBlocks(Bytes *bytes)
{
    int length = bytes->next();
    while (length > 0 && bytes->skip(length))
        length = bytes->next();
    return length == 0;
}

/// Its first image counts: no other is ever read.
bool isWholeGif(Bytes *bytes)
{
    constexpr int sizes = 10;
    constexpr int extension = 0x21;
    constexpr int image = 0x2c;
    if (!bytes->skip(sizes) || !bytes->skip(2 + gifTableBytes(bytes->next())))
        return false;
    int block = bytes->next();
    while (block == extension && bytes->skip(1) && skipGifBlocks(bytes))
        block = bytes->next();
    constexpr int place = 8;
    return block == image && bytes->skip(place) && bytes->skip(gifTableBytes(bytes->next()) + 1) &&
           skipGifBlocks(bytes);
}

bool isWholeBmp(QIODevice *device)
{
    constexpr int headBytes = 34;
    const QByteArray head = device->read(headBytes);
    if (head.size() < headBytes)
        return false;
    const auto number = [&head](int at) { return qFromLittleEndian<quint32>(head.data() + at); };
    constexpr quint32 newHead = 40;
    const quint32 packing = number(30);
    const bool isPlain = packing == 0 || packing == 3;
    if (number(14) < newHead || !isPlain)
        return device->size() >= number(2); // as it says of itself
    const qint64 bits = qFromLittleEndian<quint16>(head.data() + 28);
    const qint64 line = (qint64(qint32(number(18))) * bits + 31) / 32 * 4;
    const qint64 lines = std::abs(qint64(qint32(number(22))));
    const qint64 pixels = device->size() - number(10);
    // The head claims what it likes: their product may be no number.
    return pixels >= 0 && (line <= 0 || lines <= pixels / line);
}

} // namespace

bool reachesItsEnd(QIODevice *device, const QByteArray &format)
{
    device->seek(0);
    if (format == "bmp")
        return isWholeBmp(device);
    Bytes bytes(device);
    if (format == "jpeg")
        return isWholeJpeg(&bytes);
    return format != "gif" || isWholeGif(&bytes);
}
