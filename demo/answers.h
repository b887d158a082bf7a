#pragma once

#include "demo/form.h"
#include "demo/studio.h"
#include "demo/wirepaths.h"

#include <QJsonObject>
#include <QString>

namespace demo {

// The contract: what the service answers to each action. answers.cpp lists the actions and
// answers the common ones; each tool's own are in a file beside it.
//
// Every answer carries `code` (text, "1" is success), `message` and `msg`. A request that is
// refused changes nothing. Not thread-safe; reads the studio's share on disk while it compares
// photos.
class Answers
{
public:
    // The studio must outlive this object.
    Answers(Studio &studio, WirePaths paths);

    // The service's own address, without a slash at the end: photo URLs in answers begin with it.
    void setServiceUrl(const QString &url) { serviceUrl_ = url; }

    // query: the g, m and a of the address; fields: the decoded form.
    QJsonObject answer(const Fields &query, const Fields &fields);

private:
    QJsonObject login(const Fields &fields) const;
    QJsonObject switchShop(const Fields &fields) const;
    QJsonObject persons(const Fields &fields) const;
    QJsonObject orderList(const Fields &fields) const;
    QJsonObject registerFolder(const Fields &fields);
    QJsonObject registerFile(const Fields &fields);
    QJsonObject registerBatch(const Fields &fields);
    QJsonObject importedPhotos(const Fields &fields) const;
    QJsonObject deletePhotos(const Fields &fields);
    QJsonObject deleteImported(const Fields &fields, bool videos);
    QJsonObject announceDeletion(const Fields &fields);
    QJsonObject reportDeletion(const Fields &fields);
    QJsonObject orderDetail(const Fields &fields);
    QJsonObject downloadSuccess(const Fields &fields);
    QJsonObject saveNamingRule(const Fields &fields);

    QString identityProblem(const Fields &fields) const;
    // The order that the fields name, or null and the reason.
    Order *orderOf(const Fields &fields, QString *problem) const;
    QJsonObject orderObject(const Order &order) const;
    void addDistributionMembers(const Order &order, QJsonObject *object) const;

    Studio &studio_;
    WirePaths paths_;
    QString serviceUrl_;
};

// Changes fields of an order by their names in an answer ("netpath", "mname", …). Returns an empty
// text, or the reason why nothing was changed.
QString changeOrder(Order &order, const QJsonObject &fields);

// A small JPEG for every address below /distribution.
QByteArray distributionPicture(const QString &path);

} // namespace demo
