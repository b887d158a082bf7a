#include "demo/demoservice.h"

#include "demo/answers.h"
#include "demo/backstage.h"
#include "demo/certificates.h"
#include "demo/connection.h"
#include "demo/distributionmaterial.h"
#include "demo/orderbook.h"
#include "demo/pictures.h"

#include <QDir>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <httplib.h>
#include <thread>

namespace {

// Requests that are held keep their thread, and everything else must go on beside them.
constexpr size_t threadCount = 32;
constexpr int readTimeoutSeconds = 60;
constexpr size_t hugeBodySize = size_t(200) * 1024 * 1024;
constexpr size_t pieceSize = size_t(256) * 1024;
const char host[] = "127.0.0.1";

QByteArray bytes(const std::string &text)
{
    return QByteArray(text.data(), static_cast<int>(text.size()));
}

QByteArray queryOf(const httplib::Request &request)
{
    const size_t mark = request.target.find('?');
    return mark == std::string::npos ? QByteArray() : bytes(request.target.substr(mark + 1));
}

void setContent(httplib::Response &response, const QByteArray &body, const QByteArray &type)
{
    response.set_content(body.constData(), static_cast<size_t>(body.size()), type.constData());
}

void setJson(httplib::Response &response, const QJsonDocument &document)
{
    setContent(response, document.toJson(QJsonDocument::Compact), "application/json");
}

// The library takes forms of up to 8 kB when it reads a body by itself; the announcement of one
// wedding's photos is longer. A request whose client went away half-way is answered here: it never
// came.
bool readBody(const httplib::ContentReader &reader, httplib::Response &response, QByteArray *body)
{
    const bool whole = reader([&](const char *data, size_t size) {
        body->append(data, static_cast<int>(size));
        return true;
    });
    if (!whole)
        response.status = 400;
    return whole;
}

// The next piece of a body that begins with some bytes and goes on without meaning.
bool sendPiece(const QByteArray &begin, size_t offset, size_t left, httplib::DataSink &sink)
{
    const QByteArray filler(static_cast<int>(std::min(left, pieceSize)), '\0');
    const QByteArray &piece = offset == 0 ? begin : filler;
    return sink.is_writable() && sink.write(piece.constData(), static_cast<size_t>(piece.size()));
}

bool useCertificates(SSL_CTX &context, const demo::Certificates &certificates)
{
    if (!certificates.server)
        return false;
    // The root goes along: clients may want to look at the whole chain.
    X509_up_ref(certificates.authority.get());
    return SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION) == 1 &&
           SSL_CTX_use_certificate(&context, certificates.server.get()) == 1 &&
           SSL_CTX_use_PrivateKey(&context, certificates.serverKey.get()) == 1 &&
           SSL_CTX_add_extra_chain_cert(&context, certificates.authority.get()) == 1;
}

} // namespace

// The HTTP side of the service.
class DemoService::Front
{
public:
    explicit Front(const Options &options);
    ~Front() { stop(); }

    QString start();
    void stop();
    QString url() const;
    int port() const { return port_; }
    QString caFile() const;
    demo::Backstage &backstage() { return backstage_; }

private:
    using Control = std::function<QString(const QJsonObject &)>;

    QString prepareData();
    QString prepareTls();
    QString bind();
    void addRoutes();
    void addControl(const char *path, const Control &control);
    void answer(const httplib::Request &request, httplib::Response &response,
                const QByteArray &body);
    void send(const httplib::Request &request, httplib::Response &response,
              const demo::Backstage::Reply &reply);

    Options options_;
    demo::Backstage backstage_;
    std::unique_ptr<httplib::Server> server_;
    std::thread listener_;
    int port_ = 0;
};

DemoService::Front::Front(const Options &options)
    : options_(options)
    , backstage_(QDir(options.dataFolder).absolutePath(), options.pathPrefix, options.orders)
{
    options_.dataFolder = QDir(options.dataFolder).absolutePath();
}

QString DemoService::Front::url() const
{
    return QStringLiteral("%1://%2:%3")
        .arg(options_.tls ? QStringLiteral("https") : QStringLiteral("http"),
             QString::fromLatin1(host))
        .arg(port_);
}

QString DemoService::Front::caFile() const
{
    return options_.tls ? QString(options_.dataFolder + QStringLiteral("/tls/ca.pem")) : QString();
}

QString DemoService::Front::start()
{
    QString problem = prepareData();
    if (problem.isEmpty() && options_.tls)
        problem = prepareTls();
    else if (problem.isEmpty())
        server_ = std::make_unique<httplib::Server>();
    if (problem.isEmpty())
        problem = bind();
    if (!problem.isEmpty())
        return problem;
    backstage_.setServiceUrl(url());
    addRoutes();
    // The port is bound and its queue open: a client that comes before this thread runs just waits.
    listener_ = std::thread([this] { server_->listen_after_bind(); });
    while (!server_->is_running())
        std::this_thread::yield();
    return QString();
}

QString DemoService::Front::prepareData()
{
    if (!QDir().mkpath(options_.dataFolder))
        return QStringLiteral("cannot make %1").arg(options_.dataFolder);
    QString problem = backstage_.open();
    if (!problem.isEmpty() || !options_.pictures)
        return problem;
    return demo::makeMaterial(options_.dataFolder, demo::firstOrderChoice());
}

QString DemoService::Front::prepareTls()
{
    const demo::Certificates certificates = demo::Certificates::make();
    server_ = std::make_unique<httplib::SSLServer>(
        [&](SSL_CTX &context) { return useCertificates(context, certificates); });
    if (!server_->is_valid())
        return QStringLiteral("cannot make the TLS certificates");
    const QByteArray pem = certificates.authorityPem();
    QDir().mkpath(options_.dataFolder + QStringLiteral("/tls"));
    QSaveFile file(caFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(pem) != pem.size() || !file.commit())
        return QStringLiteral("cannot write %1").arg(caFile());
    return QString();
}

QString DemoService::Front::bind()
{
    server_->new_task_queue = [] { return new httplib::ThreadPool(threadCount); };
    server_->set_tcp_nodelay(true);
    server_->set_keep_alive_max_count(1);
    server_->set_read_timeout(readTimeoutSeconds);
    // The library would let two services share one port without a word.
    server_->set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    if (options_.port == 0)
        port_ = server_->bind_to_any_port(host);
    else
        port_ = server_->bind_to_port(host, options_.port) ? options_.port : -1;
    if (port_ < 0)
        return QStringLiteral("cannot listen on port %1").arg(options_.port);
    return QString();
}

void DemoService::Front::addControl(const char *path, const Control &control)
{
    server_->Post(path, [control](const httplib::Request &, httplib::Response &response,
                                  const httplib::ContentReader &reader) {
        QByteArray body;
        if (!readBody(reader, response, &body))
            return;
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(body, &error);
        QString problem;
        if (!body.trimmed().isEmpty() && !document.isObject())
            problem = QStringLiteral("not a JSON object: %1").arg(error.errorString());
        else
            problem = control(document.object());
        response.status = problem.isEmpty() ? 200 : 400;
        setJson(response, QJsonDocument(QJsonObject{
                              {QStringLiteral("code"), QString::number(problem.isEmpty() ? 1 : 0)},
                              {QStringLiteral("message"), problem}}));
    });
}

void DemoService::Front::addRoutes()
{
    server_->Post("/index\\.php",
                  [this](const httplib::Request &request, httplib::Response &response,
                         const httplib::ContentReader &reader) {
                      QByteArray body;
                      if (readBody(reader, response, &body))
                          answer(request, response, body);
                  });
    server_->Get("/photos/.*",
                 [this](const httplib::Request &request, httplib::Response &response) {
                     send(request, response,
                          backstage_.picture(QString::fromStdString(request.path),
                                             bytes(request.get_header_value("User-Agent"))));
                 });
    const auto draw = [this](const httplib::Request &request, httplib::Response &response,
                             const std::function<QByteArray()> &drawn) {
        send(request, response,
             backstage_.picture(QString::fromStdString(request.path),
                                bytes(request.get_header_value("User-Agent")), drawn));
    };
    server_->Get(
        "/index\\.php", [draw](const httplib::Request &request, httplib::Response &response) {
            const demo::Fields query = demo::decodeForm(queryOf(request));
            if (query.value(QStringLiteral("a")) != QStringLiteral("getbarcodegen")) {
                response.status = 404;
                return;
            }
            draw(request, response, [number = query.value(QStringLiteral("orderpayforkey"))] {
                return demo::barcodePicture(number);
            });
        });
    server_->Get("/distribution/.*",
                 [draw](const httplib::Request &request, httplib::Response &response) {
                     draw(request, response, [path = QString::fromStdString(request.path)] {
                         return demo::distributionPicture(path);
                     });
                 });
    server_->Get(
        "/demo/requests", [this](const httplib::Request &request, httplib::Response &response) {
            const demo::Fields query = demo::decodeForm(queryOf(request));
            setJson(response,
                    QJsonDocument(backstage_.requests(query.value(QStringLiteral("action")))));
        });
    server_->Get("/demo/state", [this](const httplib::Request &, httplib::Response &response) {
        setJson(response, QJsonDocument(backstage_.state()));
    });
    addControl("/demo/requests/clear", [this](const QJsonObject &) {
        backstage_.clearRequests();
        return QString();
    });
    addControl("/demo/release", [this](const QJsonObject &) {
        backstage_.release();
        return QString();
    });
    addControl("/demo/misbehave",
               [this](const QJsonObject &told) { return backstage_.misbehave(told); });
    addControl("/demo/reset", [this](const QJsonObject &) { return backstage_.reset(); });
    addControl("/demo/orders",
               [this](const QJsonObject &change) { return backstage_.changeOrders(change); });
}

void DemoService::Front::answer(const httplib::Request &request, httplib::Response &response,
                                const QByteArray &body)
{
    const QByteArray query = queryOf(request);
    const demo::Backstage::Reply reply =
        backstage_.handle(query, bytes(request.get_header_value("Content-Type")), body);
    if (options_.verbose) {
        fprintf(stderr, "%s %d bytes -> %d, %d bytes %s\n", query.constData(), body.size(),
                reply.status, reply.body.size(), reply.kind.toUtf8().constData());
    }
    send(request, response, reply);
}

void DemoService::Front::send(const httplib::Request &request, httplib::Response &response,
                              const demo::Backstage::Reply &reply)
{
    response.status = reply.status;
    if (!reply.location.isEmpty())
        response.set_header("Location", reply.location.toStdString());
    switch (reply.form) {
    case demo::Backstage::Reply::Form::Whole:
        setContent(response, reply.body, reply.contentType);
        break;
    case demo::Backstage::Reply::Form::HeadOnly:
        // A body that fails at its first byte makes the library give the connection up.
        response.set_content_provider(1, reply.contentType.constData(),
                                      [](size_t, size_t, httplib::DataSink &) { return false; });
        break;
    case demo::Backstage::Reply::Form::Huge:
        response.set_content_provider(
            hugeBodySize, reply.contentType.constData(),
            [begin = reply.body](size_t offset, size_t left, httplib::DataSink &sink) {
                return sendPiece(begin, offset, left, sink);
            });
        break;
    case demo::Backstage::Reply::Form::Endless:
        response.set_chunked_content_provider(
            reply.contentType.constData(),
            [this, begin = reply.body](size_t offset, httplib::DataSink &sink) {
                return backstage_.pause() && sendPiece(begin, offset, 1, sink);
            });
        break;
    case demo::Backstage::Reply::Form::Nothing:
        demo::dropConnection(request.local_port, request.remote_port);
        break;
    }
}

void DemoService::Front::stop()
{
    if (!listener_.joinable())
        return;
    backstage_.close();
    server_->stop();
    listener_.join();
}

DemoService::DemoService(const Options &options) : front_(std::make_unique<Front>(options))
{
}

DemoService::~DemoService() = default;

QString DemoService::start()
{
    return front_->start();
}

void DemoService::stop()
{
    front_->stop();
}

QString DemoService::url() const
{
    return front_->url();
}

int DemoService::port() const
{
    return front_->port();
}

QString DemoService::caFile() const
{
    return front_->caFile();
}

QJsonArray DemoService::requests(const QString &action) const
{
    return front_->backstage().requests(action);
}

void DemoService::clearRequests()
{
    front_->backstage().clearRequests();
}

QString DemoService::misbehave(const QJsonObject &misbehaviour)
{
    return front_->backstage().misbehave(misbehaviour);
}

void DemoService::release()
{
    front_->backstage().release();
}

QString DemoService::reset()
{
    return front_->backstage().reset();
}

QJsonObject DemoService::state() const
{
    return front_->backstage().state();
}

QString DemoService::changeOrders(const QJsonObject &change)
{
    return front_->backstage().changeOrders(change);
}
