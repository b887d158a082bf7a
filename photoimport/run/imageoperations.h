#pragma once

#include <QImage>
#include <QSize>
#include <QString>

struct JobFailure;
struct WrittenOriginal;

/// Copying originals in the photo import, and turning pictures upright; making size variants of
/// them is sizevariants.h. The operations block, for worker threads, and log every decision.
/// Targets are written under a temporary name and renamed, so that a target name never holds a
/// partial picture. A source that is written to meanwhile is no source: the operation fails. Those
/// that take a \a failure tell there why they failed, those that take a \a written what is known of
/// the file that is there. Files are read back before they get their names, unless the installation
/// wants their sizes compared alone.
namespace imageoperations {

constexpr qint64 plainCopyBytes = 104857600;  ///< originals above are copied as they are
constexpr qint64 largeImageBytes = 31457280;  ///< originals above are read reduced
constexpr qint64 largeImagePixels = 50000000; ///< pictures above are read reduced
constexpr int reducedReadSide = 4096;         ///< long side of an original read reduced
constexpr qint64 veryLargePixels = 100000000; ///< upright originals above are capped
constexpr int veryLargeOutputSide = 8192;     ///< long side of those
constexpr qint64 slowMs = 10000;              ///< what takes longer is logged
constexpr int originalQuality = 95;           ///< JPEG quality of upright originals

/// 1, 3 or 6. The reader's eight values are folded on purpose: every quarter turn is reported as 6,
/// every mirroring as 3. 1 for what cannot be read.
int readExifOrientation(const QString &path);

/// \a image turned as the table of its orientation (1 to 8) says; null when it is null.
QImage rotateImageByExif(const QImage &image, int orientation);

/// The size that an upright original gets that had to be read reduced; \a original is its own.
QSize uprightSize(const QSize &original);

/// Copies an original so that it stands upright without an orientation tag. Whatever goes wrong
/// with the picture, the file is copied byte for byte; false only when that fails, too.
bool rotateCopyImage(const QString &source, const QString &target, JobFailure *failure = nullptr,
                     WrittenOriginal *written = nullptr);

/// The original copy: byte for byte when it stands upright, otherwise rotateCopyImage().
bool copyOriginal(const QString &source, const QString &target, JobFailure *failure = nullptr,
                  WrittenOriginal *written = nullptr);

/// Copies byte for byte, with nothing of the source or an earlier target looked at before.
bool copyBytes(const QString &source, const QString &target, JobFailure *failure,
               WrittenOriginal *written);

} // namespace imageoperations
