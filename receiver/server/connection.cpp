#include "receiver/server/connection.h"

#include <QLoggingCategory>
#include <QTcpSocket>
#include <algorithm>
#include <cmath>

#include "link/codec.h"
#include "link/limits.h"
#include "receiver/server/sockets.h"

Q_DECLARE_LOGGING_CATEGORY(serverLog)

namespace Receiver {
namespace {

constexpr int fullBatch = 4096;  // values; as many as this do not wait for the next turn

}  // namespace

Connection::Connection(QTcpSocket* socket, Server* server, ValueStore& store, ClientId id)
    : QObject(server),
      m_socket(socket),
      m_server(server),
      m_store(store),
      m_id(id),
      m_channel(socket),
      m_heart(&m_channel, server->options().heartbeatMs, server->options().lostMs, this),
      m_outbox(store, server->epoch()),
      m_peer(QStringLiteral("%1:%2").arg(socket->peerAddress().toString()).arg(socket->peerPort()))
{
    socket->setParent(this);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket->setReadBufferSize(Link::Limits::receiveBytes);
    connect(&m_channel, &Link::Channel::received, this, &Connection::handle);
    connect(&m_channel, &Link::Channel::failed, this,
            [this](const QString& reason) { end(QStringLiteral("the client sent %1").arg(reason)); });
    connect(&m_heart, &Link::Heart::lost, this, &Connection::end);
    connect(socket, &QTcpSocket::disconnected, this, &Connection::socketGone);
    connect(socket, &QTcpSocket::bytesWritten, this, &Connection::drained);
    m_sendTimer.setSingleShot(true);
    m_sendTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_sendTimer, &QTimer::timeout, this, &Connection::send);
    m_helloTimer.setSingleShot(true);
    connect(&m_helloTimer, &QTimer::timeout, this,
            [this] { end(QStringLiteral("connected, but said no Hello")); });
    m_helloTimer.start(server->options().helloMs);
}

// --- what the client says -------------------------------------------------------------------------

void Connection::handle(Link::Message& message)
{
    if (const auto* bye = std::get_if<Link::Bye>(&message)) {
        leave(bye->reason);
        m_channel.close();
        m_socket->disconnectFromHost();
    } else if (const auto* hello = std::get_if<Link::Hello>(&message)) {
        handleHello(*hello);
    } else if (!m_greeted) {
        end(QStringLiteral("%1 came before Hello").arg(QLatin1String(Link::name(message))));
    } else if (const auto* hook = std::get_if<Link::Hook>(&message)) {
        handleHook(*hook);
    } else if (const auto* release = std::get_if<Link::Release>(&message)) {
        m_outbox.releaseHook(release->number);
        schedule();
    } else if (const auto* write = std::get_if<Link::Write>(&message)) {
        handleWrite(*write);
    } else if (std::holds_alternative<Link::Resync>(message)) {
        m_outbox.resync();
        schedule();
    } else if (!std::holds_alternative<Link::Heartbeat>(message)) {
        end(QStringLiteral("%1 is for the driver to say").arg(QLatin1String(Link::name(message))));
    }
}

void Connection::handleHello(const Link::Hello& hello)
{
    if (m_greeted) {
        end(QStringLiteral("Hello came twice"));
        return;
    }
    if (hello.version != Link::protocolVersion) {
        end(QStringLiteral("the client speaks version %1 of the link, the driver version %2; use programs of "
                           "one release")
                .arg(hello.version)
                .arg(Link::protocolVersion));
        return;
    }
    if (hello.session.size() != Link::Limits::sessionBytes) {
        end(QStringLiteral("a session has %1 bytes, not %2")
                .arg(Link::Limits::sessionBytes)
                .arg(hello.session.size()));
        return;
    }
    m_session = hello.session;
    const QString refusal = m_server->admit(this);
    if (!refusal.isEmpty()) {
        end(refusal);
        return;
    }
    m_greeted = true;
    m_helloTimer.stop();
    m_store.setClientName(m_id, hello.client);
    qCInfo(serverLog).noquote() << "client" << hello.client << "at" << m_peer;
    Link::Welcome welcome;
    welcome.epoch = m_server->epoch();
    welcome.driver = m_server->options().driver;
    welcome.streamPort = m_server->options().streamPort;
    m_channel.send(welcome);
}

void Connection::handleHook(const Link::Hook& hook)
{
    QString reason;
    if (m_outbox.addHook(hook.number, hook.path, &reason))
        schedule();
    else
        end(reason);
}

void Connection::handleWrite(const Link::Write& write)
{
    Link::Answer answer;
    answer.number = write.number;
    const double* number = std::get_if<double>(&write.content);
    WriteResult result{Link::AnswerKind::Refused, {}};
    if (write.id == Outbox::hookedFlagId)
        result.reason = QStringLiteral("can be read only");
    else if (!m_outbox.isTold(write.id))
        result.reason = QStringLiteral("there is no such value");
    else if (number && !std::isfinite(*number))
        result.reason = QStringLiteral("expects a finite number");
    else
        result = m_store.write(write.id, write.content, m_id);
    if (m_ended)
        return;
    answer.kind = result.kind;
    answer.reason = result.reason;
    if (m_outbox.isTold(write.id) && write.id != Outbox::hookedFlagId) {
        answer.content = m_store.content(write.id);
        Link::cutToLimit(&answer.content);
    }
    m_channel.send(answer);
    // Who asks without reading the answers has to wait.
    if (m_channel.bytesToWrite() > Link::Limits::unsentBytes)
        m_channel.setPaused(true);
}

// --- what the store says --------------------------------------------------------------------------

void Connection::changed(ValueId id)
{
    m_outbox.changed(id);
    if (!m_sendTimer.isActive() || m_outbox.updatesWaiting() == fullBatch)
        schedule();
}

void Connection::described(ValueId id)
{
    m_outbox.described(id);
    schedule();
}

void Connection::removed(ValueId id)
{
    m_outbox.removed(id);
    schedule();
}

// --- sending --------------------------------------------------------------------------------------

// Snapshots and full batches go at once; other changes are collected for a turn. While the reader
// has not taken what was sent before, nothing more is written: drained() comes back here.
void Connection::schedule()
{
    if (m_ended || m_outbox.isEmpty() || m_channel.bytesToWrite() > Link::Limits::unsentBytes)
        return;
    qint64 wait = 0;
    if (m_sinceSent.isValid() && !m_outbox.hasSnapshots() && m_outbox.updatesWaiting() < fullBatch)
        wait = std::clamp<qint64>(m_server->options().batchMs - m_sinceSent.elapsed(), 0,
                                  m_server->options().batchMs);
    if (!m_sendTimer.isActive() || m_sendTimer.remainingTime() > wait)
        m_sendTimer.start(int(wait));
}

void Connection::send()
{
    m_sinceSent.restart();
    const bool serving = m_outbox.hasSnapshots();
    while (!m_ended && m_channel.bytesToWrite() <= Link::Limits::unsentBytes) {
        const QByteArray payload = m_outbox.takePayload();
        if (payload.isEmpty())
            break;
        m_channel.sendPayload(payload);
    }
    if (serving && !m_ended && !m_outbox.hasSnapshots())
        emit m_server->served();
}

void Connection::drained()
{
    if (m_ended || m_channel.bytesToWrite() > Link::Limits::unsentBytes)
        return;
    m_channel.setPaused(false);
    if (!m_sendTimer.isActive())
        schedule();
}

// --- ending ---------------------------------------------------------------------------------------

void Connection::end(const QString& reason)
{
    if (m_ended)
        return;
    leave(reason);
    sayGoodbye(m_socket, m_channel, reason);
    // A peer that was gone already announces nothing further.
    if (m_socket->state() == QAbstractSocket::UnconnectedState)
        deleteLater();
}

void Connection::socketGone()
{
    leave(QStringLiteral("connection closed"));
    deleteLater();
}

void Connection::leave(const QString& reason)
{
    if (m_ended)
        return;
    m_ended = true;
    m_sendTimer.stop();
    m_helloTimer.stop();
    m_heart.disconnect(this);
    qCInfo(serverLog).noquote() << "client at" << m_peer << "ended:" << reason;
    m_server->forget(this);
}

}  // namespace Receiver
