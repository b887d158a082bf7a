#include "net/orderfolders.h"

#include "net/replyfields.h"

#include <QHash>

#include <algorithm>

namespace orderfolders {

namespace {

QHash<OrderIdentity, QVector<OrderFolder>> &store()
{
    static QHash<OrderIdentity, QVector<OrderFolder>> instance;
    return instance;
}

OrderFolder folderOf(const QJsonObject &element, const orderqueries::SearchedBranch &branch)
{
    const orderqueries::OrderInfo order = orderqueries::readOrderHead(element, branch);
    const bool isSomewhere = !order.netPath.isEmpty() || !branch.publicPath.isEmpty();
    return {order.identity(), order.orderPayForKey, order.serviceTimes,
            isSomewhere ? orderqueries::importFolderOf(order, order.netPath, branch.publicPath)
                        : QString()};
}

} // namespace

QVector<OrderFolder> read(const QJsonObject &reply, const orderqueries::SearchedBranch &branch)
{
    const orderqueries::OrderElements elements = orderqueries::orderElements(reply);
    const QVector<QJsonObject> all = elements.listed + elements.unlisted;
    QVector<OrderFolder> folders;
    for (const QJsonObject &element : all) {
        const OrderFolder folder = folderOf(element, branch);
        if (!folder.path.isEmpty())
            folders.append(folder);
    }
    return folders;
}

void remember(const QVector<OrderFolder> &folders)
{
    for (const OrderFolder &folder : folders) {
        if (!folder.order.isEmpty())
            store().remove(folder.order);
    }
    for (const OrderFolder &folder : folders) {
        QVector<OrderFolder> &same = store()[folder.order];
        // Nobody knows which of those without an id is which; each folder of theirs counts.
        if (std::none_of(same.cbegin(), same.cend(),
                         [&folder](const OrderFolder &other) { return other.path == folder.path; }))
            same.append(folder);
    }
}

QVector<OrderFolder> known()
{
    QVector<OrderFolder> all;
    for (const QVector<OrderFolder> &folders : qAsConst(store()))
        all += folders;
    return all;
}

} // namespace orderfolders
