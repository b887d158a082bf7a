#include "demo/studio.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace demo {

namespace {

QVector<Person> personsOf(const QString &shopId, const QStringList &names)
{
    QVector<Person> persons;
    for (const QString &name : names)
        persons.append({shopId + QString::number(persons.size() + 1), name});
    return persons;
}

template <typename List, typename Matches> auto *firstOf(List &list, Matches matches)
{
    const auto found = std::find_if(list.begin(), list.end(), matches);
    return found == list.end() ? nullptr : &*found;
}

bool mentions(const Order &order, const QString &text)
{
    for (const QString *place :
         {&order.number, &order.manName, &order.womanName, &order.manPhone, &order.womanPhone}) {
        if (place->contains(text, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

bool matches(const Order &order, SearchBy by, const QString &text, const QDate &date)
{
    switch (by) {
    case SearchBy::Text:
        return mentions(order, text);
    case SearchBy::ShotDate:
        return QDate::fromString(order.shotDate, QStringLiteral("yyyy-M-d")) == date;
    case SearchBy::SelectionDate:
        return QDate::fromString(order.selectionTime.left(10), Qt::ISODate) == date;
    case SearchBy::CompletionDate:
        return QDate::fromString(order.completionTime.left(10), Qt::ISODate) == date;
    }
    return false;
}

} // namespace

QString RegisteredPhoto::urlPath() const
{
    if (kind != PhotoKind::Original && kind != PhotoKind::Retouched)
        return QString();
    return QStringLiteral("/photos/%1.jpg").arg(id);
}

QStringList Order::registeredNames(PhotoKind kind) const
{
    QStringList names;
    for (const RegisteredPhoto &photo : registered) {
        if (photo.kind == kind)
            names << photo.name;
    }
    return names;
}

QVector<Photo> Order::imported(PhotoKind kind) const
{
    static const QMap<PhotoKind, QString> types = {
        {PhotoKind::Original, QStringLiteral("1")},
        {PhotoKind::TrialVideo, QStringLiteral("2")},
        {PhotoKind::RetouchedVideo, QStringLiteral("3")},
    };
    QVector<Photo> photos;
    for (const RegisteredPhoto &photo : registered) {
        if (photo.kind == kind && (photo.isVideo() || !photo.localPath90.isEmpty())) {
            photos.append(
                {photo.id, photo.name, types.value(kind), photo.urlPath(), photo.localPath});
        }
    }
    return photos;
}

Studio::Studio(const QMap<QString, QString> &publicRoots)
{
    const QString rule =
        QStringLiteral(R"([{"name":"订单号","key":"orderpayforkey","separator":"-"},)"
                       R"({"name":"服务次","key":"servicetimes","separator":"_"},)"
                       R"({"name":"产品名称","key":"name","separator":"_"}])");
    shops_ = {
        {QStringLiteral("101"), QStringLiteral("海棠路旗舰店"), QStringLiteral("7001"), rule,
         publicRoots.value(QStringLiteral("101")), true,
         personsOf(QStringLiteral("101"), {QStringLiteral("程远"), QStringLiteral("沈小棠"),
                                           QStringLiteral("顾一鸣"), QStringLiteral("白露")})},
        {QStringLiteral("102"), QStringLiteral("滨江店"), QStringLiteral("7002"),
         QStringLiteral("[]"), publicRoots.value(QStringLiteral("102")), true,
         personsOf(QStringLiteral("102"),
                   {QStringLiteral("陆川"), QStringLiteral("夏至"), QStringLiteral("欧阳青")})},
        {QStringLiteral("103"), QStringLiteral("古城外景基地"), QStringLiteral("7003"), rule,
         publicRoots.value(QStringLiteral("103")), false,
         personsOf(QStringLiteral("103"), {QStringLiteral("石磊"), QStringLiteral("温言")})},
    };
    accounts_ = {
        {QStringLiteral("demo01"),
         QStringLiteral("abc123"),
         QStringLiteral("9001"),
         {{QStringLiteral("101"), QStringLiteral("3101")},
          {QStringLiteral("102"), QStringLiteral("3102")},
          {QStringLiteral("103"), QStringLiteral("3103")}}},
        {QStringLiteral("demo02"),
         QStringLiteral("abc123"),
         QStringLiteral("9002"),
         {{QStringLiteral("102"), QStringLiteral("3202")}}},
    };
}

const Account *Studio::accountByLogin(const QString &login, const QString &password) const
{
    return firstOf(accounts_, [&](const Account &account) {
        return account.login == login && account.password == password;
    });
}

const Account *Studio::accountByUid(const QString &uid) const
{
    return firstOf(accounts_, [&](const Account &account) { return account.uid == uid; });
}

QVector<Shop> Studio::shopsOf(const Account &account) const
{
    QVector<Shop> shops;
    std::copy_if(shops_.begin(), shops_.end(), std::back_inserter(shops),
                 [&](const Shop &shop) { return account.employeeIds.contains(shop.id); });
    return shops;
}

const Shop *Studio::shop(const QString &id) const
{
    return firstOf(shops_, [&](const Shop &shop) { return shop.id == id; });
}

bool Studio::belongTogether(const QString &uid, const QString &shopId, const QString &employeeId,
                            const QString &superId) const
{
    const Account *account = accountByUid(uid);
    const Shop *place = shop(shopId);
    if (!account || !place || !account->employeeIds.contains(shopId))
        return false;
    return (employeeId.isEmpty() || account->employeeIds.value(shopId) == employeeId) &&
           (superId.isEmpty() || place->superId == superId);
}

Order *Studio::orderByPhotoSet(const QString &photoSetId)
{
    return firstOf(orders_, [&](const Order &order) { return order.photoSetId == photoSetId; });
}

Order *Studio::orderById(const QString &id)
{
    return firstOf(orders_, [&](const Order &order) { return order.id == id; });
}

Order *Studio::orderByPhoto(const QString &photoId)
{
    return firstOf(orders_, [&](const Order &order) {
        return !order.chosenPhotos.isEmpty() && photoId.startsWith(order.photoSetId);
    });
}

void Studio::setNamingRule(const QString &shopId, const QString &rule)
{
    Shop *shop = firstOf(shops_, [&](const Shop &each) { return each.id == shopId; });
    if (shop)
        shop->namingRule = rule;
}

QVector<Order> Studio::search(const QString &shopId, SearchBy by, const QString &text,
                              const QDate &date, const QString &role7Id) const
{
    QVector<Order> found;
    std::copy_if(
        orders_.begin(), orders_.end(), std::back_inserter(found), [&](const Order &order) {
            return order.shopId == shopId && (role7Id.isEmpty() || order.role7Id == role7Id) &&
                   matches(order, by, text, date);
        });
    return found;
}

QString Studio::newPhotoId()
{
    return QStringLiteral("9%1").arg(++lastPhotoId_, 7, 10, QLatin1Char('0'));
}

void Studio::registerPhoto(Order &order, RegisteredPhoto photo)
{
    RegisteredPhoto *known = firstOf(order.registered, [&](const RegisteredPhoto &other) {
        return other.localPath == photo.localPath;
    });
    photo.id = known ? known->id : newPhotoId();
    if (known)
        *known = photo;
    else
        order.registered.append(photo);
}

void Studio::registerFolder(Order &order, PhotoKind kind, const QString &folder,
                            const QStringList &names)
{
    const QString prefix = folder + QLatin1Char('\\');
    QHash<QString, RegisteredPhoto> known;
    QVector<RegisteredPhoto> registered;
    for (const RegisteredPhoto &photo : qAsConst(order.registered)) {
        if (photo.kind == kind && photo.localPath == prefix + photo.name)
            known.insert(photo.name, photo);
        else
            registered.append(photo);
    }
    for (const QString &name : names) {
        RegisteredPhoto photo = known.value(name);
        if (photo.id.isEmpty())
            photo.id = newPhotoId();
        photo.kind = kind;
        photo.name = name;
        photo.localPath = prefix + name;
        registered.append(photo);
    }
    order.registered = registered;
}

bool Studio::forgetPhotos(Order &order, const QStringList &ids)
{
    const QSet<QString> gone(ids.begin(), ids.end());
    QVector<RegisteredPhoto> left;
    for (const RegisteredPhoto &photo : qAsConst(order.registered)) {
        if (!gone.contains(photo.id))
            left.append(photo);
    }
    if (order.registered.size() - left.size() != gone.size())
        return false;
    order.registered = left;
    return true;
}

std::optional<PhotoFile> Studio::findPhoto(const QString &id) const
{
    const auto hasId = [&id](const auto &photo) { return photo.id == id; };
    for (const Order &order : orders_) {
        if (const RegisteredPhoto *photo = firstOf(order.registered, hasId))
            return PhotoFile{photo->localPath, true};
        for (const QVector<Photo> *photos : {&order.chosenPhotos, &order.trialPhotos}) {
            if (const Photo *photo = firstOf(*photos, hasId))
                return PhotoFile{photo->localPath, false};
        }
    }
    return std::nullopt;
}

} // namespace demo
