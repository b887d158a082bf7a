#pragma once

#include <QString>
#include <QStringList>

/// What the installation, not the user, decides: where the service is, whom to trust and how copies
/// are looked at. Read once,
/// before there is an application object; safe from any thread afterwards.
///
/// Each setting comes from the environment; what is not set there from the file tessavo-tools.ini
/// in the program's folder, which the installer writes and the program only reads:
///
///     [service]
///     url = https://studio.example
///     ca-file = studio.pem
///     tls-verify = none
///     [ledger]
///     enabled = no
///
///     [import]
///     verify = size
///
/// A value that makes no sense counts as not set; a log line says so.
struct Installation
{
    /// TESSAVO_SERVICE_URL or `url`, otherwise the address compiled in; without a trailing slash.
    /// Empty when there is none at all.
    QString serviceUrl;
    /// TESSAVO_CA_FILE and `ca-file` (when relative, from the program's folder): certificates (PEM)
    /// trusted besides the system's. The first file that holds any counts; empty for none.
    QStringList caFiles;
    /// False when TESSAVO_TLS_VERIFY or `tls-verify` is "none": any certificate will do, as studios
    /// with self-signed ones need. "yes" says expressly what holds anyway.
    bool verifiesCertificates = true;
    /// False when TESSAVO_LEDGER or `enabled` is "no": what is imported is not recorded on this
    /// machine.
    bool keepsLedger = true;

    /// False when TESSAVO_IMPORT_VERIFY or `verify` is "size": imported files are compared by their
    /// size alone. "read-back" says expressly what holds anyway.
    bool readsImportsBack = true;
    /// Whether either was said; otherwise it is the user's to choose.
    bool decidesImports = false;

    static const Installation &current();

    /// Reads the environment and the file as they are now.
    static Installation read(const QString &iniFile = standardFile());

    static QString standardFile();
};
