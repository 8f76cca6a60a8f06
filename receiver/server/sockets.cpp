#include "receiver/server/sockets.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include "link/channel.h"

namespace Receiver {

namespace {

constexpr int lingerMs = 1000;  // for a goodbye to leave

QHostAddress addressOf(const QString& host)
{
    if (host.isEmpty() || host == QLatin1String("localhost"))
        return QHostAddress(QHostAddress::LocalHost);
    return QHostAddress(host);
}

}  // namespace

bool listenOn(QTcpServer& listener, const QString& host, quint16 port, QString* error)
{
    const QHostAddress address = addressOf(host);
    if (address.isNull()) {
        *error = QStringLiteral("%1:%2: not an address to listen on; give an IP address or localhost")
                     .arg(host)
                     .arg(port);
        return false;
    }
    if (listener.listen(address, port))
        return true;
    *error = QStringLiteral("%1:%2: cannot listen: %3")
                 .arg(address.toString())
                 .arg(port)
                 .arg(listener.errorString());
    return false;
}

void sayGoodbye(QTcpSocket* socket, Link::Channel& channel, const QString& reason)
{
    channel.send(Link::Bye{reason});
    channel.close();
    socket->flush();
    socket->disconnectFromHost();
    QTimer::singleShot(lingerMs, socket, &QTcpSocket::abort);
}

}  // namespace Receiver
