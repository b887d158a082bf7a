#include "app/context/accountcontext.h"

#include "app/context/installation.h"

#include <QStandardPaths>

#include <algorithm>

// NOLINTBEGIN(cert-err58-cpp): the process has no use without these values; a failure to build them
// may end it.
QString AccountContext::dataFolder =
    QStandardPaths::standardLocations(QStandardPaths::RuntimeLocation).value(0) +
    QStringLiteral("/tessavo_tools/");
const QString AccountContext::appVersion = QStringLiteral(TESSAVO_VERSION);
const QString AccountContext::architecture = QStringLiteral("64");
QList<ShopRecord> AccountContext::shopList;
QString AccountContext::uid;
QString AccountContext::shopId;
QString AccountContext::superId;
QString AccountContext::eid;
QString AccountContext::selectedShopId;
int AccountContext::photoMode = 0;
QString AccountContext::distributionRule;
QString AccountContext::distributionSpare1;
QString AccountContext::distributionSpare2;
const QString AccountContext::apiToken = QStringLiteral("5f0c2a9e7d41b6839a0e4c7b21f3d8a6");
QString AccountContext::baseUrl = Installation::current().serviceUrl;
const QString AccountContext::indexUrl = AccountContext::baseUrl + QStringLiteral("/index.php?");
const QString AccountContext::groupParam = QStringLiteral("g=OrvelleDPc");
const QString AccountContext::loginUrl =
    AccountContext::indexUrl + AccountContext::groupParam + QStringLiteral("&m=public&a=dologin");
const QString AccountContext::barcodeUrl = AccountContext::indexUrl + AccountContext::groupParam +
                                           QStringLiteral("&m=order&a=getbarcodegen");
// NOLINTEND(cert-err58-cpp)

QString AccountContext::shopName(const QString &id)
{
    const auto shop = std::find_if(shopList.cbegin(), shopList.cend(),
                                   [&id](const ShopRecord &each) { return each.id == id; });
    return shop == shopList.cend() ? QString() : shop->name;
}
