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

// What a file registered by itself is: told by its type, otherwise by its suffix.
PhotoKind kindOfFile(const Fields &fields)
{
    const bool isVideo = fields.contains(QStringLiteral("photonames"));
    const QString type = field(fields, "type");
    if (isVideo)
        return type == QStringLiteral("3") ? PhotoKind::RetouchedVideo : PhotoKind::TrialVideo;
    if (type == QStringLiteral("5"))
        return PhotoKind::Retouched;
    if (type == QStringLiteral("1"))
        return PhotoKind::Raw;
    static const QStringList raw = {QStringLiteral("raw"), QStringLiteral("cr2"),
                                    QStringLiteral("cr3"), QStringLiteral("nef"),
                                    QStringLiteral("arw"), QStringLiteral("raf")};
    const QString suffix = field(fields, "path").section(QLatin1Char('.'), -1).toLower();
    return type.isEmpty() && raw.contains(suffix) ? PhotoKind::Raw : PhotoKind::Original;
}

// Photos that were imported into a folder "all" have their variants in folders beside it.
QString variantPath(const QString &path, const QString &folder)
{
    const QString all = QStringLiteral("\\all\\");
    const int place = path.lastIndexOf(all);
    if (place < 0)
        return QString();
    return QString(path).replace(place, all.size(), QStringLiteral("\\%1\\").arg(folder));
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

// order_photo_id, path, size, and for some type and photonames → nothing beyond success.
QJsonObject Answers::registerFile(const Fields &fields)
{
    QString problem;
    Order *order = orderOf(fields, &problem);
    if (!order)
        return refusal(problem);
    if (field(fields, "path").isEmpty())
        return refusal(QStringLiteral("照片路径为空"));
    RegisteredPhoto photo;
    photo.kind = kindOfFile(fields);
    photo.localPath = field(fields, "path");
    photo.localPath.replace(QLatin1Char('/'), QLatin1Char('\\'));
    photo.name = photo.localPath.section(QLatin1Char('\\'), -1);
    photo.localPath90 = variantPath(photo.localPath, QStringLiteral("90"));
    photo.localPath1920 = variantPath(photo.localPath, QStringLiteral("1920"));
    studio_.registerPhoto(*order, photo);
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
    const QString wireFolder = paths_.toWire(folder);
    if (folder.isEmpty())
        return refusal(QStringLiteral("导片路径为空"));
    const auto lists = listsOfType.constFind(field(fields, "type"));
    if (lists == listsOfType.constEnd())
        return refusal(QStringLiteral("未知的照片类型: %1").arg(field(fields, "type")));

    QJsonObject reply = success();
    QVector<QPair<List, QStringList>> seen;
    for (const List &list : *lists) {
        QVector<AnnouncedFile> announced;
        if (!readAnnounced(fields.value(list.name), &announced))
            return refusal(QStringLiteral("照片清单格式不正确: %1").arg(list.name));
        QStringList names;
        for (const AnnouncedFile &file : announced)
            names << file.name;
        const QStringList present =
            Share::present(folder + QLatin1Char('/') + list.folder, announced);
        seen.append({list, present});
        reply[QStringLiteral("local_") + list.name] = nameEntries(names);
        reply[QStringLiteral("server_") + list.name] = nameEntries(present);
    }
    for (const auto &[list, names] : qAsConst(seen)) {
        studio_.registerFolder(*order, list.kind, wireFolder + QLatin1Char('\\') + list.folder,
                               names);
    }
    return reply;
}

} // namespace demo
