#pragma once

#include <QDate>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

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
    bool mayDeleteAll;  // whether its staff may delete the files of whole orders
    QVector<Person> persons;
};

struct Account
{
    QString login;
    QString password;
    QString uid;
    QMap<QString, QString> employeeIds; // shop id → the employee that this account is there
};

// A photo that the customers chose, or what else an order's answer lists of its photos.
struct Photo
{
    QString id;
    QString name;
    QString type;
    QString urlPath; // below the service's address
    QString localPath;
};

enum class PhotoKind { Original, Raw, Retouched, TrialVideo, RetouchedVideo };

// A file that a client registered for an order: what the service has on its books of it.
struct RegisteredPhoto
{
    QString id; // unique among all photos of the studio and not used again; empty: yet to be given
    PhotoKind kind = PhotoKind::Original;
    QString name;
    QString localPath;   // wire form
    QString localPath90; // of its smaller variants, empty when there are none
    QString localPath1920;
    bool downloaded = false;

    QString urlPath() const; // below the service's address; empty for what has no picture
    bool isVideo() const
    {
        return kind == PhotoKind::TrialVideo || kind == PhotoKind::RetouchedVideo;
    }
};

// Where a photo lies.
struct PhotoFile
{
    QString path;      // wire form; empty when nobody said
    bool isRegistered; // a chosen photo may have been chosen long before this disk existed
};

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
    QString completionTime; // "yyyy-MM-dd hh:mm:ss" or empty
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
    QVector<RegisteredPhoto> registered;
    QStringList registeredFiles; // paths that came one by one
    // Of batch deletions, as the client told them: what was going to be deleted, what is gone.
    QSet<QString> announcedDeletions;
    QSet<QString> reportedDeletions;
    QStringList downloadedPhotos; // ids
    bool hasMaterial = false;     // whether its pictures were put on the share

    QStringList registeredNames(PhotoKind kind) const;
    // What was registered by the photo import, as the order's answer lists it: originals that have
    // variants, and videos.
    QVector<Photo> imported(PhotoKind kind) const;
};

enum class SearchBy { Text, ShotDate, SelectionDate, CompletionDate };

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
    // The order that has the photo, chosen or made for the distribution.
    Order *orderByPhoto(const QString &photoId);
    void setNamingRule(const QString &shopId, const QString &rule);
    // An empty text finds all of the branch, an empty person everybody's orders.
    QVector<Order> search(const QString &shopId, SearchBy by, const QString &text,
                          const QDate &date, const QString &role7Id) const;

    // Puts the photo on the order's books; one that is there under the same path keeps its id.
    void registerPhoto(Order &order, RegisteredPhoto photo);
    // From now on these are the order's photos of the kind that lie in the folder (wire form).
    void registerFolder(Order &order, PhotoKind kind, const QString &folder,
                        const QStringList &names);
    // Takes photos off the books. False, and nothing happens, when one of the ids is not the
    // order's.
    bool forgetPhotos(Order &order, const QStringList &ids);
    // Registered or chosen, of whatever order.
    std::optional<PhotoFile> findPhoto(const QString &id) const;

private:
    QString newPhotoId();

    QVector<Shop> shops_;
    QVector<Account> accounts_;
    QVector<Order> orders_;
    int lastPhotoId_ = 0;
};

} // namespace demo
