// What the service answers, through everything that reads it: bytes, parsed as replies are.
#include "app/account/loginreply.h"
#include "batchdelete/rules/deletionrequests.h"
#include "batchdelete/rules/deletionrules.h"
#include "cardcheck/rules/soughtorders.h"
#include "distribution/rules/distributionrequests.h"
#include "distribution/rules/photoidentity.h"
#include "fileimport/imported/originalrequests.h"
#include "fileimport/imported/photoplace.h"
#include "fileimport/rules/importmismatch.h"
#include "fileimport/rules/importrequests.h"
#include "fileimport/rules/importrules.h"
#include "files/pathgate.h"
#include "fuzz/harness.h"
#include "net/orderfiles.h"
#include "net/orderfolders.h"
#include "net/orderqueries.h"
#include "net/replyfields.h"
#include "orderbrowser/rules/orderlisting.h"
#include "photoimport/orders/foundorders.h"

#include <QJsonDocument>
#include <QJsonObject>

using fuzzing::require;

namespace {

const orderqueries::SearchedBranch &branch()
{
    static const orderqueries::SearchedBranch one{QStringLiteral("7"),
                                                  QStringLiteral("\\\\nas\\import")};
    return one;
}

/// No element is counted twice or lost on the way.
template <typename Order> void requireAccounted(const orderqueries::FoundOrders<Order> &found)
{
    require(found.orders.size() + found.unlisted.size() <= found.elements,
            "no more orders than elements");
    require(found.isList || found.elements == 0, "no elements without a list");
    for (const Order &order : found.orders)
        require(!order.identity().isEmpty(), "what is listed can be told from all others");
}

/// Where an order's files go, whatever its values are: below the branch's root, unless the service
/// says elsewhere, which passes the gate before it is used.
void requireBelowRoot(const orderqueries::OrderInfo &order)
{
    const QString folder = orderqueries::importFolderOf(order, QString(), branch().publicPath);
    require(pathgate::isBelow(folder, branch().publicPath), "an order's folder is below the root",
            folder);
}

void readAccount(const QJsonObject &reply)
{
    LoginReply::read(reply);
    LoginReply::readSaved(reply);
    orderqueries::readShopSwitch(reply);
    orderqueries::readPersons(reply);
}

void readOrderLists(const QJsonObject &reply)
{
    const auto imports = importrequests::readOrders(reply, branch());
    requireAccounted(imports);
    for (const ImportOrder &order : imports.orders) {
        requireBelowRoot(order);
        importrules::importPathOf(order);
        photoStateText(order);
    }
    if (!imports.orders.isEmpty())
        importrules::ordersSharingFolder(imports.orders, 0);
    const auto photos = photoorders::readOrders(reply, branch());
    requireAccounted(photos);
    for (const PhotoOrder &order : photos.orders)
        require(!order.displayName().isNull(), "an order has a name");
    photoorders::merged(photos.orders, photos.orders);
    requireAccounted(distributionrequests::readOrders(reply, branch()));
    requireAccounted(soughtorders::read(reply, branch()));

    auto deletions = deletionrequests::readOrders(reply, branch());
    requireAccounted(deletions);
    for (BatchDeleteOrderInfo &order : deletions.orders)
        order.checked = true;
    const QStringList roots{branch().publicPath};
    const QStringList refusals = deletionrules::refusals(deletions.orders, roots);
    for (int index = 0; index < refusals.size(); ++index) {
        const QString path = deletions.orders.at(index).netPath;
        require(!refusals.at(index).isEmpty() || (pathgate::flawOf(path) == pathgate::Flaw::None &&
                                                  !pathgate::isBelow(branch().publicPath, path)),
                "no folder is emptied that the gate refuses or that holds the root", path);
    }

    const OrderListing listing = orderlistings::read(reply, branch());
    require(listing.orders.size() + listing.unreadable <= listing.elements,
            "no more orders than elements");
    orderlistings::merged({listing, listing});
    orderfolders::read(reply, branch());
}

void readPhotoLists(const QJsonObject &reply)
{
    orderfiles::isStale(reply, QStringLiteral("1"));
    orderfiles::readList(reply);
    orderfiles::readWithOrder(reply, {branch().id, QStringLiteral("1"), QStringLiteral("2")});
    const auto photos = originalrequests::withId(originalrequests::readListing(reply));
    const PhotoPlace place(QStringLiteral("\\\\nas\\import\\2024\\05\\07-1-A"), branch().publicPath,
                           {});
    for (const PhotoEntry &photo : photos) {
        require(!place.holds(photo.localPath) ||
                    pathgate::isBelow(photo.localPath, branch().publicPath),
                "a photo that may be removed is below the root", photo.localPath);
    }
    const auto batch = importrequests::readBatchReply(reply);
    importmismatch::notice(ImportMode::Originals, {}, batch);
    importmismatch::files(ImportMode::Originals, {}, batch);
}

void readDetail(const QJsonObject &reply)
{
    const OrderDetail detail = readOrderDetail(reply);
    const OrderPhotos photos(detail);
    const PhotoVersions versions(photos, detail.imagesJingxiu);
    for (const DetailPhoto &photo : detail.imagesJingxiu)
        versions.ownersOf(photo);
    for (const DetailProduct &product : detail.products()) {
        require(photosById(product).size() >= product.imgs.size(), "no photo of a product is lost");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QJsonObject reply = QJsonDocument::fromJson(fuzzing::bytesOf(data, size)).object();
    reply::isSuccess(reply);
    reply::text(reply, QStringLiteral("message"));
    readAccount(reply);
    readOrderLists(reply);
    readPhotoLists(reply);
    readDetail(reply);
    return 0;
}
