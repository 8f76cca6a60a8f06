#include <QSignalSpy>
#include <QTcpServer>

#include "mirrorfixture.h"

// The tree while the driver, or one of its values, is away, and when it is back.
class TestVtClientLoss : public QObject
{
    Q_OBJECT
private slots:
    void init() { ValueHost::CreateTree(); }
    void cleanup() { ValueHost::DestroyTree(); }

    void aLossMakesValuesStaleAndTheReturnBringsDifferencesOnly();
    void theFlagTurnsFalseAtALossAndTrueAgain();
    void aValueThatTheNewDriverLacksIsNotAvailable();
    void aValueThatComesLaterAppearsAndOneThatGoesIsNotAvailable();
    void aValueDeletedHereIsLeftAloneUntilTheNextSnapshot();
    void aDriverThatAcceptsAndSaysNothingIsReportedAndTriedAgain();
};

void TestVtClientLoss::aLossMakesValuesStaleAndTheReturnBringsDifferencesOnly()
{
    Driver driver;
    driver.define("/A/Same", 1.0);
    driver.define("/A/Other", 2.0);
    VtClient client(quickClient());
    Listener notices;
    client.AddObserver(&notices);
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/Other") == 2.0);
    Listener same;
    Listener other;
    valueAt<FloatValue>("/A/Same")->AddObserver(&same);
    valueAt<FloatValue>("/A/Other")->AddObserver(&other);
    const quint16 port = driver.port();
    driver.die();
    RX_TRY(notices.count(CC_DISCONNECTED) == 1);
    QVERIFY(!client.IsConnected());
    QVERIFY(!client.LastFailure().isEmpty());
    QCOMPARE(valueAt<FloatValue>("/A/Same")->GetState(), VS_STALE);
    QCOMPARE(numberAt("/A/Same"), 1.0);
    QCOMPARE(same.codes, QVector<TChangeCode>{CC_STATE});
    driver.start(port);
    driver.define("/A/Other", 3.0);  // under another id than before
    driver.define("/A/Same", 1.0);
    RX_TRY(notices.count(CC_CONNECTED) == 2 && notices.count(CC_HOOKS_SERVED) == 2);
    QCOMPARE(same.codes, QVector<TChangeCode>({CC_STATE, CC_STATE}));
    QCOMPARE(other.codes, QVector<TChangeCode>({CC_STATE, CC_VALUE, CC_STATE}));
    QCOMPARE(numberAt("/A/Other"), 3.0);
    QCOMPARE(valueAt<FloatValue>("/A/Other")->GetState(), VS_USABLE);
    driver.store->set(driver.store->find("/A/Same"), 9.0);
    RX_TRY(numberAt("/A/Same") == 9.0);
    QCOMPARE(numberAt("/A/Other"), 3.0);
}

void TestVtClientLoss::theFlagTurnsFalseAtALossAndTrueAgain()
{
    Driver driver;
    VtClient client(quickClient());
    client.HookValues("/ADMINISTRATION,/ADMINISTRATION", "");
    client.Start("127.0.0.1", driver.port());
    const auto flag = [] { return valueAt<BoolValue>("/ADMINISTRATION/SERVERVALUESHOOKED"); };
    RX_TRY(flag() && flag()->GetValue());
    QVector<bool> seen;
    Listener listener([&](Observable*, TChangeCode code) {
        if (code == CC_VALUE)
            seen.append(flag()->GetValue());
    });
    flag()->AddObserver(&listener);
    const quint16 port = driver.port();
    driver.die();
    RX_TRY(!client.IsConnected());
    RX_TRY(seen == QVector<bool>({false}));
    driver.start(port);
    RX_TRY(seen == QVector<bool>({false, true}));
    // A plug-in that has the flag announced again does not write it.
    flag()->NotifyObservers(CC_VALUE, nullptr);
    QCOMPARE(ValueHost::Status(*flag()).answer, WriteStatus::None);
}

void TestVtClientLoss::aValueThatTheNewDriverLacksIsNotAvailable()
{
    Driver driver;
    driver.define("/A/Kept", 1.0);
    driver.define("/A/Gone", 2.0);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/Gone") == 2.0);
    const quint16 port = driver.port();
    driver.die();
    driver.start(port);
    driver.define("/A/Kept", 1.0);
    RX_TRY(valueAt<FloatValue>("/A/Gone")->GetState() == VS_NOT_AVAILABLE);
    QCOMPARE(valueAt<FloatValue>("/A/Kept")->GetState(), VS_USABLE);
    QCOMPARE(numberAt("/A/Gone"), 2.0);
}

void TestVtClientLoss::aValueThatComesLaterAppearsAndOneThatGoesIsNotAvailable()
{
    Driver driver;
    driver.define("/A/First", 1.0);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/First") == 1.0);
    const auto id = driver.define("/A/Later", 5.0);
    RX_TRY(numberAt("/A/Later") == 5.0);
    driver.store->remove(id);
    RX_TRY(valueAt<FloatValue>("/A/Later")->GetState() == VS_NOT_AVAILABLE);
    driver.define("/A/Later", 6.0);
    RX_TRY(numberAt("/A/Later") == 6.0);
    RX_TRY(valueAt<FloatValue>("/A/Later")->GetState() == VS_USABLE);
}

void TestVtClientLoss::aValueDeletedHereIsLeftAloneUntilTheNextSnapshot()
{
    Driver driver;
    const auto id = driver.define("/A/F", 1.0);
    const auto other = driver.define("/A/G", 1.0);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/G") == 1.0);
    Tree::Instance()->DeleteValue("/A/F");
    driver.store->set(id, 2.0);
    driver.store->set(other, 2.0);
    RX_TRY(numberAt("/A/G") == 2.0);
    QVERIFY(!Tree::Instance()->FindValue("/A/F"));
    const quint16 port = driver.port();
    driver.die();
    driver.start(port);
    driver.define("/A/F", 3.0);
    RX_TRY(numberAt("/A/F") == 3.0);
}

void TestVtClientLoss::aDriverThatAcceptsAndSaysNothingIsReportedAndTriedAgain()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost, 0));
    VtClientOptions options = quickClient();
    options.session.welcomeMs = 50;
    VtClient client(options);
    Listener listener;
    client.AddObserver(&listener);
    QSignalSpy failed(&client, &VtClient::AttemptFailed);
    client.Start("127.0.0.1", silent.serverPort());
    RX_TRY(failed.size() >= 2);
    QVERIFY2(client.LastFailure().contains("the driver said nothing"), qPrintable(client.LastFailure()));
    QVERIFY(!client.IsConnected());
    QVERIFY(listener.codes.isEmpty());
}

QTEST_GUILESS_MAIN(TestVtClientLoss)
#include "tst_vtclientloss.moc"
