#include "link/vtclient.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLoggingCategory>

#include "valueframework/node.h"

Q_DECLARE_LOGGING_CATEGORY(mirrorLog)

namespace {

const QEvent::Type runEvent = QEvent::Type(QEvent::registerEventType());
const QEvent::Type writesEvent = QEvent::Type(QEvent::registerEventType());

// Updates that wait in memory while the tree is busy; beyond, the driver has to merge them.
constexpr qint64 pauseAbove = 500000;
constexpr qint64 resumeBelow = 100000;

bool splitPair(const QByteArray& pair, QString* source, QString* target)
{
    const QList<QByteArray> parts = pair.split(',');
    if (parts.size() != 2)
        return false;
    *source = QString::fromUtf8(parts.at(0));
    *target = QString::fromUtf8(parts.at(1));
    for (QString* path : {source, target}) {
        while (path->endsWith(QLatin1Char('/')))
            path->chop(1);
        if (!path->isEmpty() && !path->startsWith(QLatin1Char('/')))
            return false;
    }
    return true;
}

}  // namespace

QString VtClient::ClientName()
{
    return QStringLiteral("VTConnectToDRV");
}

VtClient::VtClient(const VtClientOptions& options)
    : m_options(options),
      m_session(options.session),
      m_mirror(std::make_shared<MirrorTree>(static_cast<Owner*>(this)))
{
    using Link::ClientSession;
    MirrorTree* mirror = m_mirror.get();
    connect(&m_session, &ClientSession::connected, this, [=] { mirror->connected(++m_connection); });
    connect(&m_session, &ClientSession::disconnected, this,
            [=](const QString& reason) { mirror->lost(reason); });
    connect(&m_session, &ClientSession::attemptFailed, this, &VtClient::AttemptFailed);
    connect(&m_session, &ClientSession::snapshotReceived, this,
            [=](Link::Snapshot& snapshot) { mirror->snapshot(std::move(snapshot)); });
    connect(&m_session, &ClientSession::describeReceived, this,
            [=](Link::Describe& describe) { mirror->describe(std::move(describe)); });
    connect(&m_session, &ClientSession::batchReceived, this, [=](Link::Batch& batch) {
        mirror->batch(std::move(batch));
        throttle();
    });
    connect(&m_session, &ClientSession::answered, this,
            [=](const Link::Answer& answer) { mirror->answer(answer); });
    connect(&m_session, &ClientSession::unanswered, this,
            [=](quint32 number, const QString& reason) { mirror->unanswered(number, reason); });
    m_slice.setSingleShot(true);
    m_slice.setInterval(0);
    connect(&m_slice, &QTimer::timeout, this, &VtClient::runMirror);
    ValueHost::SetClient(ClientName(), this);
}

VtClient::~VtClient()
{
    m_mirror->sendWrites();
    m_mirror->leave();
    m_session.disconnect(this);
    m_session.stop(m_options.stopMs);
    ValueHost::SetClient(ClientName(), nullptr);
}

void VtClient::Start(const QString& host, quint16 port)
{
    m_session.start(host, port);
}

void VtClient::Stop()
{
    m_mirror->sendWrites();
    m_session.stop(m_options.stopMs);
}

QString VtClient::LastFailure() const
{
    return m_mirror->isConnected() ? QString() : m_session.lastFailure();
}

quint64 VtClient::SkippedChanges() const
{
    return m_mirror->skippedChanges();
}

quint64 VtClient::LostEvents() const
{
    return m_mirror->lostEvents();
}

// --- the tree's side --------------------------------------------------------------------------------

void VtClient::AddObserver(IObserver* observer)
{
    Observable::AddObserver(observer);
}

void VtClient::DeleteObserver(IObserver* observer)
{
    Observable::DeleteObserver(observer);
}

QString VtClient::GetServerAddress()
{
    const quint16 port = m_session.welcome().streamPort;
    const QString host = m_session.host();
    if (port == 0 || host.isEmpty())
        return QString();
    const bool bareV6 = host.contains(QLatin1Char(':')) && !host.startsWith(QLatin1Char('['));
    return (bareV6 ? QStringLiteral("[%1]:%2") : QStringLiteral("%1:%2")).arg(host).arg(port);
}

void VtClient::Flush()
{
    m_mirror->sendWrites();
    m_session.flush();
}

void VtClient::HookValues(const QByteArray& pathPair, const QByteArray& reserved)
{
    Q_UNUSED(reserved);
    QString source;
    QString target;
    if (!splitPair(pathPair, &source, &target)) {
        qCWarning(mirrorLog).noquote() << "cannot hook" << pathPair
                                       << "- a source path and a target path, joined by a comma, are needed";
        return;
    }
    Pair& pair = m_pairs[pathPair];
    if (pair.users++ > 0) {
        m_mirror->announceServed(pair.number);
        return;
    }
    pair.number = m_session.hook(source);
    m_mirror->addHook(pair.number, source, target);
}

void VtClient::ReleaseValues(const QByteArray& pathPair)
{
    const auto pair = m_pairs.find(pathPair);
    if (pair == m_pairs.end() || --pair->users > 0)
        return;
    m_session.release(pair->number);
    m_mirror->releaseHook(pair->number);
    m_pairs.erase(pair);
}

bool VtClient::IsNodeServed(Node* node)
{
    return node && m_mirror->isServed(node->GetPathName());
}

bool VtClient::HasServedValues()
{
    return m_mirror->lastServedValues();
}

bool VtClient::IsConnected()
{
    return m_mirror->isConnected();
}

// --- the mirror's side ------------------------------------------------------------------------------

void VtClient::wake()
{
    if (m_wakePosted)
        return;
    m_wakePosted = true;
    QCoreApplication::postEvent(this, new QEvent(runEvent));
}

void VtClient::wakeLater()
{
    m_slice.start();
}

// An observer may destroy the client in the middle of it.
void VtClient::runMirror()
{
    const QPointer<VtClient> self(this);
    const std::shared_ptr<MirrorTree> mirror = m_mirror;
    mirror->run();
    if (self)
        throttle();
}

void VtClient::wakeWrites()
{
    if (m_writesPosted)
        return;
    m_writesPosted = true;
    QCoreApplication::postEvent(this, new QEvent(writesEvent));
}

void VtClient::announce(TChangeCode code)
{
    NotifyObservers(code, nullptr);
}

quint32 VtClient::write(quint64 connection, quint32 id, const Link::Content& content)
{
    // Ids of an earlier connection may mean something else on this one.
    return connection == m_connection ? m_session.write(id, content) : 0;
}

void VtClient::throttle()
{
    const qint64 waiting = m_mirror->updatesWaiting();
    if (!m_paused && waiting > pauseAbove)
        m_paused = true;
    else if (m_paused && waiting < resumeBelow)
        m_paused = false;
    else
        return;
    m_session.setPaused(m_paused);
}

bool VtClient::event(QEvent* event)
{
    if (event->type() == runEvent) {
        m_wakePosted = false;
        // Posted events alone would keep the loop from its sockets.
        if (!m_slice.isActive())
            runMirror();
        return true;
    }
    if (event->type() == writesEvent) {
        m_writesPosted = false;
        m_mirror->sendWrites();
        return true;
    }
    return QObject::event(event);
}
