#include "receiver/streams/streamserver.h"

#include <QLoggingCategory>
#include <QTcpSocket>
#include <algorithm>

#include "receiver/server/sockets.h"
#include "receiver/streams/streamconnection.h"

Q_LOGGING_CATEGORY(streamLog, "receiver.streams")

namespace Receiver {

StreamServer::StreamServer(const StreamOptions& options, QObject* parent)
    : QObject(parent), m_options(options)
{
    connect(&m_listener, &QTcpServer::newConnection, this, &StreamServer::acceptAll);
}

StreamServer::~StreamServer()
{
    blockSignals(true);  // whoever listens is being destroyed as well
    close(QStringLiteral("the driver ends"));
}

bool StreamServer::listen(const QString& host, quint16 port, QString* error)
{
    return listenOn(m_listener, host, port, error);
}

void StreamServer::close(const QString& reason)
{
    m_listener.close();
    const std::vector<StreamConnection*> connections = m_connections;
    for (StreamConnection* connection : connections)
        connection->end(reason);
}

void StreamServer::acceptAll()
{
    while (QTcpSocket* socket = m_listener.nextPendingConnection()) {
        auto* connection = new StreamConnection(socket, this);
        m_connections.push_back(connection);
        if (connectionCount() > m_options.connections) {
            connection->end(QStringLiteral("the driver serves %1 streams already; close one of them")
                                .arg(m_options.connections));
        }
    }
}

void StreamServer::deliver(const PanoramaPicture& frame, quint64 skipped)
{
    const std::vector<StreamConnection*> connections = m_connections;
    for (StreamConnection* connection : connections)
        connection->deliver(frame, skipped);
}

void StreamServer::requested()
{
    updateDemand();
}

void StreamServer::forget(StreamConnection* connection)
{
    m_connections.erase(std::remove(m_connections.begin(), m_connections.end(), connection),
                        m_connections.end());
    updateDemand();
}

void StreamServer::updateDemand()
{
    std::optional<StreamDemand> demand;
    for (const StreamConnection* connection : m_connections) {
        if (!connection->isStarted())
            continue;
        const Link::StreamRequest& request = connection->request();
        if (!demand)
            demand = StreamDemand{int(request.points), request.frameRate, request.window};
        demand->frameRate = std::max(demand->frameRate, request.frameRate);
    }
    const bool changed = demand != m_demand;
    m_demand = demand;
    for (StreamConnection* connection : m_connections)
        connection->tellStart();
    if (changed)
        emit demandChanged();
}

}  // namespace Receiver
