#pragma once

#include <QByteArray>

#include <memory>
#include <openssl/evp.h>
#include <openssl/x509.h>

namespace demo {

struct KeyDeleter
{
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
};
struct CertificateDeleter
{
    void operator()(X509 *certificate) const { X509_free(certificate); }
};
using Key = std::unique_ptr<EVP_PKEY, KeyDeleter>;
using Certificate = std::unique_ptr<X509, CertificateDeleter>;

// A certificate authority of our own and a certificate for 127.0.0.1 and localhost that it signed.
// Made anew at each start; the keys never leave the memory. All members are null when OpenSSL
// failed.
struct Certificates
{
    Certificate authority;
    Certificate server;
    Key serverKey;

    static Certificates make();
    QByteArray authorityPem() const;
};

} // namespace demo
