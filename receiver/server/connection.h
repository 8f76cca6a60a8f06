#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "link/channel.h"
#include "link/heart.h"
#include "receiver/server/outbox.h"
#include "receiver/server/server.h"

class QTcpSocket;

namespace Receiver {

// One client on the driver's side. It lives until its socket is closed; from the moment it ends it
// takes part in nothing any more.
class Connection : public QObject
{
    Q_OBJECT
public:
    // Takes the socket.
    Connection(QTcpSocket* socket, Server* server, ValueStore& store, ClientId id);

    ClientId id() const { return m_id; }
    bool isGreeted() const { return m_greeted; }
    const QByteArray& session() const { return m_session; }
    QString peer() const { return m_peer; }
    bool hasTold(ValueId id) const { return m_outbox.isTold(id); }

    // From the store.
    void changed(ValueId id);
    void described(ValueId id);
    void removed(ValueId id);

    // Says goodbye and closes the socket; the server forgets the connection at once.
    void end(const QString& reason);

private:
    void handle(Link::Message& message);
    void handleHello(const Link::Hello& hello);
    void handleHook(const Link::Hook& hook);
    void handleWrite(const Link::Write& write);
    void socketGone();
    void leave(const QString& reason);
    void schedule();
    void send();
    void drained();

    QTcpSocket* m_socket;
    Server* m_server;
    ValueStore& m_store;
    const ClientId m_id;
    Link::Channel m_channel;
    Link::Heart m_heart;
    Outbox m_outbox;
    QString m_peer;
    QByteArray m_session;
    bool m_greeted = false;
    bool m_ended = false;
    QTimer m_sendTimer;
    QTimer m_helloTimer;
    QElapsedTimer m_sinceSent;
};

}  // namespace Receiver
