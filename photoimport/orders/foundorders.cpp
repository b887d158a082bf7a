#include "photoimport/orders/foundorders.h"

#include "files/paths.h"
#include "net/replyfields.h"
#include "photoimport/rules/photorules.h"

#include <QHash>

using orderqueries::OrderPhoto;

namespace photoorders {

namespace {

/// Those of the service's entries that lie where the tool puts what it imports.
QVector<OrderPhoto> importedAmong(const PhotoOrder &order, PhotoMode photoMode)
{
    const QString home = order.folder();
    if (home.isEmpty())
        return {};
    const bool trial = photoMode == PhotoMode::TrialVideos;
    PhotoInfo photo;
    photo.kind = photorules::mainKind(photoMode);
    QVector<OrderPhoto> imported;
    for (const OrderPhoto &entry : trial ? order.info.imagesTaipian : order.info.images) {
        photo.fileName = entry.imgName;
        if (wirePathKey(entry.localPath) == wirePathKey(photorules::outputPathOf(home, photo)))
            imported.append(entry);
    }
    return imported;
}

} // namespace

FoundOrders readOrders(const QJsonObject &reply, const orderqueries::SearchedBranch &branch)
{
    const QString openypml = reply::text(reply, QStringLiteral("openypml"));
    const QString delyp = reply::text(reply, QStringLiteral("delyp"));
    return orderqueries::readFoundOrders<PhotoOrder>(reply, [&](const QJsonObject &element) {
        PhotoOrder order;
        OrderInfo &info = order.info;
        static_cast<orderqueries::OrderInfo &>(info) = orderqueries::readOrderInfo(element, branch);
        info.openypml = openypml;
        info.delyp = delyp;
        info.importPublicPath = branch.publicPath;
        info.importPath = info.netPath;
        for (const auto mode :
             {PhotoMode::Photos, PhotoMode::TrialVideos, PhotoMode::RetouchedVideos})
            order.importedByMode[std::size_t(mode)] = importedAmong(order, mode);
        return order;
    });
}

QVector<PhotoOrder> merged(const QVector<PhotoOrder> &before, const QVector<PhotoOrder> &found)
{
    QHash<OrderIdentity, int> positions;
    for (int index = 0; index < found.size(); ++index)
        positions.insert(found.at(index).identity(), index);
    QVector<PhotoOrder> kept;
    QVector<PhotoOrder> listed = found;
    for (const PhotoOrder &order : before) {
        const int position = positions.value(order.identity(), -1);
        if (position >= 0) {
            listed[position].filesByMode = order.filesByMode;
            listed[position].folderRefusal = order.folderRefusal;
        } else if (order.hasUnfinishedFiles()) {
            kept.append(order);
        }
    }
    return kept + listed;
}

} // namespace photoorders
