#include "demo/certificates.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace demo {

namespace {

constexpr long hour = 3600;
constexpr long validFor = 30L * 24 * hour;

bool addExtension(X509 *certificate, X509 *issuer, int kind, const char *value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value);
    if (!extension)
        return false;
    const bool added = X509_add_ext(certificate, extension, -1) == 1;
    X509_EXTENSION_free(extension);
    return added;
}

// Everything but the extensions and the signature.
Certificate draft(const char *commonName, long serial, EVP_PKEY *key)
{
    Certificate certificate(X509_new());
    if (!certificate)
        return {};
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serial);
    // A client whose clock lags a little must still find it valid.
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -hour);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), validFor);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(commonName), -1, -1, 0);
    if (X509_set_pubkey(certificate.get(), key) != 1)
        return {};
    return certificate;
}

bool finish(X509 *certificate, X509 *issuer, EVP_PKEY *issuerKey)
{
    // A root that names no issuer's key at all is told from one that names an empty one: some
    // clients look for the issuer of the latter, and find none.
    return X509_set_issuer_name(certificate, X509_get_subject_name(issuer)) == 1 &&
           addExtension(certificate, issuer, NID_subject_key_identifier, "hash") &&
           (certificate == issuer ||
            addExtension(certificate, issuer, NID_authority_key_identifier, "keyid")) &&
           X509_sign(certificate, issuerKey, EVP_sha256()) > 0;
}

} // namespace

Certificates Certificates::make()
{
    const Key authorityKey(EVP_EC_gen("P-256"));
    Certificates made;
    made.serverKey.reset(EVP_EC_gen("P-256"));
    if (!authorityKey || !made.serverKey)
        return {};
    // The serial of a new authority differs, so that a client never takes a cached one for it.
    const long serial = static_cast<long>(time(nullptr));
    made.authority = draft("Tessavo demo authority", serial, authorityKey.get());
    made.server = draft("127.0.0.1", serial + 1, made.serverKey.get());
    X509 *authority = made.authority.get();
    X509 *server = made.server.get();
    if (!authority || !server ||
        !addExtension(authority, authority, NID_basic_constraints, "critical,CA:TRUE") ||
        !addExtension(authority, authority, NID_key_usage, "critical,keyCertSign,cRLSign") ||
        !finish(authority, authority, authorityKey.get()) ||
        !addExtension(server, authority, NID_basic_constraints, "critical,CA:FALSE") ||
        !addExtension(server, authority, NID_key_usage, "critical,digitalSignature") ||
        !addExtension(server, authority, NID_ext_key_usage, "serverAuth") ||
        !addExtension(server, authority, NID_subject_alt_name, "IP:127.0.0.1,DNS:localhost") ||
        !finish(server, authority, authorityKey.get()))
        return {};
    return made;
}

QByteArray Certificates::authorityPem() const
{
    BIO *memory = BIO_new(BIO_s_mem());
    char *text = nullptr;
    QByteArray pem;
    if (authority && PEM_write_bio_X509(memory, authority.get()) == 1) {
        const long size = BIO_get_mem_data(memory, &text);
        pem = QByteArray(text, static_cast<int>(size));
    }
    BIO_free(memory);
    return pem;
}

} // namespace demo
