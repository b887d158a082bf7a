#pragma once

namespace demo {

// Ends the TCP connection between our localPort and a client's remotePort, both on 127.0.0.1, from
// this process's side and without another byte. The server library offers no such thing: it always
// writes at least a status line. Whoever writes to the connection later meets an ordinary error.
// Returns false when there is no such connection.
bool dropConnection(int localPort, int remotePort);

} // namespace demo
