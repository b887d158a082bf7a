#pragma once

#include <QByteArray>
#include <QObject>

class QNetworkReply;

/// Reads the body of a reply while it comes, in small pieces. Nobody knows what something packed
/// unpacks to, and all that is not read yet would be unpacked ahead. A body of more bytes than
/// wanted ends the reply. Belongs to the reply and lives on its thread.
class ReplyBody : public QObject
{
    Q_OBJECT

public:
    /// Before anything of \a reply has come. \a mostBytes: unpacked.
    ReplyBody(QNetworkReply *reply, qint64 mostBytes);

    bool isTooLarge() const { return isTooLarge_; }
    /// What has come so far; all of it once the reply has finished without an error.
    QByteArray take();

private:
    void readOn();

    QNetworkReply *reply_;
    const qint64 mostBytes_;
    QByteArray bytes_;
    bool isTooLarge_ = false;
};
