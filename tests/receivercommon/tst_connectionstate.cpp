#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "receivercommon/connectionstate.h"
#include "receivercommon/receivercommonhost.h"
#include "valueframework/iobserver.h"
#include "valueframework/observable.h"
#include "valueframework/valuehost.h"
#include "valueframework/vtclientcenter.h"

namespace {

const QString clientName = QStringLiteral("VTConnectToDRV");
const int patienceMs = 60000;

// A client whose connection the test makes and breaks.
class SwitchedClient : public Observable, public IVtClient
{
public:
    void AddObserver(IObserver* observer) override { Observable::AddObserver(observer); }
    void DeleteObserver(IObserver* observer) override { Observable::DeleteObserver(observer); }
    QString GetServerAddress() override { return QString(); }
    void Flush() override {}
    void HookValues(const QByteArray&, const QByteArray&) override {}
    void ReleaseValues(const QByteArray&) override {}
    bool IsNodeServed(Node*) override { return false; }
    bool HasServedValues() override { return false; }
    bool IsConnected() override { return m_Connected; }

    void Switch(bool connected)
    {
        m_Connected = connected;
        NotifyObservers(connected ? CC_CONNECTED : CC_DISCONNECTED, nullptr);
    }

    bool m_Connected = false;
};

}  // namespace

class TestConnectionState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { ReceiverCommonHost::SetConnectionTimeout(600000); }
    void cleanup() { ValueHost::SetClient(clientName, nullptr); }

    void nothingIsConnectedBeforeItIsAsked()
    {
        SwitchedClient client;
        client.m_Connected = true;
        ValueHost::SetClient(clientName, &client);
        ConnectionState state;
        QVERIFY(!state.GetConnected());
        QVERIFY(!state.GetConnectionTimedout());
    }

    void aClientThatIsConnectedAlreadyIsSeenAtOnce()
    {
        SwitchedClient client;
        client.m_Connected = true;
        ValueHost::SetClient(clientName, &client);
        ConnectionState state;
        state.Connect2Tree();
        QVERIFY(state.GetConnected());
    }

    void theStateFollowsTheClient()
    {
        SwitchedClient client;
        ValueHost::SetClient(clientName, &client);
        ConnectionState state;
        QSignalSpy changes(&state, SIGNAL(StateChanged()));
        state.Connect2Tree();
        QVERIFY(!state.GetConnected());
        client.Switch(true);
        QVERIFY(state.GetConnected());
        QCOMPARE(changes.size(), 1);
        client.Switch(true);  // said twice
        QCOMPARE(changes.size(), 1);
        client.Switch(false);
        QVERIFY(!state.GetConnected());
        QVERIFY(!state.GetConnectionTimedout());
        QCOMPARE(changes.size(), 2);
        ValueHost::SetClient(clientName, nullptr);
    }

    void connectingTwiceIsOnce()
    {
        SwitchedClient client;
        ValueHost::SetClient(clientName, &client);
        ConnectionState state;
        state.Connect2Tree();
        state.Connect2Tree();
        QSignalSpy changes(&state, SIGNAL(StateChanged()));
        client.Switch(true);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(client.CountObservers(), 1);
        ValueHost::SetClient(clientName, nullptr);
    }

    void aClientThatComesLaterIsFound()
    {
        ConnectionState state;
        QSignalSpy changes(&state, SIGNAL(StateChanged()));
        state.Connect2Tree();
        SwitchedClient client;
        client.m_Connected = true;
        ValueHost::SetClient(clientName, &client);
        QTRY_VERIFY_WITH_TIMEOUT(state.GetConnected(), patienceMs);
        QCOMPARE(changes.size(), 1);
        ValueHost::SetClient(clientName, nullptr);
    }

    void aClientThatGoesAwayIsALoss()
    {
        auto client = std::make_unique<SwitchedClient>();
        client->m_Connected = true;
        ValueHost::SetClient(clientName, client.get());
        ConnectionState state;
        state.Connect2Tree();
        ValueHost::SetClient(clientName, nullptr);
        client.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!state.GetConnected(), patienceMs);
        SwitchedClient next;
        next.m_Connected = true;
        ValueHost::SetClient(clientName, &next);
        QTRY_VERIFY_WITH_TIMEOUT(state.GetConnected(), patienceMs);
        ValueHost::SetClient(clientName, nullptr);
    }

    void aReplacedClientIsNotListenedToAnyMore()
    {
        SwitchedClient former;
        SwitchedClient next;
        next.m_Connected = true;
        ValueHost::SetClient(clientName, &former);
        ConnectionState state;
        state.Connect2Tree();
        ValueHost::SetClient(clientName, &next);
        QTRY_VERIFY_WITH_TIMEOUT(state.GetConnected(), patienceMs);
        former.Switch(false);
        QVERIFY(state.GetConnected());
        ValueHost::SetClient(clientName, nullptr);
    }

    void withoutAConnectionItTimesOutOnce()
    {
        const int timeoutMs = 50;
        ReceiverCommonHost::SetConnectionTimeout(timeoutMs);
        SwitchedClient client;
        ValueHost::SetClient(clientName, &client);
        ConnectionState state;
        QSignalSpy changes(&state, SIGNAL(StateChanged()));
        QElapsedTimer clock;
        clock.start();
        state.Connect2Tree();
        QTRY_VERIFY_WITH_TIMEOUT(state.GetConnectionTimedout(), patienceMs);
        QVERIFY2(clock.elapsed() >= timeoutMs - 5, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!state.GetConnected());
        QVERIFY(!QSignalSpy(&state, SIGNAL(StateChanged())).wait(10 * timeoutMs));  // nothing follows
        QCOMPARE(changes.size(), 1);
        ValueHost::SetClient(clientName, nullptr);
    }

    void withoutAClientItTimesOutToo()
    {
        ReceiverCommonHost::SetConnectionTimeout(30);
        ConnectionState state;
        state.Connect2Tree();
        QTRY_VERIFY_WITH_TIMEOUT(state.GetConnectionTimedout(), patienceMs);
    }

    void aConnectionEndsTheTimeOutAndALossBeginsItAnew()
    {
        ReceiverCommonHost::SetConnectionTimeout(30);
        SwitchedClient client;
        ValueHost::SetClient(clientName, &client);
        ConnectionState state;
        state.Connect2Tree();
        QTRY_VERIFY_WITH_TIMEOUT(state.GetConnectionTimedout(), patienceMs);
        QSignalSpy changes(&state, SIGNAL(StateChanged()));
        client.Switch(true);
        QVERIFY(state.GetConnected());
        QVERIFY(!state.GetConnectionTimedout());
        client.Switch(false);
        QVERIFY(!state.GetConnectionTimedout());
        QTRY_VERIFY_WITH_TIMEOUT(state.GetConnectionTimedout(), patienceMs);
        QCOMPARE(changes.size(), 3);
        ValueHost::SetClient(clientName, nullptr);
    }

    void afterDisconnectingNothingIsTold()
    {
        ReceiverCommonHost::SetConnectionTimeout(20);
        SwitchedClient client;
        ValueHost::SetClient(clientName, &client);
        ConnectionState state;
        state.Connect2Tree();
        state.DisconnectFromTree();
        QCOMPARE(client.CountObservers(), 0);
        QSignalSpy changes(&state, SIGNAL(StateChanged()));
        client.Switch(true);
        QVERIFY(!changes.wait(300));
        QVERIFY(!state.GetConnected());
        state.DisconnectFromTree();  // twice is harmless
        ValueHost::SetClient(clientName, nullptr);
    }

    void theStateMayGoInsideItsOwnSignal()
    {
        SwitchedClient client;
        ValueHost::SetClient(clientName, &client);
        ConnectionState* const state = new ConnectionState;
        state->Connect2Tree();
        connect(state, &ConnectionState::StateChanged, this, [state] { delete state; });
        client.Switch(true);
        QCOMPARE(client.CountObservers(), 0);
        ValueHost::SetClient(clientName, nullptr);
    }

    void theStateMayOutliveItsClient()
    {
        ConnectionState state;
        {
            SwitchedClient client;
            ValueHost::SetClient(clientName, &client);
            state.Connect2Tree();
            ValueHost::SetClient(clientName, nullptr);
        }
        state.DisconnectFromTree();
        QVERIFY(!state.GetConnected());
    }
};

QTEST_GUILESS_MAIN(TestConnectionState)
#include "tst_connectionstate.moc"
