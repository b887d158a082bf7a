#pragma once

#include "pictures/jpeghead.h"
#include "pictures/picturebounds.h"

#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <QString>

#include <memory>
#include <mutex>
#include <optional>

/// Reads one picture: whole (what ends early is none), within bounds (which are looked at before
/// memory is taken), in its colours, and upright when asked to. Every picture from outside that the
/// program decodes comes from here.
///
/// While a very large picture is read, and until its reader is gone, other threads wait with
/// theirs. Blocks; for worker threads.
class PictureReader
{
public:
    enum class Problem {
        None,
        NoPicture,  ///< cannot be read as one; it may not be there at all
        TooLarge,   ///< claims more pixels than may be read
        Incomplete, ///< ends early
    };

    /// A file.
    PictureReader(const QString &path, const PictureBounds &bounds);
    /// What came over the network. Of kinds that photos come in alone: other readers that are
    /// installed, such as for drawings, may fetch or compute what they like.
    explicit PictureReader(const QByteArray &bytes,
                           const PictureBounds &bounds = picturebounds::shown);

    bool canRead() const { return reader_ && reader_->canRead(); }
    QByteArray format() const { return format_; }
    /// As it is stored; invalid when that is not known. Not bounded.
    QSize size() const { return reader_ ? reader_->size() : QSize(); }
    /// The same once it is turned upright.
    QSize uprightSize() const;
    /// How it is to be turned.
    QImageIOHandler::Transformations transformation() const;

    /// What a JPEG says besides its pixels; nothing for other kinds.
    const CameraData &cameraData() { return head().cameraData; }

    /// Brings the picture, as it is stored, to \a size while it is read.
    void setScaledSize(const QSize &size) { scaledSize_ = size; }
    /// Takes what there is of a JPEG that ends early: to be looked at, never to be kept.
    void acceptIncomplete() { acceptsIncomplete_ = true; }

    /// As it is stored. Null when it cannot be had; problem() says why.
    QImage read();
    /// The same, turned upright.
    QImage readUpright();
    Problem problem() const { return problem_; }

private:
    std::unique_ptr<QIODevice> open() const;
    void start();
    const JpegHead &head();
    qint64 pixelsHeld();
    Problem refusal();

    const QString path_;
    const QByteArray bytes_;
    const PictureBounds bounds_;
    QSize scaledSize_;
    bool acceptsIncomplete_ = false;
    Problem problem_ = Problem::None;
    std::unique_ptr<QIODevice> device_;
    std::unique_ptr<QImageReader> reader_; ///< none when there is nothing to read
    QByteArray format_;
    std::optional<JpegHead> head_;
    std::unique_lock<std::mutex> turn_;
};

/// \a image for the screen and for print, neither of which looks at profiles.
QImage inScreenColours(const QImage &image);
