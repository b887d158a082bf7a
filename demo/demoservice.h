#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <memory>

// A stand-in of the studio-management service on 127.0.0.1, for tests, the guided tour and
// newcomers.
//
// Actions come as POST /index.php?g=…&m=…&a=… and are answered as answers.cpp says. Misbehaviour
// and the record are reached through the members below or, from another process, as JSON under
// /demo:
//   GET  /demo/requests[?action=A]  array of records (requestlog.h), oldest first
//   POST /demo/requests/clear
//   POST /demo/misbehave            misbehaviour.h; answered with 400 and a message when wrong
//   POST /demo/release              lets held and delayed requests go
//   POST /demo/reset                state, record and misbehaviour as at the start, share emptied
//   GET  /demo/state                held (waiting requests), share (folder, by the client's name),
//                                   orders with what was registered for them, and what was
//                                   announced and reported as deleted
//   POST /demo/orders               {"add": N, "shopid": …} or {"id" or "order_photo_id": …,
//                                   "fields": {"netpath": …}} or in place of fields
//                                   "photos": N: so many chosen photos, none of them on the share
// A POST that went well answers {"code":"1"}.
// GET /photos/ID.jpg is a small picture of what lies on disk for a registered or chosen photo.
//
// Everything a client sees lies below the data folder: `share` (the studio's file share),
// `camera-card` and `retouched` (material to import), `tls/ca.pem`. Texts returned by members are
// empty when all went well. Thread-safe apart from start() and stop(), which belong to one thread.
class DemoService
{
public:
    struct Options
    {
        int port = 0;       // 0: any free one
        QString dataFolder; // made if missing
        bool tls = false;
        int orders = 40;
        QString pathPrefix; // put before every path in answers, taken off from paths in requests
        bool pictures = true;
        bool verbose = false; // one line a request on stderr
    };

    explicit DemoService(const Options &options);
    ~DemoService(); // stops
    DemoService(const DemoService &) = delete;
    DemoService &operator=(const DemoService &) = delete;

    // Ready for requests when it returns an empty text.
    QString start();
    // Requests that wait are answered first.
    void stop();

    QString url() const; // without a slash at the end
    int port() const;
    QString caFile() const; // PEM of the authority, with TLS only

    QJsonArray requests(const QString &action = QString()) const;
    void clearRequests();
    QString misbehave(const QJsonObject &misbehaviour);
    void release();
    QString reset();
    QJsonObject state() const;
    QString changeOrders(const QJsonObject &change);

private:
    class Front;
    std::unique_ptr<Front> front_;
};
