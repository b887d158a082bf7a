#pragma once

#include "net/servicecall.h"

#include <QString>

class QWidget;

/// Tells the user how a call to the service failed: \a refusal (the service's own text, when it
/// answered) or an untrusted certificate in a box, a lost connection in a toast, since trying again
/// is all there is to do. Nothing for a success.
void showServiceFailure(QWidget *parent, const ServiceReply &reply, const QString &refusal);

/// Tells that the connection was refused because the server's certificate is not trusted.
void showCertificateRefused(QWidget *parent, const QString &reason);
