#pragma once

#include <QSize>
#include <QString>

class DecodedSources;
struct JobFailure;

/// The smaller copies of an original by which the service shows it. As the other image operations
/// (imageoperations.h) this blocks, logs every decision and leaves no partial picture.
namespace imageoperations {

constexpr int variantFullReadSide = 10000; ///< size variants: sides above are read reduced
constexpr int nearTargetPx = 9;            ///< a variant this near its size is not scaled
constexpr int conservativeReadSide = 2048; ///< cap of a side at the second attempt
constexpr int variantQuality = 90;         ///< quality of size variants
constexpr int variantSideLimit = 10000;    ///< no variant is made larger, to spare memory

/// The size at which a very large picture is read for a variant with the long side \a target.
QSize calculateIntermediateSize(const QSize &original, int target);

/// Makes the size variant with the long side \a longSide in pixels; smaller pictures are enlarged.
/// With \a shared, variants of one source made at about the same time decode it once.
bool compressImage(const QString &source, const QString &target, int longSide,
                   DecodedSources *shared = nullptr, JobFailure *failure = nullptr);

} // namespace imageoperations
