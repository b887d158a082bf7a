#pragma once

class QByteArray;
class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

/// Posts \a body to the address of \a request over a connection of its own. Whatever becomes of the
/// connection, the server meets the request once: Qt repeats one whose connection ends before a
/// byte of the answer, and by then the service may have acted. Such a reply finishes with an error.
/// \a manager has nothing else under way that is still wanted.
QNetworkReply *postOnce(QNetworkAccessManager *manager, QNetworkRequest request,
                        const QByteArray &body);
