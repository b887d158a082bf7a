#include "app/account/loginreply.h"

#include "net/orderqueries.h"
#include "net/replyfields.h"

namespace {

LoginReply readWithShops(const QJsonObject &object, bool withRules)
{
    return {reply::text(object, QStringLiteral("SUPERID")),
            reply::text(object, QStringLiteral("EID")), reply::text(object, QStringLiteral("UID")),
            orderqueries::readShops(object, withRules)};
}

} // namespace

LoginReply LoginReply::read(const QJsonObject &reply)
{
    return readWithShops(reply, true);
}

LoginReply LoginReply::readSaved(const QJsonObject &saved)
{
    return readWithShops(saved, false);
}

void enterAccount(const LoginReply &login)
{
    enterSavedAccount(login);
    if (!login.shops.isEmpty())
        AccountContext::shopId = login.shops.first().id;
}

void enterSavedAccount(const LoginReply &login)
{
    AccountContext::superId = login.superId;
    AccountContext::eid = login.eid;
    AccountContext::uid = login.uid;
    AccountContext::shopList = login.shops;
}
