#include "net/branchsession.h"

BranchSession::BranchSession(QObject *parent)
    : QObject(parent)
    , identity_(orderqueries::Identity::fromAccount())
    , switchCall_(this)
    , personsCall_(this)
    , searchCall_(this)
{
}

void BranchSession::switchTo(const QString &shopId)
{
    cancelSearch(); // what the former branch answers is not wanted any more
    switchCall_.start(orderqueries::switchShopAction, orderqueries::switchShopBody(shopId),
                      [this, shopId](const ServiceReply &reply) { onSwitchReply(shopId, reply); });
}

void BranchSession::onSwitchReply(const QString &shopId, const ServiceReply &reply)
{
    const orderqueries::ShopSwitch shop = orderqueries::readShopSwitch(reply.object);
    if (!reply.isSuccess()) {
        emit switchFailed(reply, reply.msg);
        return;
    }
    if (shop.employeeId.isEmpty() || shop.superId.isEmpty()) {
        emit switchFailed(reply, QStringLiteral("分店信息不完整，请稍后重试"));
        return;
    }
    personsCall_.cancel(); // a switch that is refused leaves the branch its persons
    confirmed_ = true;
    identity_ = {shopId, shop.superId, shop.employeeId};
    publicPath_ = shop.importPublicPath;
    mayDeleteAllPhotos_ = shop.mayDeleteAllPhotos;
    distributionMode_ = shop.distributionMode;
    for (const ShopRecord &record : qAsConst(AccountContext::shopList)) {
        if (publicPath_.isEmpty() && record.id == shopId)
            publicPath_ = record.importPublicPath;
    }
    emit switched();
}

void BranchSession::search(const orderqueries::OrderSearch &search, const QString &role7id)
{
    this->search(orderqueries::orderListAction,
                 orderqueries::orderListBody(search, identity_, role7id));
}

void BranchSession::search(const QString &action, const QByteArray &body)
{
    ReplyReader reader;
    if (readOrders_) {
        const orderqueries::SearchedBranch branch{identity_.shopId, publicPath_};
        reader = [read = readOrders_, branch](const QJsonObject &reply) {
            return read(reply, branch);
        };
    }
    searchCall_.start(
        action, body, [this](const ServiceReply &reply) { emit searched(reply); }, reader);
}

void BranchSession::listPersons()
{
    personsCall_.start(orderqueries::personsAction, orderqueries::personsBody(identity_),
                       [this](const ServiceReply &reply) {
                           if (reply.isSuccess())
                               emit personsListed(orderqueries::readPersons(reply.object));
                           else
                               emit personsFailed(reply);
                       });
}

void BranchSession::cancel()
{
    switchCall_.cancel();
    cancelSearch();
}

void BranchSession::cancelSearch()
{
    searchCall_.cancel();
}
