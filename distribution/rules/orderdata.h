#pragma once

#include "app/context/orderidentity.h"
#include "distribution/rules/orderdetail.h"

#include <QMetaType>
#include <QString>
#include <QVector>

/// One order of the distribution window's list, as the search reply has it. Everything is text
/// because the service sends text; paths are in wire form.
struct OrderData
{
    QString branch; ///< id of the shop under which the order was listed
    QString id;
    QString orderPhotoId; ///< id of the order's photo set
    QString orderPayForKey;
    QString serviceTimes;
    QString wname;
    QString mname;
    QString comboName;
    QString shotDate;
    QString sampleDate;
    QString orderPrice;
    QString selectPhotoName;
    QString netPath;
    QString wphone;
    QString mphone;
    QString selectPhotoTime;
    QString role1; ///< photographer
    QString role2; ///< make-up artist
    QString isZsysd;
    QString isZsjx;
    QString numberJingxiu; ///< fine-retouched photos
    QVector<DetailPhoto> images;
    QVector<DetailPhoto> images11;
    QVector<DetailPhoto> images10;

    OrderIdentity identity() const { return {branch, id, orderPhotoId}; }
    /// The number users know the order by, with its service: "TS10001-服务1".
    QString displayNumber() const
    {
        return orderPayForKey + QStringLiteral("-服务") + serviceTimes;
    }
};
Q_DECLARE_METATYPE(OrderData)
