#include "demo/answerparts.h"
#include "demo/answers.h"

#include <QJsonArray>

#include <algorithm>

// What is answered about photos that are on the books: listing them and taking them off.

namespace demo {

namespace {

QJsonObject listed(const RegisteredPhoto &photo, const QString &serviceUrl)
{
    const QString urlPath = photo.urlPath();
    return {{QStringLiteral("id"), photo.id},
            {QStringLiteral("img_name"), photo.name},
            {QStringLiteral("localpath"), photo.localPath},
            {QStringLiteral("localpath_90"), photo.localPath90},
            {QStringLiteral("localpath_1920"), photo.localPath1920},
            {QStringLiteral("url"), urlPath.isEmpty() ? QString() : serviceUrl + urlPath},
            {QStringLiteral("isdownload"), QString::number(photo.downloaded ? 1 : 0)}};
}

} // namespace

// order_photo_id, timestamp → images_yuanpian and images_yuanshidang, the timestamp as it came.
QJsonObject Answers::importedPhotos(const Fields &fields) const
{
    QString problem;
    const Order *order = orderOf(fields, &problem);
    QJsonObject reply = order ? success() : refusal(problem);
    reply[QStringLiteral("timestamp")] = field(fields, "timestamp");
    if (!order)
        return reply;
    QVector<RegisteredPhoto> byName = order->registered;
    std::sort(byName.begin(), byName.end(),
              [](const RegisteredPhoto &a, const RegisteredPhoto &b) { return a.name < b.name; });
    QJsonArray photos;
    QJsonArray rawFiles;
    for (const RegisteredPhoto &photo : qAsConst(byName)) {
        if (photo.kind == PhotoKind::Original)
            photos.append(listed(photo, serviceUrl_));
        else if (photo.kind == PhotoKind::Raw)
            rawFiles.append(listed(photo, serviceUrl_));
    }
    reply[QStringLiteral("images_yuanpian")] = photos;
    reply[QStringLiteral("images_yuanshidang")] = rawFiles;
    return reply;
}

// order_photo_id, ids (comma-separated), timestamp → the timestamp as it came. All of them are
// taken off the books, or none.
QJsonObject Answers::deletePhotos(const Fields &fields)
{
    QString problem;
    Order *order = orderOf(fields, &problem);
    const QStringList ids = field(fields, "ids").split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (order && (ids.isEmpty() || !studio_.forgetPhotos(*order, ids)))
        problem = QStringLiteral("照片不存在或已删除，请刷新后重试");
    QJsonObject reply = problem.isEmpty() ? success() : refusal(problem);
    reply[QStringLiteral("timestamp")] = field(fields, "timestamp");
    return reply;
}

// order_photo_id, ids (comma-separated) → nothing beyond success. Takes photos, or videos, off the
// books; all of them or none.
QJsonObject Answers::deleteImported(const Fields &fields, bool videos)
{
    QString problem;
    Order *order = orderOf(fields, &problem);
    if (!order)
        return refusal(problem);
    const QStringList ids = field(fields, "ids").split(QLatin1Char(','), Qt::SkipEmptyParts);
    const bool ofThisKind =
        std::all_of(order->registered.cbegin(), order->registered.cend(),
                    [&ids, videos](const RegisteredPhoto &photo) {
                        return !ids.contains(photo.id) || photo.isVideo() == videos;
                    });
    if (ids.isEmpty() || !ofThisKind || !studio_.forgetPhotos(*order, ids))
        return refusal(QStringLiteral("照片不存在或已删除，请刷新后重试"));
    return success();
}

} // namespace demo
