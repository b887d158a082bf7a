#pragma once

#include <QDateTime>
#include <QFileInfo>
#include <QImage>
#include <QSize>
#include <QString>

struct JobFailure;

/// What copying originals and making size variants have in common.
namespace imageoperations {

void log(const QString &line);
void log(const QString &line, const QString &path);

int longSideOf(const QSize &size);
/// \a size with its long side brought to \a side; the other side rounded down.
QSize withLongSide(const QSize &size, int side);

/// In lower case.
QString suffixOf(const QString &path);

/// Notes why an operation failed, for whoever wants to know; always false.
bool failed(JobFailure *failure, const QString &reason);

QString notReplacedText();

/// What shows that a file was written to.
struct Stamp
{
    explicit Stamp(const QString &path) : Stamp(QFileInfo(path)) {}
    explicit Stamp(const QFileInfo &file) : bytes(file.size()), modified(file.lastModified()) {}
    bool operator!=(const Stamp &other) const
    {
        return bytes != other.bytes || modified != other.modified;
    }

    qint64 bytes;
    QDateTime modified;
};

/// \a size has the proportions of \a image as nearly as whole pixels can. Fitting the picture in by
/// its own, which are rounded, too, would cost lines of pixels at the long side.
QImage scaled(const QImage &image, const QSize &size);

} // namespace imageoperations
