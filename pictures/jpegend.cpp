#include "pictures/jpegend.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <cstring>

namespace {

/// The bytes of a file, one after the other.
class Bytes
{
public:
    explicit Bytes(const QString &path) : file_(path)
    {
        file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    /// The next byte; -1 at the end of the file.
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

    void skip(int count)
    {
        const int here = std::min(count, end_ - at_);
        at_ += here;
        if (count > here)
            file_.seek(file_.pos() + count - here);
    }

private:
    bool fill()
    {
        at_ = 0;
        end_ = int(std::max<qint64>(0, file_.read(buffer_.data(), buffer_.size())));
        return end_ > 0;
    }

    static constexpr int blockBytes = 256 * 1024;

    QFile file_;
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

} // namespace

bool jpegReachesItsEnd(const QString &path)
{
    Bytes bytes(path);
    while (bytes.findBehind(markStart)) {
        int mark = bytes.next();
        while (mark == uchar(markStart))
            mark = bytes.next();
        if (mark == endOfImage)
            return true;
        if (mark < 0)
            return false;
        if (standsAlone(mark))
            continue;
        const int high = bytes.next();
        const int low = bytes.next();
        if (low < 0)
            return false;
        bytes.skip(std::max(0, high * 256 + low - 2));
    }
    return false;
}
