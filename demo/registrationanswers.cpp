#include "demo/answerparts.h"
#include "demo/answers.h"
#include "demo/share.h"

#include <QJsonArray>
#include <QJsonDocument>

// What is answered when imported files are registered.

namespace demo {

namespace {

QJsonArray nameEntries(const QStringList &names)
{
    QJsonArray entries;
    for (const QString &name : names)
        entries.append(QJsonObject{{QStringLiteral("name"), name}});
    return entries;
}

// Sizes come as numbers or as text.
bool readAnnounced(const QString &json, QVector<AnnouncedFile> *files)
{
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8());
    if (!document.isArray())
        return false;
    const QJsonArray entries = document.array();
    for (const QJsonValue &entry : entries) {
        const QString name = entry[QStringLiteral("name")].toString();
        const qint64 size = entry[QStringLiteral("size")].toVariant().toLongLong();
        if (name.isEmpty())
            return false;
        files->append({name, size});
    }
    return true;
}

} // namespace

// order_photo_id, path → nothing beyond success.
QJsonObject Answers::registerFolder(const Fields &fields)
{
    QString problem;
    Order *order = orderOf(fields, &problem);
    if (!order)
        return refusal(problem);
    if (field(fields, "path").isEmpty())
        return refusal(QStringLiteral("导片路径为空"));
    order->folderPath = field(fields, "path");
    return success();
}

// order_photo_id, path, size → nothing beyond success.
QJsonObject Answers::registerFile(const Fields &fields)
{
    QString problem;
    Order *order = orderOf(fields, &problem);
    if (!order)
        return refusal(problem);
    if (field(fields, "path").isEmpty())
        return refusal(QStringLiteral("照片路径为空"));
    order->registeredFiles << field(fields, "path");
    return success();
}

// order_photo_id, localpath, type (1: imgnames and rawimgnames, 5: imgnames), the lists as JSON
// [{name, size}] → for each list what was announced and what lies on the share in that size.
QJsonObject Answers::registerBatch(const Fields &fields)
{
    struct List
    {
        QString name;
        QString folder;
        PhotoKind kind;
    };
    static const QMap<QString, QVector<List>> listsOfType = {
        {QStringLiteral("1"),
         {{QStringLiteral("imgnames"), QStringLiteral("原片"), PhotoKind::Original},
          {QStringLiteral("rawimgnames"), QStringLiteral("原始档"), PhotoKind::Raw}}},
        {QStringLiteral("5"),
         {{QStringLiteral("imgnames"), QStringLiteral("精修片"), PhotoKind::Retouched}}},
    };

    QString problem;
    Order *order = orderOf(fields, &problem);
    if (!order)
        return refusal(problem);
    const QString folder = paths_.toDisk(field(fields, "localpath"));
    if (folder.isEmpty())
        return refusal(QStringLiteral("导片路径为空"));
    const auto lists = listsOfType.constFind(field(fields, "type"));
    if (lists == listsOfType.constEnd())
        return refusal(QStringLiteral("未知的照片类型: %1").arg(field(fields, "type")));

    QJsonObject reply = success();
    QMap<PhotoKind, QStringList> seen;
    for (const List &list : *lists) {
        QVector<AnnouncedFile> announced;
        if (!readAnnounced(fields.value(list.name), &announced))
            return refusal(QStringLiteral("照片清单格式不正确: %1").arg(list.name));
        QStringList names;
        for (const AnnouncedFile &file : announced)
            names << file.name;
        seen[list.kind] = Share::present(folder + QLatin1Char('/') + list.folder, announced);
        reply[QStringLiteral("local_") + list.name] = nameEntries(names);
        reply[QStringLiteral("server_") + list.name] = nameEntries(seen.value(list.kind));
    }
    for (auto kind = seen.constBegin(); kind != seen.constEnd(); ++kind)
        order->registered[kind.key()] = kind.value();
    return reply;
}

} // namespace demo
