#include "tests/net/smallserver.h"

#include "tests/support/text.h"

#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>

#include <memory>

#ifndef Q_OS_WIN
#include "demo/certificates.h"

#include <openssl/pem.h>
#endif

namespace {

#ifndef Q_OS_WIN
void encrypt(QSslSocket *peer)
{
    static const demo::Certificates made = demo::Certificates::make();
    unsigned char *der = nullptr;
    const int length = i2d_X509(made.server.get(), &der);
    peer->setLocalCertificate(
        QSslCertificate(QByteArray(reinterpret_cast<const char *>(der), length), QSsl::Der));
    OPENSSL_free(der);
    EVP_PKEY_up_ref(made.serverKey.get()); // the key takes it over
    peer->setPrivateKey(QSslKey(Qt::HANDLE(made.serverKey.get())));
    peer->startServerEncryption();
}
#else
void encrypt(QSslSocket *)
{
}
#endif

} // namespace

SmallServer::SmallServer(bool tls) : tls_(tls)
{
    if (!listen(QHostAddress::LocalHost))
        qFatal("no port to listen on");
}

QVector<bool> SmallServer::ways()
{
#ifndef Q_OS_WIN
    return {false, true};
#else
    return {false};
#endif
}

QUrl SmallServer::url() const
{
    return QUrl("%1://127.0.0.1:%2/a"_s.arg(tls_ ? "https"_s : "http"_s).arg(serverPort()));
}

void SmallServer::incomingConnection(qintptr handle)
{
    auto *peer = new QSslSocket(this);
    peer->setSocketDescriptor(handle);
    const auto received = std::make_shared<QByteArray>();
    connect(peer, &QSslSocket::readyRead, this, [this, peer, received] {
        *received += peer->readAll();
        read(peer, received.get());
    });
    if (tls_)
        encrypt(peer);
}

void SmallServer::read(QSslSocket *peer, QByteArray *received)
{
    const QByteArray lengthField("content-length: ");
    const int head = received->indexOf("\r\n\r\n");
    if (head < 0)
        return;
    if (then_ == Then::EndAtHead) {
        ++heads_;
        received->clear();
        peer->disconnectFromHost();
        return;
    }
    const int length = received->toLower().indexOf(lengthField) + lengthField.size();
    const QByteArray body = received->mid(head + 4);
    if (body.size() < received->mid(length, received->indexOf('\r', length) - length).toInt())
        return;
    ++heads_;
    lastBody_ = body;
    received->clear();
    if (then_ == Then::Answer || then_ == Then::AnswerAndEnd)
        peer->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
    if (then_ == Then::Reset)
        peer->abort();
    else if (then_ != Then::Answer)
        peer->disconnectFromHost();
}
