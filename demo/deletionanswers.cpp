#include "demo/answerparts.h"
#include "demo/answers.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

// What is answered when the files of whole orders are deleted. A client that lost an answer says
// the same thing again: both actions answer a repetition as they did the first time.

namespace demo {

// order_photo_id, pics (JSON [{picpath, picname, picshortpath}]) → nothing beyond success. All of
// them are noted, or none.
QJsonObject Answers::announceDeletion(const Fields &fields)
{
    QString problem;
    Order *order = orderOf(fields, &problem);
    if (!order)
        return refusal(problem);
    const QJsonDocument document = QJsonDocument::fromJson(field(fields, "pics").toUtf8());
    if (!document.isArray() || document.array().isEmpty())
        return refusal(QStringLiteral("没有要删除的照片"));
    QSet<QString> announced;
    const QJsonArray pics = document.array();
    for (const QJsonValue &pic : pics) {
        const QString path = pic[QStringLiteral("picpath")].toString();
        const QString name = pic[QStringLiteral("picname")].toString();
        const QString shortPath = pic[QStringLiteral("picshortpath")].toString();
        if (name.isEmpty() || !path.endsWith(QLatin1Char('/') + shortPath) ||
            !path.endsWith(QLatin1Char('/') + name))
            return refusal(QStringLiteral("照片信息不完整: %1").arg(path));
        announced.insert(path);
    }
    order->announcedDeletions += announced;
    return success();
}

// order_photo_id, picpath, picname → nothing beyond success. The file must have been announced and
// must be gone; it is taken off the books.
QJsonObject Answers::reportDeletion(const Fields &fields)
{
    QString problem;
    Order *order = orderOf(fields, &problem);
    if (!order)
        return refusal(problem);
    const QString path = field(fields, "picpath");
    if (!order->announcedDeletions.contains(path))
        return refusal(QStringLiteral("照片没有提交过删除: %1").arg(path));
    if (!path.endsWith(QLatin1Char('/') + field(fields, "picname")))
        return refusal(QStringLiteral("照片信息不完整: %1").arg(path));
    const QFileInfo file(paths_.toDisk(path));
    if (file.exists() || file.isSymLink())
        return refusal(QStringLiteral("照片仍然存在: %1").arg(path));
    order->reportedDeletions.insert(path);
    QStringList ids;
    for (const RegisteredPhoto &photo : qAsConst(order->registered)) {
        if (paths_.toDisk(photo.localPath) == paths_.toDisk(path))
            ids << photo.id;
    }
    studio_.forgetPhotos(*order, ids);
    return success();
}

} // namespace demo
