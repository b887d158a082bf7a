#include "net/orderfiles.h"

#include "files/rawsuffixes.h"
#include "net/formbody.h"
#include "net/replyfields.h"
#include "platform/pathform.h"

namespace orderfiles {

static QVector<ListedFile> listedAt(const QJsonObject &object,
                                    std::initializer_list<const char *> keys)
{
    QVector<ListedFile> files;
    for (const char *key : keys) {
        const auto elements = reply::objects(object, QString::fromLatin1(key));
        for (const QJsonObject &element : elements) {
            files.append({reply::text(element, QStringLiteral("img_name")),
                          reply::text(element, QStringLiteral("localpath")),
                          reply::text(element, QStringLiteral("id"))});
        }
    }
    return files;
}

QStringList announcedPatterns(const QString &subFolder)
{
    if (subFolder == rawFolder) {
        QStringList patterns = rawSuffixes();
        for (QString &pattern : patterns)
            pattern.prepend(QLatin1String("*."));
        return patterns;
    }
    return {QStringLiteral("*.jpg"), QStringLiteral("*.JPG"), QStringLiteral("*.jpeg"),
            QStringLiteral("*.JPEG")};
}

bool isAnnounced(const QString &subFolder, const QString &name)
{
    if (platform::isHiddenName(name))
        return false;
    const QString pattern = QStringLiteral("*.") + name.section(QLatin1Char('.'), -1);
    return announcedPatterns(subFolder).contains(pattern, Qt::CaseInsensitive);
}

QByteArray listBody(const QString &shopId, const QString &orderPhotoId, const QString &timestamp)
{
    return FormBody()
        .add(QStringLiteral("shopid"), shopId)
        .add(QStringLiteral("order_photo_id"), orderPhotoId)
        .add(QStringLiteral("timestamp"), timestamp)
        .bytes();
}

bool isStale(const QJsonObject &reply, const QString &timestamp)
{
    const QString answered = reply::text(reply, QStringLiteral("timestamp"));
    return !answered.isEmpty() && answered != timestamp;
}

QVector<ListedFile> readList(const QJsonObject &reply)
{
    return listedAt(reply, {"images_yuanshidang", "images_yuanpian"});
}

std::optional<QVector<ListedFile>> readWithOrder(const QJsonObject &reply,
                                                 const OrderIdentity &order)
{
    const auto elements = reply::objects(reply, QStringLiteral("data"));
    for (const QJsonObject &element : elements) {
        if (reply::text(element, QStringLiteral("order_photo_id")) == order.orderPhotoId)
            return listedAt(element, {"images", "images_taipian"});
    }
    return std::nullopt;
}

} // namespace orderfiles
