#pragma once

#include <QDate>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

namespace demo {

struct Person
{
    QString id;
    QString name;
};

struct Shop
{
    QString id;
    QString name;
    QString superId;
    QString namingRule; // JSON text, as the service stores it
    QString publicRoot; // wire form; empty when the branch has none
    QVector<Person> persons;
};

struct Account
{
    QString login;
    QString password;
    QString uid;
    QMap<QString, QString> employeeIds; // shop id → the employee that this account is there
};

// A photo that the customers chose.
struct Photo
{
    QString id;
    QString name;
    QString type;
    QString urlPath; // below the service's address
    QString localPath;
};

enum class PhotoKind { Original, Raw, Retouched };

// One service of one order. Everything is text because the service sends text; paths are in wire
// form.
struct Order
{
    QString id;
    QString photoSetId;
    QString shopId;
    QString number;
    QString service;
    QString manName;
    QString womanName;
    QString manPhone;
    QString womanPhone;
    QString selectionTime; // "yyyy-MM-dd hh:mm:ss" or empty
    QString photographer;
    QString makeUpArtist;
    QString consultant;
    QString retoucher;
    QString role7Id;
    QString isSample;
    QString shopName;
    QString shotDate; // as typed in the back office: "2024-3-7" occurs, and so does nothing at all
    QString sampleDate;
    QString price;
    QString package;
    QString photoCount;
    QString netPath;
    QString sizeSmall; // long side in pixels, or empty
    QString sizeMiddle;
    QString sizeBig;
    QString folderPath; // where the client said that the photos lie
    QVector<Photo> chosenPhotos;
    QVector<Photo> trialPhotos;
    QMap<PhotoKind, QStringList> registered; // names seen on disk by the last registration
    QStringList registeredFiles;             // paths that came one by one
};

enum class SearchBy { Text, ShotDate, SelectionDate };

// The studio that the service keeps the books of. Plain values without HTTP, files or locking; the
// owner sees to it that one thread at a time uses it. Pointers stay good until the orders change.
class Studio
{
public:
    // publicRoots: shop id → wire path. Orders come in through addOrders.
    explicit Studio(const QMap<QString, QString> &publicRoots = {});

    const QVector<Shop> &shops() const { return shops_; }
    const QVector<Order> &orders() const { return orders_; }
    void addOrders(const QVector<Order> &orders) { orders_ += orders; }

    const Account *accountByLogin(const QString &login, const QString &password) const;
    const Account *accountByUid(const QString &uid) const;
    QVector<Shop> shopsOf(const Account &account) const;
    const Shop *shop(const QString &id) const;
    // An empty employee or super id is not looked at: some requests carry the shop alone.
    bool belongTogether(const QString &uid, const QString &shopId, const QString &employeeId,
                        const QString &superId) const;

    Order *orderByPhotoSet(const QString &photoSetId);
    Order *orderById(const QString &id);
    // An empty text finds all of the branch, an empty person everybody's orders.
    QVector<Order> search(const QString &shopId, SearchBy by, const QString &text,
                          const QDate &date, const QString &role7Id) const;

private:
    QVector<Shop> shops_;
    QVector<Account> accounts_;
    QVector<Order> orders_;
};

} // namespace demo
