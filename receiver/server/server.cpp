#include "receiver/server/server.h"

#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <algorithm>

#include "receiver/server/connection.h"
#include "receiver/server/sockets.h"

Q_LOGGING_CATEGORY(serverLog, "receiver.server")

namespace Receiver {
namespace {

// Connections that have not said Hello yet, beyond those that are served.
constexpr int waitingRoom = 16;

}  // namespace

Server::Server(ValueStore& store, const ServerOptions& options, QObject* parent)
    : QObject(parent),
      m_store(store),
      m_options(options),
      m_epoch(QRandomGenerator::system()->generate64() | 1)
{
    m_store.addListener(this);
    connect(&m_listener, &QTcpServer::newConnection, this, &Server::acceptAll);
}

Server::~Server()
{
    close(QStringLiteral("the driver ends"));
    m_store.removeListener(this);
}

bool Server::listen(const QString& host, quint16 port, QString* error)
{
    return listenOn(m_listener, host, port, error);
}

void Server::close(const QString& reason)
{
    m_listener.close();
    const std::vector<Connection*> connections = m_connections;
    for (Connection* connection : connections) {
        // One may end another by what its clients claimed.
        if (std::find(m_connections.begin(), m_connections.end(), connection) != m_connections.end())
            connection->end(reason);
    }
}

int Server::connectionCount() const
{
    return int(std::count_if(m_connections.begin(), m_connections.end(),
                             [](const Connection* connection) { return connection->isGreeted(); }));
}

bool Server::hasTold(ValueId id) const
{
    return std::any_of(m_connections.begin(), m_connections.end(),
                       [id](const Connection* connection) { return connection->hasTold(id); });
}

void Server::acceptAll()
{
    while (QTcpSocket* socket = m_listener.nextPendingConnection()) {
        auto* connection = new Connection(socket, this, m_store, m_nextClient++);
        m_connections.push_back(connection);
        if (int(m_connections.size()) > m_options.connections + waitingRoom)
            connection->end(QStringLiteral("too many connections at once"));
    }
}

QString Server::admit(Connection* connection)
{
    const auto old =
        std::find_if(m_connections.begin(), m_connections.end(), [connection](const Connection* other) {
            return other != connection && other->isGreeted() && other->session() == connection->session();
        });
    if (old != m_connections.end())
        (*old)->end(QStringLiteral("the same client connected again"));
    if (connectionCount() < m_options.connections)
        return {};
    return QStringLiteral("the driver serves %1 connections already; close one of them")
        .arg(m_options.connections);
}

void Server::forget(Connection* connection)
{
    m_connections.erase(std::remove(m_connections.begin(), m_connections.end(), connection),
                        m_connections.end());
    if (connection->isGreeted())
        m_store.clientGone(connection->id());
}

void Server::valueChanged(ValueId id)
{
    for (Connection* connection : m_connections)
        connection->changed(id);
}

void Server::descriptionChanged(ValueId id)
{
    for (Connection* connection : m_connections)
        connection->described(id);
}

void Server::valueRemoved(ValueId id)
{
    for (Connection* connection : m_connections)
        connection->removed(id);
}

}  // namespace Receiver
