#pragma once

#include <QObject>
#include <QTcpServer>
#include <optional>
#include <vector>

#include "link/limits.h"
#include "link/messages.h"
#include "receiver/dsp/panoramatap.h"

namespace Receiver {

class StreamConnection;

struct StreamOptions
{
    QString devicePath = QStringLiteral("/RX1");
    int heartbeatMs = 1000;
    int lostMs = 3000;     // silence after which a client counts as gone
    int requestMs = 3000;  // from the connection to the client's StreamRequest
    int connections = Link::Limits::streamConnections;
};

// What a panorama must be like for those who listen.
struct StreamDemand
{
    int points = 0;  // in a frame
    double frameRate = 0;
    Link::StreamWindow window = Link::StreamWindow::BlackmanHarris;

    bool operator==(const StreamDemand& other) const
    {
        return points == other.points && frameRate == other.frameRate && window == other.window;
    }
    bool operator!=(const StreamDemand& other) const { return !(*this == other); }
};

// Sends the panorama to any number of clients on one thread. They share one: its resolution and its
// window are what the client asked for that was there first, its frame rate is the highest that
// anyone wants. Each client has its own detector, averaging, frame rate and number of points.
class StreamServer : public QObject
{
    Q_OBJECT
public:
    explicit StreamServer(const StreamOptions& options = {}, QObject* parent = nullptr);
    ~StreamServer() override;

    bool listen(const QString& host, quint16 port, QString* error);  // see listenOn
    quint16 port() const { return m_listener.serverPort(); }

    // Says goodbye to all clients and listens no more.
    void close(const QString& reason);

    // Nothing while nobody listens.
    const std::optional<StreamDemand>& demand() const { return m_demand; }

    // `skipped` frames before this one never came here.
    void deliver(const PanoramaPicture& frame, quint64 skipped);

    const StreamOptions& options() const { return m_options; }
    int connectionCount() const { return int(m_connections.size()); }

    // --- for StreamConnection
    void requested();  // a client asked for a stream, or for another one
    void forget(StreamConnection* connection);

signals:
    void demandChanged();

private:
    void acceptAll();
    void updateDemand();

    StreamOptions m_options;
    QTcpServer m_listener;
    std::vector<StreamConnection*>
        m_connections;  // in the order in which they came, without those that ended
    std::optional<StreamDemand> m_demand;
};

}  // namespace Receiver
