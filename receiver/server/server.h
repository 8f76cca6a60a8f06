#pragma once

#include <QObject>
#include <QTcpServer>
#include <vector>

#include "link/limits.h"
#include "receiver/values/valuestore.h"

namespace Receiver {

class Connection;

struct ServerOptions
{
    QString driver = QStringLiteral("rxdriver");  // name and version, for people
    quint16 streamPort = 0;                       // told in the Welcome; 0: no streams
    int heartbeatMs = 1000;
    int lostMs = 3000;   // silence after which a client counts as gone
    int helloMs = 3000;  // from the connection to the client's Hello
    int batchMs = 20;    // changes are collected for this long, unless there are very many
    int connections = Link::Limits::connections;
};

// Serves the values of a store to any number of clients on one thread. A client's claims are freed
// (ValueStore::clientGone) as soon as its connection ends, or when the same session connects again.
class Server : public QObject, private StoreListener
{
    Q_OBJECT
public:
    // The store must outlive the server.
    explicit Server(ValueStore& store, const ServerOptions& options = {}, QObject* parent = nullptr);
    ~Server() override;

    // "localhost" or an address; port 0 takes a free one. False with `error`, naming host, port, reason.
    bool listen(const QString& host, quint16 port, QString* error);
    quint16 port() const { return m_listener.serverPort(); }
    void setStreamPort(quint16 port) { m_options.streamPort = port; }

    // Says goodbye to all clients and listens no more.
    void close(const QString& reason);

    const ServerOptions& options() const { return m_options; }
    quint64 epoch() const { return m_epoch; }  // another one at every start
    int connectionCount() const;               // greeted ones
    bool hasTold(ValueId id) const;            // some client has the value in its snapshot

    // --- for Connection
    // Ends an older connection of the same session. Gives the reason when there is no room; else empty.
    QString admit(Connection* connection);
    void forget(Connection* connection);

signals:
    void served();  // the snapshots of all hooks of one client were sent

private:
    void acceptAll();
    void valueChanged(ValueId id) override;
    void descriptionChanged(ValueId id) override;
    void valueRemoved(ValueId id) override;

    ValueStore& m_store;
    ServerOptions m_options;
    const quint64 m_epoch;
    QTcpServer m_listener;
    std::vector<Connection*> m_connections;  // without those that ended
    ClientId m_nextClient = 1;
};

}  // namespace Receiver
