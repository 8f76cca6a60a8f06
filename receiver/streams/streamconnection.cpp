#include "receiver/streams/streamconnection.h"

#include <QLoggingCategory>
#include <QTcpSocket>
#include <cmath>

#include "link/codec.h"
#include "link/limits.h"
#include "receiver/server/sockets.h"
#include "receiver/streams/streamserver.h"

Q_DECLARE_LOGGING_CATEGORY(streamLog)

namespace Receiver {

namespace {

constexpr double frameRateMaximum = 60;  // frames/s
constexpr double averagingMaximum = 60;  // s

}  // namespace

QString refusalOf(const Link::StreamRequest& request, const QString& devicePath)
{
    if (request.version != Link::protocolVersion) {
        return QStringLiteral(
                   "the client speaks version %1 of the link, the driver version %2; use programs of "
                   "one release")
            .arg(request.version)
            .arg(Link::protocolVersion);
    }
    if (request.kind != Link::spectrumStream()) {
        return QStringLiteral("there is no stream \"%1\"; ask for \"%2\"")
            .arg(request.kind, Link::spectrumStream());
    }
    if (request.path != devicePath)
        return QStringLiteral("there is no device %1; this is %2").arg(request.path, devicePath);
    if (request.points < 1 || request.points > quint32(Link::Limits::scanPoints)) {
        return QStringLiteral("%1 points in a frame; ask for 1 to %2")
            .arg(request.points)
            .arg(Link::Limits::scanPoints);
    }
    if (!(request.frameRate > 0 && request.frameRate <= frameRateMaximum)) {
        return QStringLiteral("%1 frames per second; ask for more than 0 and up to %2")
            .arg(request.frameRate)
            .arg(frameRateMaximum);
    }
    if (!(request.averagingSeconds >= 0 && request.averagingSeconds <= averagingMaximum)) {
        return QStringLiteral("averaging over %1 s; ask for 0 to %2 s")
            .arg(request.averagingSeconds)
            .arg(averagingMaximum);
    }
    return {};
}

StreamConnection::StreamConnection(QTcpSocket* socket, StreamServer* server)
    : QObject(server),
      m_socket(socket),
      m_server(server),
      m_channel(socket),
      m_heart(&m_channel, server->options().heartbeatMs, server->options().lostMs, this),
      m_peer(QStringLiteral("%1:%2").arg(socket->peerAddress().toString()).arg(socket->peerPort()))
{
    socket->setParent(this);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket->setReadBufferSize(Link::Limits::receiveBytes);
    connect(&m_channel, &Link::Channel::received, this, &StreamConnection::handle);
    connect(&m_channel, &Link::Channel::failed, this,
            [this](const QString& reason) { end(QStringLiteral("the client sent %1").arg(reason)); });
    connect(&m_heart, &Link::Heart::lost, this, &StreamConnection::end);
    connect(socket, &QTcpSocket::disconnected, this, [this] {
        leave(QStringLiteral("connection closed"));
        deleteLater();
    });
    m_requestTimer.setSingleShot(true);
    connect(&m_requestTimer, &QTimer::timeout, this,
            [this] { end(QStringLiteral("connected, but asked for no stream")); });
    m_requestTimer.start(server->options().requestMs);
}

void StreamConnection::handle(const Link::Message& message)
{
    if (const auto* bye = std::get_if<Link::Bye>(&message)) {
        leave(bye->reason);
        m_channel.close();
        m_socket->disconnectFromHost();
    } else if (const auto* request = std::get_if<Link::StreamRequest>(&message)) {
        handleRequest(*request);
    } else if (std::holds_alternative<Link::Heartbeat>(message)) {
        return;
    } else if (!m_reducer) {
        end(QStringLiteral("%1 came before StreamRequest").arg(QLatin1String(Link::name(message))));
    } else if (const auto* ready = std::get_if<Link::StreamReady>(&message)) {
        handleReady(*ready);
    } else {
        end(QStringLiteral("%1 is not for a stream's client to say").arg(QLatin1String(Link::name(message))));
    }
}

void StreamConnection::handleRequest(const Link::StreamRequest& request)
{
    const QString refusal = refusalOf(request, m_server->options().devicePath);
    if (!refusal.isEmpty()) {
        end(refusal);
        return;
    }
    if (!m_reducer)
        qCInfo(streamLog).noquote() << "spectrum to" << m_peer;
    m_requestTimer.stop();
    m_request = request;
    m_reducer = std::make_unique<ScanReducer>(request);
    m_toldWindow.reset();
    m_due = 0;
    m_server->requested();
}

void StreamConnection::tellStart()
{
    if (!isStarted() || !m_server->demand())
        return;
    const Link::StreamWindow window = m_server->demand()->window;
    if (m_toldWindow == window)
        return;
    m_toldWindow = window;
    Link::StreamStart start;
    start.unacknowledged = framesAhead;
    start.frameRate = m_request.frameRate;
    start.window = window;
    m_channel.send(start);
}

void StreamConnection::handleReady(const Link::StreamReady& ready)
{
    if (ready.sequence > m_lastSent) {
        end(QStringLiteral("frame %1 was acknowledged, but %2 is the last one sent")
                .arg(ready.sequence)
                .arg(m_lastSent));
        return;
    }
    while (!m_unacknowledged.empty() && m_unacknowledged.front() <= ready.sequence)
        m_unacknowledged.pop_front();
    sendWaiting();
}

// Frames come a little early or late: a quarter of the interval is let pass.
bool StreamConnection::isDue(qint64 time)
{
    const auto interval = qint64(1e6 / m_request.frameRate);
    if (m_due == 0 || std::abs(time - m_due) > 2 * interval)
        m_due = time;
    if (time < m_due - interval / 4)
        return false;
    m_due += interval;
    return true;
}

void StreamConnection::deliver(const PanoramaPicture& frame, quint64 skipped)
{
    if (!isStarted())
        return;
    m_sequence += skipped;
    m_skipped += skipped;
    if (!isDue(frame->time))
        return;
    ++m_sequence;
    if (m_waiting)
        ++m_skipped;
    m_waiting = frame;
    sendWaiting();
}

void StreamConnection::sendWaiting()
{
    if (!m_waiting || m_unacknowledged.size() >= framesAhead)
        return;
    Link::ScanData data = m_reducer->reduce(*m_waiting);
    m_waiting.reset();
    data.sequence = m_sequence;
    data.skipped = m_skipped;
    m_skipped = 0;
    m_lastSent = m_sequence;
    m_unacknowledged.push_back(m_sequence);
    m_channel.send(data);
}

void StreamConnection::end(const QString& reason)
{
    if (m_ended)
        return;
    leave(reason);
    sayGoodbye(m_socket, m_channel, reason);
    // A peer that was gone already announces nothing further.
    if (m_socket->state() == QAbstractSocket::UnconnectedState)
        deleteLater();
}

void StreamConnection::leave(const QString& reason)
{
    if (m_ended)
        return;
    m_ended = true;
    m_waiting.reset();
    m_requestTimer.stop();
    m_heart.disconnect(this);
    qCInfo(streamLog).noquote() << "stream to" << m_peer << "ended:" << reason;
    m_server->forget(this);
}

}  // namespace Receiver
