#pragma once

#include <QList>
#include <QSslCertificate>
#include <QStringList>

class QNetworkRequest;

/// Lets \a request trust what the installation says is to be trusted. Any thread.
void applyTlsSettings(QNetworkRequest *request);

/// The certificates (PEM) of the first of \a files that holds any; those before it are logged.
QList<QSslCertificate> certificatesOf(const QStringList &files);
