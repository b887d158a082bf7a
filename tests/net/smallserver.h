#pragma once

#include <QByteArray>
#include <QTcpServer>
#include <QUrl>
#include <QVector>

/// A server of a few lines, on the test's own thread, that counts what arrives and ends connections
/// as it is told.
class SmallServer : public QTcpServer
{
    Q_OBJECT

public:
    /// What becomes of a request.
    enum class Then {
        Answer,       ///< "{}"; the connection stays
        AnswerAndEnd, ///< the same, and without a warning the connection ends
        End,          ///< the connection ends without a byte
        EndAtHead,    ///< before the body was read
        Reset,
    };

    explicit SmallServer(bool tls);

    /// Plain and, where there are certificates, with TLS.
    static QVector<bool> ways();

    QUrl url() const;
    void setThen(Then then) { then_ = then; }
    int heads() const { return heads_; }
    QByteArray lastBody() const { return lastBody_; }

protected:
    void incomingConnection(qintptr handle) override;

private:
    void read(class QSslSocket *peer, QByteArray *received);

    const bool tls_;
    Then then_ = Then::Answer;
    int heads_ = 0;
    QByteArray lastBody_;
};
