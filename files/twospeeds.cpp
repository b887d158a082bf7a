#include "files/twospeeds.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 stretchMs = 1000;
/// A share that stands still for minutes does not do so for every file to come.
constexpr qint64 longestStretchMs = 10000;
constexpr double fadingMs = 60000;
constexpr double leastMs = 2000;
/// Where all files are of one size their costs cannot be told apart; the bytes get it all then.
constexpr double leaning = 0.02;

} // namespace

void TwoSpeeds::Sums::age(double factor)
{
    for (double *sum :
         {&files, &bytes, &ms, &filesFiles, &filesBytes, &bytesBytes, &filesMs, &bytesMs})
        *sum *= factor;
}

void TwoSpeeds::Sums::add(double moreFiles, double moreBytes, double moreMs)
{
    files += moreFiles;
    bytes += moreBytes;
    ms += moreMs;
    filesFiles += moreFiles * moreFiles;
    filesBytes += moreFiles * moreBytes;
    bytesBytes += moreBytes * moreBytes;
    filesMs += moreFiles * moreMs;
    bytesMs += moreBytes * moreMs;
}

void TwoSpeeds::begin(qint64 ms, int files, qint64 bytes)
{
    holding_ = false;
    beginMs_ = ms;
    beginFiles_ = files;
    beginBytes_ = bytes;
}

void TwoSpeeds::add(qint64 ms, int files, qint64 bytes)
{
    const bool wentBack = files < lastFiles_ || bytes < lastBytes_;
    if (holding_ || wentBack) {
        progressMs_ = ms;
        begin(ms, files, bytes);
    } else if (files > lastFiles_ || bytes > lastBytes_) {
        progressMs_ = ms;
    }
    lastMs_ = ms;
    lastFiles_ = files;
    lastBytes_ = bytes;
    const qint64 passed = ms - beginMs_;
    if (passed < stretchMs || (files == beginFiles_ && bytes == beginBytes_))
        return;
    const auto counted = double(std::min(passed, longestStretchMs));
    sums_.age(std::exp(-counted / fadingMs));
    sums_.add(files - beginFiles_, double(bytes - beginBytes_), counted);
    begin(ms, files, bytes);
}

void TwoSpeeds::hold()
{
    holding_ = true;
    progressMs_ = lastMs_;
}

qint64 TwoSpeeds::msLeft(int files, qint64 bytes) const
{
    if (sums_.ms < leastMs)
        return -1;
    const double filesFiles = sums_.filesFiles * (1 + leaning);
    const double both = filesFiles * sums_.bytesBytes - sums_.filesBytes * sums_.filesBytes;
    double perFile = 0;
    double perByte = 0;
    if (both > 0) {
        perFile = (sums_.filesMs * sums_.bytesBytes - sums_.filesBytes * sums_.bytesMs) / both;
        perByte = (filesFiles * sums_.bytesMs - sums_.filesBytes * sums_.filesMs) / both;
    }
    if (sums_.bytesBytes <= 0 || perByte < 0) {
        perByte = 0;
        perFile = sums_.filesMs / sums_.filesFiles;
    } else if (sums_.filesFiles <= 0 || perFile < 0) {
        perFile = 0;
        perByte = sums_.bytesMs / sums_.bytesBytes;
    }
    // Speeds that vary would make such a line too hopeful: all that was done took all the time.
    const double scale = sums_.ms / (perFile * sums_.files + perByte * sums_.bytes);
    return qRound64(scale *
                    (perFile * std::max(files, 0) + perByte * double(std::max<qint64>(bytes, 0))));
}
