#pragma once

#include "distribution/plan/distributiontask.h"
#include "distribution/plan/plannedpictures.h"
#include "distribution/rules/designfilesplittypes.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/// The check boxes under "下载目录选项".
struct DownloadOptions
{
    bool originals = false; ///< 原始档: the photos as shot, with the raw files beside them
    bool fullSize = false;  ///< 原图
    bool basic = false;     ///< 简修
    bool basicWithRejected = false; ///< 简修含汰片
    bool retouched = false;         ///< 精修

    bool any() const { return originals || fullSize || basic || basicWithRejected || retouched; }
};

/// What is ticked when the card's window opens.
DownloadOptions defaultOptions(DesignFileSplitTypes type);

/// What one order is planned from. Paths are as this machine writes them.
struct PlanRequest
{
    DesignFileSplitTypes type = DesignFileSplitTypes::Distribution;
    DownloadOptions options;
    OrderDetailPtr detail;
    QString orderFolder; ///< ends with a slash
    /// Of detail->products(), one each, without a slash at the end; needed for 设计分件 alone.
    QStringList productFolders;
    QSet<QString> leftOut; ///< keys of chosen photos that the user does not want
};

/// A picture that comes over the network.
struct ImageFetch
{
    QString url;
    DistributionTask store; ///< what to do with it; its data is what was fetched
};

/// All that is to be done for one order, before its products are made.
struct OrderPlan
{
    QVector<DistributionTask> tasks; ///< independent of each other
    QVector<ImageFetch> fetches;
    PlannedPictures pictures;
    bool makesProducts = false; ///< product folders and the sheet follow
    QStringList problems;       ///< what cannot be done, a line each
};

/// Raw files beside the photo at a path in wire form. Touches the disk.
using FindRaws = std::function<QStringList(const QString &photoPath)>;

/// Decides what is written for an order. No two tasks have the same target: a photo that would land
/// on another's name gets a number behind its own, and the user is told. Blocks in \a findRaws
/// alone.
OrderPlan planOrder(const PlanRequest &request, const FindRaws &findRaws);

/// The path of the photo's thumbnail, as the reply writes it.
QString thumbnailSource(const DetailPhoto &photo);
/// Name of a crop's file in 裁剪/: each product of an order may have a crop of its own of one
/// photo.
QString cropFileName(const DetailProduct &product, const DetailPhoto &photo);
/// Address of the photo's crop; empty when the photo goes in uncropped.
QString cropUrl(const DetailProduct &product, const DetailPhoto &photo);
