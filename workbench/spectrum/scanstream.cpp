#include "spectrum/scanstream.h"

#include <QTcpSocket>

#include "link/channel.h"
#include "link/heart.h"
#include "link/limits.h"

ScanStream::ScanStream(const ScanStreamOptions& options, QObject* parent)
    : QObject(parent), m_options(options), m_address(ScanAddress::read(QString()))
{
    m_request.kind = Link::spectrumStream();
    m_step.setSingleShot(true);
    connect(&m_step, &QTimer::timeout, this, &ScanStream::stepOver);
}

ScanStream::~ScanStream()
{
    dropSocket();
}

void ScanStream::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    emit stateChanged();
}

void ScanStream::setAddress(const QString& address)
{
    const ScanAddress read = ScanAddress::read(address);
    if (read.host == m_address.host && read.port == m_address.port && read.problem == m_address.problem)
        return;
    m_address = read;
    if (isRunning()) {
        stop();
        start();
    }
}

void ScanStream::setRequest(const Link::StreamRequest& request)
{
    const Link::StreamRequest& old = m_request;
    const bool same = request.kind == old.kind && request.path == old.path && request.points == old.points &&
                      request.frameRate == old.frameRate &&
                      request.averagingSeconds == old.averagingSeconds && request.window == old.window &&
                      request.detector == old.detector;
    m_request = request;
    if (!same && m_channel && (m_state == State::Starting || m_state == State::Live))
        m_channel->send(m_request);
}

void ScanStream::start()
{
    if (isRunning())
        return;
    m_failure.clear();
    m_backoffMs = m_options.backoffFirstMs;
    attempt();
}

void ScanStream::stop()
{
    if (!isRunning())
        return;
    m_step.stop();
    if (m_channel && (m_state == State::Starting || m_state == State::Live)) {
        m_channel->send(Link::Bye{tr("the picture is not shown")});
        m_socket->flush();
    }
    dropSocket();
    setState(State::Stopped);
}

void ScanStream::attempt()
{
    dropSocket();
    if (!m_address.isValid()) {
        setState(State::Connecting);
        fail(m_address.problem, false);
        return;
    }
    m_step.start(m_options.connectMs);
    m_socket = new QTcpSocket(this);
    m_socket->setReadBufferSize(Link::Limits::receiveBytes);
    connect(m_socket, &QTcpSocket::connected, this, &ScanStream::request);
    connect(m_socket, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
        fail(error == QAbstractSocket::RemoteHostClosedError
                 ? tr("the driver closed the connection")
                 : tr("%1: %2").arg(m_address.text(), m_socket->errorString()),
             false);
    });
    setState(State::Connecting);
    m_socket->connectToHost(m_address.host, m_address.port);
}

void ScanStream::request()
{
    m_step.start(m_options.startMs);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_emptied += m_check.emptied();
    m_check = ScanFrameCheck();
    m_channel = new Link::Channel(m_socket, m_socket);
    connect(m_channel, &Link::Channel::received, this, &ScanStream::handle);
    connect(m_channel, &Link::Channel::failed, this,
            [this](const QString& reason) { fail(tr("the driver sent %1").arg(reason), true); });
    m_channel->send(m_request);
    setState(State::Starting);
}

void ScanStream::handle(const Link::Message& message)
{
    if (const auto* data = std::get_if<Link::ScanData>(&message); data && m_state == State::Live) {
        handleData(*data);
    } else if (const auto* begun = std::get_if<Link::StreamStart>(&message)) {
        if (begun->version != Link::protocolVersion) {
            fail(tr("the driver speaks version %1 of the stream, this program version %2; use programs of "
                    "one release")
                     .arg(begun->version)
                     .arg(Link::protocolVersion),
                 true);
            return;
        }
        if (m_state != State::Starting)
            return;  // the answer to a changed request
        m_step.stop();
        m_heart = new Link::Heart(m_channel, m_options.heartbeatMs, m_options.lostMs, m_socket);
        connect(m_heart, &Link::Heart::lost, this, [this](const QString& reason) { fail(reason, true); });
        setState(State::Live);
    } else if (const auto* bye = std::get_if<Link::Bye>(&message)) {
        fail(tr("the driver ended the stream: %1").arg(bye->reason), false);
    } else if (!std::holds_alternative<Link::Heartbeat>(message)) {
        fail(tr("the driver sent something else than a spectrum"), true);
    }
}

void ScanStream::handleData(const Link::ScanData& data)
{
    m_channel->send(Link::StreamReady{data.sequence});
    m_skipped += data.skipped;
    ScanFrame frame;
    QString problem;
    if (!m_check.take(data, &frame, &problem)) {
        ++m_dropped;
        m_dropReason = problem;
        emit frameDropped();
        return;
    }
    // The connection is good: the next loss begins with the shortest pause again.
    m_backoffMs = m_options.backoffFirstMs;
    m_failure.clear();
    ++m_received;
    m_delivered = true;
    emit frameReceived(frame);
}

void ScanStream::stepOver()
{
    if (m_state == State::Waiting) {
        followDriver();
        attempt();
    } else if (m_state == State::Connecting) {
        fail(tr("%1 does not answer").arg(m_address.text()), false);
    } else if (m_state == State::Starting) {
        fail(tr("%1 is connected, but sends no spectrum").arg(m_address.text()), true);
    }
}

// A driver that was started anew may offer its streams at another port. Asked as late as can be: it
// tells the port only when its values are connected again.
void ScanStream::followDriver()
{
    const ScanAddress elsewhere = ScanAddress::read(m_source ? m_source() : QString());
    if (elsewhere.isValid())
        m_address = elsewhere;
}

// Ends the connection or the attempt. `tellPeer`: it may still listen, so it is told why.
void ScanStream::fail(const QString& reason, bool tellPeer)
{
    if (m_state == State::Stopped || m_state == State::Waiting)
        return;
    m_failure = reason;
    if (tellPeer && m_channel) {
        m_channel->send(Link::Bye{reason});
        m_socket->flush();
    }
    dropSocket();
    m_step.start(m_backoffMs);
    m_backoffMs = qMin(m_backoffMs * 2, m_options.backoffLastMs);
    setState(State::Waiting);
}

// The socket may be the sender of the signal at hand, so it is deleted later.
void ScanStream::dropSocket()
{
    if (!m_socket)
        return;
    if (m_channel) {
        m_channel->close();
        m_channel->disconnect(this);
    }
    if (m_heart)
        m_heart->disconnect(this);
    m_socket->disconnect(this);
    m_socket->disconnectFromHost();
    m_socket->deleteLater();
    m_socket = nullptr;
    m_channel = nullptr;
    m_heart = nullptr;
    m_delivered = false;
}
