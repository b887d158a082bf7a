#include "demo/connection.h"

#include <QDir>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace demo {

namespace {

using NameOfSocket = int (*)(int, sockaddr *, socklen_t *);

int portOf(int descriptor, NameOfSocket nameOfSocket)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (nameOfSocket(descriptor, reinterpret_cast<sockaddr *>(&address), &size) != 0 ||
        address.sin_family != AF_INET)
        return -1;
    return ntohs(address.sin_port);
}

} // namespace

bool dropConnection(int localPort, int remotePort)
{
    // Listing the open descriptors beats trying all numbers: their limit may be a million.
    const QStringList descriptors =
        QDir(QStringLiteral("/dev/fd"))
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : descriptors) {
        const int descriptor = name.toInt();
        if (portOf(descriptor, ::getsockname) == localPort &&
            portOf(descriptor, ::getpeername) == remotePort)
            return ::shutdown(descriptor, SHUT_RDWR) == 0;
    }
    return false;
}

} // namespace demo
