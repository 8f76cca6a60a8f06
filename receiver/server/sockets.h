#pragma once

#include <QString>

class QTcpServer;
class QTcpSocket;

namespace Link {
class Channel;
}

namespace Receiver {

// "localhost" or an address; port 0 takes a free one. False with `error`, naming host, port, reason.
bool listenOn(QTcpServer& listener, const QString& host, quint16 port, QString* error);

// Sends Bye, reads nothing any more and closes the socket; a peer that does not take it is cut off.
void sayGoodbye(QTcpSocket* socket, Link::Channel& channel, const QString& reason);

}  // namespace Receiver
