#pragma once

#include "fileimport/imported/originalrequests.h"
#include "fileimport/rules/importrecords.h"
#include "net/orderfiles.h"
#include "net/servicecall.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QtTest>

/// The first order of the demo service, as the window hands it to the imported-photo view; its
/// photos lie in \a folder.
inline originalrequests::OrderMap firstOrder(const QString &folder = QString())
{
    ImportOrder order;
    order.branch = "101"_s;
    order.id = "50001"_s;
    order.orderPhotoId = "800001"_s;
    order.orderPayForKey = "TS10001"_s;
    order.serviceTimes = "1"_s;
    order.delyp = "1"_s;
    order.importPath = wireForm(folder);
    return originalrequests::orderMap(order);
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
    writeFile(path, content);
    ask("&m=order&a=savepicpath"_s,
        originalrequests::listBody(firstOrder(), {}) + "&path=" + QUrl::toPercentEncoding(path));
}

inline QVector<PhotoEntry> listedEntries()
{
    return originalrequests::readListing(
        ask(orderfiles::listAction, originalrequests::listBody(firstOrder(), {})).object);
}
