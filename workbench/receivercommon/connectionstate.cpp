#include "receivercommon/connectionstate.h"

#include <QTimer>

#include "receivercommon/receivercommonhost.h"
#include "valueframework/iobserver.h"
#include "valueframework/observable.h"
#include "valueframework/vtclientcenter.h"

namespace {

const char clientName[] = "VTConnectToDRV";
const int clientSearchIntervalMs = 250;  // clients come and go without notice

int connectionTimeoutMs = 60000;

}  // namespace

class ConnectionStatePrivate : public IObserver
{
public:
    explicit ConnectionStatePrivate(ConnectionState* owner) : m_Owner(owner)
    {
        m_TimeoutTimer.setSingleShot(true);
        m_SearchTimer.setInterval(clientSearchIntervalMs);
        QObject::connect(&m_TimeoutTimer, &QTimer::timeout, owner, [this] { TimeOut(); });
        QObject::connect(&m_SearchTimer, &QTimer::timeout, owner, [this] { SearchClient(); });
    }

    void Connect()
    {
        if (m_SearchTimer.isActive())
            return;
        m_TimedOut = false;
        m_TimeoutTimer.start(connectionTimeoutMs);
        m_SearchTimer.start();
        SearchClient();
    }

    void Disconnect()
    {
        m_SearchTimer.stop();
        m_TimeoutTimer.stop();
        if (m_Client && m_Client == VtClientCenter::Instance()->GetVtClient(QLatin1String(clientName)))
            m_Client->DeleteObserver(this);
        m_Client = nullptr;
        m_Connected = false;
        m_TimedOut = false;
    }

    void Update(Observable* subject, TChangeCode code) override
    {
        if (code != CC_CONNECTED && code != CC_DISCONNECTED)
            return;
        if (m_Client && dynamic_cast<IVtClient*>(subject) == m_Client)
            SetConnected(code == CC_CONNECTED);
    }

    bool m_Connected = false;
    bool m_TimedOut = false;

private:
    // A client that was replaced is not touched: it may be gone. An observer leaves dead subjects by itself.
    void SearchClient()
    {
        IVtClient* const client = VtClientCenter::Instance()->GetVtClient(QLatin1String(clientName));
        if (client == m_Client)
            return;
        m_Client = client;
        if (client)
            client->AddObserver(this);
        SetConnected(client && client->IsConnected());
    }

    // The signal comes last in each of these: a modal dialog may run inside, and the owner may go.
    void SetConnected(bool connected)
    {
        if (connected == m_Connected)
            return;
        m_Connected = connected;
        m_TimedOut = false;
        if (connected)
            m_TimeoutTimer.stop();
        else
            m_TimeoutTimer.start(connectionTimeoutMs);
        Q_EMIT m_Owner->StateChanged();
    }

    void TimeOut()
    {
        m_TimedOut = true;
        Q_EMIT m_Owner->StateChanged();
    }

    ConnectionState* const m_Owner;
    IVtClient* m_Client = nullptr;  // not owned
    QTimer m_TimeoutTimer;
    QTimer m_SearchTimer;  // runs while watching
};

ConnectionState::ConnectionState(QObject* parent) : QObject(parent), d(new ConnectionStatePrivate(this)) {}

ConnectionState::~ConnectionState()
{
    d->Disconnect();
    delete d;
}

void ConnectionState::Connect2Tree()
{
    d->Connect();
}

void ConnectionState::DisconnectFromTree()
{
    d->Disconnect();
}

bool ConnectionState::GetConnected() const
{
    return d->m_Connected;
}

bool ConnectionState::GetConnectionTimedout() const
{
    return d->m_TimedOut;
}

void ReceiverCommonHost::SetConnectionTimeout(int milliseconds)
{
    connectionTimeoutMs = qMax(1, milliseconds);
}
