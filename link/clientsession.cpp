#include "link/clientsession.h"

#include <QHostInfo>
#include <QRandomGenerator>
#include <QTcpSocket>

#include "link/channel.h"
#include "link/codec.h"
#include "link/heart.h"
#include "link/limits.h"

namespace Link {
namespace {

QByteArray newSession()
{
    QByteArray session(Limits::sessionBytes, Qt::Uninitialized);
    QRandomGenerator::system()->generate(session.begin(), session.end());
    return session;
}

}  // namespace

ClientSession::ClientSession(const SessionOptions& options, QObject* parent)
    : QObject(parent), m_options(options), m_session(newSession())
{
    m_step.setSingleShot(true);
    connect(&m_step, &QTimer::timeout, this, [this] {
        if (m_state == State::Waiting)
            attempt();
        else if (m_state == State::Connecting)
            fail(tr("no connection within %1 s").arg(double(m_options.connectMs) / 1000), false);
        else if (m_state == State::Greeting)
            fail(
                tr("connected, but the driver said nothing for %1 s").arg(double(m_options.welcomeMs) / 1000),
                true);
    });
    m_answers.setSingleShot(true);
    connect(&m_answers, &QTimer::timeout, this, &ClientSession::checkAnswers);
    m_clock.start();
}

ClientSession::~ClientSession()
{
    dropSocket();
}

void ClientSession::start(const QString& host, quint16 port)
{
    if (m_state != State::Stopped)
        stop(0);
    m_host = host;
    m_port = port;
    m_backoffMs = m_options.backoffFirstMs;
    m_lastFailure.clear();
    m_welcome = Welcome();  // of another driver
    attempt();
}

void ClientSession::stop(int waitMs)
{
    const State before = m_state;
    m_state = State::Stopped;
    m_step.stop();
    if (m_channel && (before == State::Connected || before == State::Greeting)) {
        m_channel->close();
        m_channel->send(Bye{tr("the program ends")});
        // Nobody shall hear of what happens on the socket during the wait.
        m_socket->disconnect(this);
        m_socket->disconnectFromHost();
        if (waitMs > 0 && m_socket->state() != QAbstractSocket::UnconnectedState)
            m_socket->waitForDisconnected(waitMs);
    }
    dropSocket();
    failWrites(tr("the connection was ended"));
    if (before == State::Connected)
        emit disconnected(tr("the connection was ended"));
}

void ClientSession::attempt()
{
    dropSocket();
    m_state = State::Connecting;
    m_step.start(m_options.connectMs);
    m_socket = new QTcpSocket(this);
    m_socket->setReadBufferSize(Limits::receiveBytes);
    connect(m_socket, &QTcpSocket::connected, this, &ClientSession::socketConnected);
    connect(m_socket, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
        fail(error == QAbstractSocket::RemoteHostClosedError ? tr("the driver closed the connection")
                                                             : m_socket->errorString(),
             false);
    });
    m_socket->connectToHost(m_host, m_port);
}

void ClientSession::socketConnected()
{
    m_state = State::Greeting;
    m_step.start(m_options.welcomeMs);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_channel = new Channel(m_socket, m_socket);
    connect(m_channel, &Channel::received, this, &ClientSession::handle);
    connect(m_channel, &Channel::failed, this,
            [this](const QString& reason) { fail(tr("the driver sent %1").arg(reason), true); });
    Hello hello;
    hello.client = QHostInfo::localHostName().left(Limits::nameBytes / 4);
    hello.session = m_session;
    m_channel->send(hello);
}

QString ClientSession::unexpected(const Message& message) const
{
    return tr("the driver sent %1 out of order").arg(QLatin1String(name(message)));
}

void ClientSession::handle(Message& message)
{
    if (const Bye* bye = std::get_if<Bye>(&message)) {
        fail(tr("the driver ended the connection: %1").arg(bye->reason), false);
    } else if (const Welcome* welcome = std::get_if<Welcome>(&message)) {
        if (m_state == State::Greeting)
            handleWelcome(*welcome);
        else
            fail(unexpected(message), true);
    } else if (std::holds_alternative<Heartbeat>(message)) {
        return;
    } else if (m_state != State::Connected) {
        fail(unexpected(message), true);
    } else if (Batch* batch = std::get_if<Batch>(&message)) {
        handleBatch(*batch);
    } else if (Snapshot* snapshot = std::get_if<Snapshot>(&message)) {
        handleSnapshot(*snapshot);
    } else if (Describe* describe = std::get_if<Describe>(&message)) {
        emit describeReceived(*describe);
    } else if (const Answer* answer = std::get_if<Answer>(&message)) {
        handleAnswer(*answer);
    } else {
        fail(unexpected(message), true);
    }
}

void ClientSession::handleWelcome(const Welcome& welcome)
{
    if (welcome.version != protocolVersion) {
        fail(tr("the driver speaks version %1 of the link, this program version %2; use programs of one "
                "release")
                 .arg(welcome.version)
                 .arg(protocolVersion),
             true);
        return;
    }
    m_welcome = welcome;
    m_state = State::Connected;
    m_step.stop();
    m_backoffMs = m_options.backoffFirstMs;
    m_sequence = 0;
    m_resyncing = false;
    m_heart = new Heart(m_channel, m_options.heartbeatMs, m_options.lostMs, m_socket);
    connect(m_heart, &Heart::lost, this, [this](const QString& reason) { fail(reason, true); });
    for (auto hook = m_hooks.cbegin(); hook != m_hooks.cend(); ++hook)
        m_channel->send(Hook{hook.key(), hook.value()});
    emit connected(m_welcome);
}

void ClientSession::handleBatch(Batch& batch)
{
    if (batch.epoch != m_welcome.epoch) {
        // The ids mean something else now: only a new handshake makes them good.
        m_backoffMs = m_options.backoffFirstMs;
        fail(tr("the driver was started anew"), true);
        return;
    }
    if (batch.sequence <= m_sequence) {
        fail(tr("the driver sent batch %1 after batch %2").arg(batch.sequence).arg(m_sequence), true);
        return;
    }
    const bool gap = batch.sequence != m_sequence + 1;
    m_sequence = batch.sequence;
    // What came is newer than what stands; the snapshots repair what did not come.
    if (gap && !m_resyncing)
        resync();
    emit batchReceived(batch);
}

void ClientSession::handleSnapshot(Snapshot& snapshot)
{
    if (!m_hooks.contains(snapshot.hook))
        return;  // released meanwhile
    if (m_resyncing && snapshot.last && snapshot.hook == m_resyncUntil)
        m_resyncing = false;
    emit snapshotReceived(snapshot);
}

void ClientSession::handleAnswer(const Answer& answer)
{
    if (m_writes.remove(answer.number) > 0)
        emit answered(answer);
}

void ClientSession::resync()
{
    if (!isConnected() || m_hooks.isEmpty())
        return;
    m_resyncing = true;
    m_resyncUntil = m_hooks.lastKey();
    m_channel->send(Resync{});
}

quint32 ClientSession::hook(const QString& path)
{
    const quint32 number = m_nextHook++;
    m_hooks.insert(number, path);
    if (isConnected())
        m_channel->send(Hook{number, path});
    return number;
}

void ClientSession::release(quint32 number)
{
    if (m_hooks.remove(number) == 0)
        return;
    if (m_resyncUntil == number)
        m_resyncing = false;
    if (isConnected())
        m_channel->send(Release{number});
}

quint32 ClientSession::write(quint32 id, const Content& content)
{
    if (!isConnected())
        return 0;
    const quint32 number = m_nextWrite;
    m_nextWrite = m_nextWrite == 0xffffffff ? 1 : m_nextWrite + 1;
    m_writes.insert(number, m_clock.elapsed() + m_options.answerMs);
    if (!m_answers.isActive())
        m_answers.start(m_options.answerMs);
    m_channel->send(Write{number, id, content});
    return number;
}

void ClientSession::checkAnswers()
{
    const qint64 now = m_clock.elapsed();
    QVector<quint32> late;
    qint64 next = -1;
    for (auto write = m_writes.cbegin(); write != m_writes.cend(); ++write) {
        if (write.value() <= now)
            late.append(write.key());
        else if (next < 0 || write.value() < next)
            next = write.value();
    }
    if (next >= 0)
        m_answers.start(int(next - now));
    for (const quint32 number : std::as_const(late)) {
        if (m_writes.remove(number) > 0)
            emit unanswered(
                number, tr("the driver did not answer within %1 s").arg(double(m_options.answerMs) / 1000));
    }
}

void ClientSession::failWrites(const QString& reason)
{
    m_answers.stop();
    const QList<quint32> numbers = m_writes.keys();
    m_writes.clear();
    for (const quint32 number : numbers)
        emit unanswered(number, reason);
}

void ClientSession::flush()
{
    if (m_socket)
        m_socket->flush();
}

void ClientSession::setPaused(bool paused)
{
    if (m_channel)
        m_channel->setPaused(paused);
}

// Ends the connection or the attempt. `tellPeer`: it may still listen, so it is told why.
void ClientSession::fail(const QString& reason, bool tellPeer)
{
    if (m_state == State::Stopped || m_state == State::Waiting)
        return;
    const bool wasConnected = m_state == State::Connected;
    m_lastFailure = reason;
    if (tellPeer && m_channel) {
        m_channel->send(Bye{reason});
        m_socket->flush();
    }
    dropSocket();
    if (m_options.reconnect) {
        m_state = State::Waiting;
        m_step.start(m_backoffMs);
        m_backoffMs = qMin(m_backoffMs * 2, m_options.backoffLastMs);
    } else {
        m_state = State::Stopped;
        m_step.stop();
    }
    failWrites(tr("the connection was lost before the driver answered: %1").arg(reason));
    if (wasConnected)
        emit disconnected(reason);
    else
        emit attemptFailed(reason);
}

// The socket may be the sender of the signal at hand, so it is deleted later.
void ClientSession::dropSocket()
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
}

}  // namespace Link
