#pragma once

#include <QString>

namespace demo {

// Turns paths between this machine's form and the form that the service speaks (back slashes, and
// an optional prefix such as "Z:" for clients that see this disk under a drive letter). Pure.
class WirePaths
{
public:
    explicit WirePaths(QString prefix = QString());

    QString toWire(const QString &absoluteDiskPath) const;
    // The same with slashes, as the client's own disk calls take it, too.
    QString toClient(const QString &absoluteDiskPath) const { return prefix_ + absoluteDiskPath; }
    // Accepts both kinds of slashes, with or without the prefix in either case.
    QString toDisk(const QString &wirePath) const;

private:
    QString prefix_;
};

} // namespace demo
