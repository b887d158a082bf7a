#include "orderbrowser/rules/chosenphotos.h"

#include "net/formbody.h"
#include "net/replyfields.h"

namespace chosenphotos {

QByteArray body(const QString &photoSet, const orderqueries::Identity &who)
{
    FormBody body;
    body.add(QStringLiteral("order_photo_id"), photoSet);
    return orderqueries::addIdentity(body, who).bytes();
}

QVector<PhotoEntry> read(const QJsonObject &reply)
{
    QVector<PhotoEntry> photos;
    const auto elements = reply::objects(reply, QStringLiteral("images"));
    for (const QJsonObject &element : elements) {
        PhotoEntry photo;
        reply::readTexts(element, &photo,
                         {{"img_name", &PhotoEntry::imgName},
                          {"id", &PhotoEntry::id},
                          {"localpath", &PhotoEntry::localPath},
                          {"url", &PhotoEntry::url}});
        photos.append(photo);
    }
    return photos;
}

} // namespace chosenphotos
