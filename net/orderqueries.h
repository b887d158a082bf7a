#pragma once

#include "app/context/accountcontext.h"
#include "app/context/orderidentity.h"
#include "files/paths.h"

#include <QByteArray>
#include <QDate>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

class FormBody;

/// Switching branch, listing staff and searching orders: the bodies of the three requests every
/// tool shares and the records read from their replies. Pure functions; no network here.
namespace orderqueries {

inline const QString switchShopAction = QStringLiteral("&m=public&a=switch_shop");
inline const QString personsAction = QStringLiteral("&m=order&a=get_persons");
inline const QString orderListAction = QStringLiteral("&m=order&a=order_list");

/// Who a tool window acts as: seeded from the account context when the window opens, replaced by
/// its own branch switch.
struct Identity
{
    QString shopId;
    QString superId;
    QString employeeId; ///< goes out as "eid", "personid" and "person_id" alike

    /// What a window that opens now starts with: the branch chosen last, otherwise the login's
    /// first.
    static Identity fromAccount();
};

/// What the order search panel asks for. The dates count only for the types that search by them.
struct OrderSearch
{
    enum Type { BasicInformation = 0, ShootingDate = 1, SelectionDate = 2, CompletionDate = 3 };

    int type = BasicInformation;
    QString text;
    QDate shootingDate;
    QDate selectionDate;
    QDate completionDate;
};

/// A reply to a branch switch.
struct ShopSwitch
{
    QString superId;
    QString employeeId;
    QString importPublicPath;
    bool mayDeleteAllPhotos = false; ///< the files of whole orders
    QString distributionMode;        ///< "issjfenjianms"
};

struct Person
{
    QString id;
    QString name;
};

/// One photo of an order as the service lists it.
struct OrderPhoto
{
    QString imgName;
    QString url;
    QString localPath;
    QString id;
    QString type;
};

/// The branch that a search asks: what it finds belongs there.
struct SearchedBranch
{
    QString id;
    QString publicPath; ///< public import root, in Windows form; may be empty
};

/// One order of a search reply. Paths are in Windows form.
struct OrderInfo
{
    QString branch; ///< id of the shop under which the order was listed
    QString id;
    QString orderPhotoId;   ///< id of the order's photo set
    QString orderPayForKey; ///< the number users know the order by
    QString serviceTimes;
    QString mname;
    QString wname;
    QString mphone;
    QString wphone;
    QString selectPhotoTime;
    QString role1; ///< photographer
    QString role2; ///< make-up artist
    QString selectPhotoName;
    QString isSample;
    QString tiaoseName;
    QString storesName;
    QString shotDateText; ///< as the service wrote it
    ShootDate shotDate;
    QString netPath;
    int smallSize = 90; ///< long side of the size variants, pixels
    int middleSize = 190;
    int bigSize = 1920;
    QString picPathNew;
    QVector<OrderPhoto> images;
    QVector<OrderPhoto> imagesTaipian;

    OrderIdentity identity() const { return {branch, id, orderPhotoId}; }
};

/// What a search found, as a tool reads it.
template <typename Order> struct FoundOrders
{
    bool isList = false; ///< false: the reply carries no list at all
    int elements = 0;    ///< how many the service listed, usable or not
    QVector<Order> orders;
    /// Those that nothing tells from the others: they cannot be worked on, but what lies in their
    /// folders is theirs.
    QVector<Order> unlisted;
};

/// The elements of a search reply's list, without those that are no objects and those that repeat
/// an earlier one, folder and all.
struct OrderElements
{
    bool isList = false;
    int count = 0; ///< of the list
    QVector<QJsonObject> listed;
    QVector<QJsonObject> unlisted; ///< see FoundOrders
};

/// The folder into which \a order is imported, in Windows form: \a importPath when it has one,
/// otherwise composed from its values below \a publicPath.
QString importFolderOf(const OrderInfo &order, const QString &importPath,
                       const QString &publicPath);

/// Adds the four fields that tell whom a request acts as.
FormBody &addIdentity(FormBody &body, const Identity &identity);

QByteArray switchShopBody(const QString &shopId);
QByteArray personsBody(const Identity &identity);
/// The search as photo import and order file import word it. \a role7id is the person filter's
/// value; a null text leaves that field out, an empty one sends it empty.
QByteArray orderListBody(const OrderSearch &search, const Identity &identity,
                         const QString &role7id = QString());

ShopSwitch readShopSwitch(const QJsonObject &reply);
QVector<Person> readPersons(const QJsonObject &reply);
/// Without what takes its time: photos and sizes.
OrderInfo readOrderHead(const QJsonObject &element, const SearchedBranch &branch);
OrderInfo readOrderInfo(const QJsonObject &element, const SearchedBranch &branch);
OrderElements orderElements(const QJsonObject &reply);

/// Reads a search reply with \a read, which makes a tool's record of one element. Orders with
/// thousands of photos take their time.
template <typename Order, typename Read>
FoundOrders<Order> readFoundOrders(const QJsonObject &reply, Read read)
{
    const OrderElements elements = orderElements(reply);
    FoundOrders<Order> list{elements.isList, elements.count, {}, {}};
    list.orders.reserve(elements.listed.size());
    for (const QJsonObject &element : elements.listed)
        list.orders.append(read(element));
    for (const QJsonObject &element : elements.unlisted)
        list.unlisted.append(read(element));
    return list;
}

/// Whether \a who may ask the service for anything about the order: an order is worked on in the
/// name of its own branch alone.
bool mayWorkOn(const OrderIdentity &order, const Identity &who);
/// What to tell of an order for which mayWorkOn() is false.
QString otherBranchText(const QString &orderName);

/// The shops of a login reply. \a withRules is false for saved login data, whose records carry
/// none.
QList<ShopRecord> readShops(const QJsonObject &loginReply, bool withRules = true);

/// The map that a tool hands its owner after a switch: "shopid", "superid", "managerid".
QMap<QString, QString> switchedShopMap(const Identity &identity);

} // namespace orderqueries
