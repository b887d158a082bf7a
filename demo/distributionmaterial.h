#pragma once

#include "demo/studio.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace demo {

// What the studio's designers have made of an order's chosen photos, as it lies on the share:
//   <root>/选片/all|90|190|1920   the chosen photos and the archive photos in all their sizes
//   <root>/选片/all               and raw files beside the first two
//   <root>/汰片/all|90            the rejected ones
//   <root>/简修/all|90, <root>/精修/all|90   the retouched ones
struct DistributionPhoto
{
    QString id;
    QString name;
    QString folder;        // below the root: "选片"
    bool sideways = false; // lies on its side and says so in its orientation tag
    QString rawSuffix;     // of the raw file beside it; empty for none
};

struct DistributionSet
{
    QVector<DistributionPhoto> chosen;
    QVector<DistributionPhoto> archive;
    QVector<DistributionPhoto> rejected;
    QVector<DistributionPhoto> basic;     // of each chosen photo
    QVector<DistributionPhoto> retouched; // of the first two chosen photos
};

// Pure.
DistributionSet distributionSet(const Order &order);

// The name that a photo's file has on the share: a hostile name of a photo does not lead anywhere.
QString fileNameOnShare(const QString &photoName);

// Writes the set's pictures below the root (a path of this machine); what is there stays. What
// cannot be written is missing then, as on any share.
void writeDistributionSet(const DistributionSet &set, const QString &root);

// A small picture that differs by seed.
QByteArray smallPhoto(const QString &seed, int width, int height);

// A barcode (Code 39) of letters, digits, "-", "." and blanks; other characters are left out.
QByteArray barcodePicture(const QString &text);

} // namespace demo
