#pragma once

#include <QString>

/// What the installation, not the user, decides: where the service is and whom to trust. Read from
/// the environment once, before there is an application object; safe from any thread afterwards.
struct Installation
{
    /// TESSAVO_SERVICE_URL, otherwise the address compiled in; without a trailing slash.
    QString serviceUrl;
    /// TESSAVO_CA_FILE: certificates (PEM) trusted besides the system's; empty for none.
    QString caFile;
    /// False when TESSAVO_TLS_VERIFY is "none": any certificate will do, as studios with
    /// self-signed ones need.
    bool verifiesCertificates = true;

    static const Installation &current();

    /// Reads the environment as it is now.
    static Installation read();
};
