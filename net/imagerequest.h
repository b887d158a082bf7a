#pragma once

#include <QNetworkRequest>
#include <QString>

class QNetworkAccessManager;
class QNetworkReply;
class QUrl;

/// Whether a picture may be fetched from \a url; anything else, such as a file, is no business of
/// the service's.
bool isImageAddress(const QUrl &url);

/// Whether a fetch that was sent from \a from to \a to may go there: to where a picture may be
/// fetched from, not from an encrypted connection to an open one, and not to another host with the
/// token of the service.
bool isImageRedirect(const QUrl &from, const QUrl &to);

/// Fetches the picture at the address of \a request, which is one for pictures, with whatever
/// headers it has. A few redirects are followed, as isImageRedirect() allows. The installation
/// says whom to trust.
QNetworkReply *getImage(QNetworkAccessManager *manager, QNetworkRequest request);

/// Why a reply to getImage() failed, in words for the user. By its code: Qt's words repeat the
/// address, which may hold a token.
QString imageProblem(const QNetworkReply &reply);
