#pragma once

#include "fileimport/importrecords.h"
#include "fileimport/originalrequests.h"
#include "net/servicecall.h"

#include <QFile>
#include <QtTest>

/// The first order of the demo service, as the window hands it to the imported-photo view.
inline originalrequests::OrderMap firstOrder()
{
    ImportOrder order;
    order.id = QStringLiteral("50001");
    order.orderPhotoId = QStringLiteral("800001");
    order.orderPayForKey = QStringLiteral("TS10001");
    order.serviceTimes = QStringLiteral("1");
    order.delyp = QStringLiteral("1");
    return originalrequests::orderMap(order, QStringLiteral("101"));
}

inline ServiceReply ask(const QString &action, const QByteArray &body)
{
    QObject owner;
    ServiceReply answer;
    bool answered = false;
    callService(&owner, action, body, [&](const ServiceReply &reply) {
        answer = reply;
        answered = true;
    });
    if (!QTest::qWaitFor([&] { return answered; }, 20000))
        qFatal("no answer");
    return answer;
}

/// Writes the file and puts it on the order's books.
inline void registerFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("fixture not written");
    ask(QStringLiteral("&m=order&a=savepicpath"),
        originalrequests::listBody(firstOrder(), {}) + "&path=" + QUrl::toPercentEncoding(path));
}

inline QVector<PhotoEntry> listedEntries()
{
    return originalrequests::readListing(
        ask(originalrequests::listAction, originalrequests::listBody(firstOrder(), {})).object);
}
