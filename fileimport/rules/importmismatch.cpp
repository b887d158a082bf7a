#include "fileimport/rules/importmismatch.h"

#include "fileimport/rules/importrules.h"

#include <QSet>

namespace importmismatch {

namespace {

/// What is in one list and not in the other, either way.
QStringList difference(const QStringList &local, const QStringList &server)
{
    const QSet<QString> known(server.cbegin(), server.cend());
    const QSet<QString> announced(local.cbegin(), local.cend());
    QStringList differing;
    for (const QString &name : local) {
        if (!known.contains(name))
            differing.append(name);
    }
    for (const QString &name : server) {
        if (!announced.contains(name))
            differing.append(name);
    }
    return differing;
}

QString noticeSection(const QString &heading, const QStringList &names)
{
    if (names.isEmpty())
        return {};
    QStringList shown = names.mid(0, BoxText::shownLines);
    if (names.size() > shown.size())
        shown.append(BoxText::countLine(names.size()));
    return heading + QStringLiteral("<br/><span style=\"font-size: 23px; color: #FF0000;\">") +
           shown.join(QStringLiteral(", ")).toHtmlEscaped() + QStringLiteral("</span>");
}

struct Differences
{
    QStringList images;
    QStringList rawImages;
};

Differences differencesOf(ImportMode mode, const importrequests::BatchReply &reply)
{
    Differences differences{difference(reply.localImages, reply.serverImages), {}};
    if (mode == ImportMode::Originals)
        differences.rawImages = difference(reply.localRawImages, reply.serverRawImages);
    return differences;
}

} // namespace

BoxText notice(ImportMode mode, const ImportOrder &order, const importrequests::BatchReply &reply)
{
    const auto [images, rawImages] = differencesOf(mode, reply);
    if (images.isEmpty() && rawImages.isEmpty())
        return QString();

    const QString title =
        QStringLiteral("<span style=\"font-size: 26px; font-weight: 600; color: #000; \"> 订单: ") +
        (order.orderPayForKey + QLatin1Char('-') + order.serviceTimes).toHtmlEscaped();
    const QString html =
        mode == ImportMode::Retouched
            ? title +
                  noticeSection(QStringLiteral("<br/> <span style=\"font-size: 25px; font-weight: "
                                               "550 \">以下精修照片需要重新导入:</span>"),
                                images)
            : title +
                  noticeSection(
                      QStringLiteral("<br/> <span style=\"font-size: 25px; font-weight: 550 "
                                     "\">以下原片需要重新导入:</span>"),
                      images) +
                  noticeSection(
                      QStringLiteral("<br/> <span style=\"font-size: 25px; font-weight: 550 "
                                     "\">以下原始档需要重新导入:</span>"),
                      rawImages);
    if (qMax(images.size(), rawImages.size()) <= BoxText::shownLines)
        return BoxText::rich(html);
    const QStringList all = QStringList{QStringLiteral("订单: %1-%2\n以下照片需要重新导入:")
                                            .arg(order.orderPayForKey, order.serviceTimes)} +
                            images + rawImages;
    return BoxText::rich(html, [all] { return all.join(QLatin1Char('\n')); });
}

QVector<int> files(ImportMode mode, const ImportOrder &order,
                   const importrequests::BatchReply &reply)
{
    const Differences differences = differencesOf(mode, reply);
    // On Windows a replaced file keeps the case of its earlier name.
    const auto keysOf = [](const QStringList &names) {
        QSet<QString> keys;
        for (const QString &name : names)
            keys.insert(name.toCaseFolded());
        return keys;
    };
    const QSet<QString> images = keysOf(differences.images);
    const QSet<QString> rawImages = keysOf(differences.rawImages);
    const QStringList folders = importrules::subFolders(mode);
    QVector<int> positions;
    for (int index = 0; index < order.files.size(); ++index) {
        const ImportFile &file = order.files.at(index);
        const bool isImage = importrules::subFolderFor(mode, file.suffix) == folders.first();
        if (file.state == ImportFile::Imported &&
            (isImage ? images : rawImages).contains(file.targetName().toCaseFolded()))
            positions.append(index);
    }
    return positions;
}

} // namespace importmismatch
