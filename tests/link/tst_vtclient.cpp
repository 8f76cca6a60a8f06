#include <QEventLoop>
#include <QTimer>

#include "mirrorfixture.h"
#include "valueframework/node.h"
#include "valueframework/valuedescriptor.h"
#include "valueframework/valueselection.h"
#include "valueframework/vtclientcenter.h"

class TestVtClient : public QObject
{
    Q_OBJECT
private slots:
    void init() { ValueHost::CreateTree(); }
    void cleanup() { ValueHost::DestroyTree(); }

    void theClientIsKnownByItsName();
    void noticesComeAsConnectedThenServedThenTheFlag();
    void hooksAskedForBeforeTheConnectionAreServedToo();
    void valuesComeWithDescriptionStateContentAndTime();
    void aHookMayHaveAnotherTargetThanItsSource();
    void aHookWithoutValuesSaysSo();
    void aHookAskedForTwiceIsAnsweredTwiceAndReleasedOnce();
    void malformedPairsAreIgnored_data();
    void malformedPairsAreIgnored();
    void servedNodesAreThoseBelowAnAnsweredHook();
    void aFurtherHookTakesTheFlagThroughFalseToTrue();
    void changesReachObserversOnceAndOnlyWhereTheyDiffer();
    void aValueOfTheTreeWithTheSameTypeIsTakenOver();
    void whatTheDriverSaysOfAvailabilityIsTheState();
    void aReleasedHookLeavesItsValuesStale();
    void selectionsFollowNewItemsWithoutWritingBack();
    void eventsArriveOneByOne();
    void anEventLoopInsideUpdateGoesOnWithTheRestOfTheBatch();
    void valuesMayBeDeletedInsideABatch();
    void theClientMayBeStoppedOrDeletedInsideABatch_data();
    void theClientMayBeStoppedOrDeletedInsideABatch();
    void manyValuesComeInSeveralParts();
};

void TestVtClient::theClientIsKnownByItsName()
{
    {
        VtClient client(quickClient());
        QCOMPARE(VtClientCenter::Instance()->GetVtClient("VTConnectToDRV"), static_cast<IVtClient*>(&client));
        QVERIFY(!client.IsConnected());
        QVERIFY(client.GetServerAddress().isEmpty());
    }
    QVERIFY(!VtClientCenter::Instance()->GetVtClient("VTConnectToDRV"));
}

void TestVtClient::noticesComeAsConnectedThenServedThenTheFlag()
{
    Driver driver;
    driver.define("/RX1/F", 1.0);
    VtClient client(quickClient());
    QStringList story;
    Listener flagListener([&](Observable*, TChangeCode code) {
        if (code == CC_VALUE)
            story.append(valueAt<BoolValue>("/ADMINISTRATION/SERVERVALUESHOOKED")->GetValue() ? "true"
                                                                                              : "false");
    });
    Listener listener([&](Observable* subject, TChangeCode code) {
        QCOMPARE(dynamic_cast<IVtClient*>(subject), static_cast<IVtClient*>(&client));
        story.append(QString::number(code));
        if (code == CC_CONNECTED) {
            QVERIFY(client.IsConnected());
            client.HookValues("/ADMINISTRATION,/ADMINISTRATION", "");
            client.HookValues("/RX1,/RX1", "");
            client.Flush();
        } else if (code == CC_HOOKS_SERVED) {
            QVERIFY(client.HasServedValues());
            valueAt<BoolValue>("/ADMINISTRATION/SERVERVALUESHOOKED")->AddObserver(&flagListener);
        }
    });
    client.AddObserver(&listener);
    client.Start("127.0.0.1", driver.port());
    RX_TRY(story.contains("true"));
    QCOMPARE(story, QStringList({"16", "15", "15", "true"}));
    QCOMPARE(numberAt("/RX1/F"), 1.0);
    QCOMPARE(client.GetServerAddress(), QString("127.0.0.1:4711"));
}

void TestVtClient::hooksAskedForBeforeTheConnectionAreServedToo()
{
    Driver driver;
    driver.define("/RX1/F", 7.0);
    VtClient client(quickClient());
    client.HookValues("/RX1,/RX1", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/RX1/F") == 7.0);
}

void TestVtClient::valuesComeWithDescriptionStateContentAndTime()
{
    Driver driver;
    Link::Description description;
    description.path = "/RX1/BW";
    description.kind = Link::ValueKind::Selection;
    description.items = {{0, "AM", 0}, {3, "15 kHz", 15000}};
    const auto selection = driver.store->define(description, qint64(3));
    description = {};
    description.path = "/RX1/F";
    description.kind = Link::ValueKind::Float;
    description.unit = "Hz";
    description.hasLimits = true;
    description.minimum = 1;
    description.maximum = 3e9;
    description.step = 25;
    description.precision = 2;
    description.writable = false;
    const auto number = driver.store->define(description, 98.5e6);
    driver.store->set(number, 99e6, 1234567);
    driver.define("/RX1/Text", QString("Köln"));
    driver.define("/RX1/Integer", qint64(5000000000));
    driver.store->setStatus(selection, Link::ValueStatus::NotAvailable);

    VtClient client(quickClient());
    client.HookValues("/RX1,/RX1", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(valueAt<IntValue>("/RX1/Integer"));
    const auto* bandwidth = valueAt<ValueSelection>("/RX1/BW");
    QVERIFY(bandwidth);
    QCOMPARE(bandwidth->GetCurrentKey(), 3);
    QCOMPARE(bandwidth->GetCurrentNumber(), 15000.0);
    QCOMPARE(bandwidth->GetState(), VS_NOT_AVAILABLE);
    const auto* frequency = valueAt<FloatValue>("/RX1/F");
    QCOMPARE(frequency->GetValue(), 99e6);
    QCOMPARE(frequency->GetState(), VS_USABLE);
    QCOMPARE(ValueHost::TimeStamp(*frequency), qint64(1234567));
    QVERIFY(ValueHost::IsMirrored(*frequency));
    const ValueDescription& told = ValueHost::Description(*frequency);
    QCOMPARE(told.unit, QString("Hz"));
    QVERIFY(told.hasLimits);
    QCOMPARE(told.minimum, 1.0);
    QCOMPARE(told.maximum, 3e9);
    QCOMPARE(told.step, 25.0);
    QCOMPARE(told.precision, 2);
    QVERIFY(!told.writable);
    QCOMPARE(valueAt<TextValue>("/RX1/Text")->GetValue(), QString("Köln"));
    QCOMPARE(valueAt<IntValue>("/RX1/Integer")->GetValue(), std::numeric_limits<int>::max());
}

void TestVtClient::aHookMayHaveAnotherTargetThanItsSource()
{
    Driver driver;
    driver.define("/RX1/F", 7.0);
    VtClient client(quickClient());
    client.HookValues("/RX1,/Mirror/A", "");
    client.HookValues("/RX1,/Mirror/B", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/Mirror/B/F") == 7.0);
    driver.store->set(1, 8.0);
    RX_TRY(numberAt("/Mirror/A/F") == 8.0 && numberAt("/Mirror/B/F") == 8.0);
    QVERIFY(!Tree::Instance()->FindValue("/RX1/F"));
}

void TestVtClient::aHookWithoutValuesSaysSo()
{
    Driver driver;
    VtClient client(quickClient());
    QVector<bool> brought;
    Listener listener([&](Observable*, TChangeCode code) {
        if (code == CC_HOOKS_SERVED)
            brought.append(client.HasServedValues());
    });
    client.AddObserver(&listener);
    client.HookValues("/nowhere,/nowhere", "");
    client.HookValues("/ADMINISTRATION,/ADMINISTRATION", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(brought.size() == 2);
    QCOMPARE(brought, QVector<bool>({false, true}));
}

void TestVtClient::aHookAskedForTwiceIsAnsweredTwiceAndReleasedOnce()
{
    Driver driver;
    driver.define("/A/F", 1.0);
    VtClient client(quickClient());
    Listener listener;
    client.AddObserver(&listener);
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(listener.count(CC_HOOKS_SERVED) == 1);
    client.HookValues("/A,/A", "");
    RX_TRY(listener.count(CC_HOOKS_SERVED) == 2);
    client.ReleaseValues("/A,/A");
    driver.store->set(1, 2.0);
    RX_TRY(numberAt("/A/F") == 2.0);
    client.ReleaseValues("/A,/A");
    RX_TRY(valueAt<FloatValue>("/A/F")->GetState() == VS_STALE);
}

void TestVtClient::malformedPairsAreIgnored_data()
{
    QTest::addColumn<QByteArray>("pair");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one path") << QByteArray("/A");
    QTest::newRow("three paths") << QByteArray("/A,/A,/A");
    QTest::newRow("relative source") << QByteArray("A,/A");
    QTest::newRow("relative target") << QByteArray("/A,A");
}

void TestVtClient::malformedPairsAreIgnored()
{
    QFETCH(QByteArray, pair);
    Driver driver;
    driver.define("/A/F", 1.0);
    VtClient client(quickClient());
    Listener listener;
    client.AddObserver(&listener);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("cannot hook"));
    client.HookValues(pair, "");
    client.ReleaseValues(pair);
    client.HookValues("/B,/B", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(listener.count(CC_HOOKS_SERVED) == 1);
    QVERIFY(!Tree::Instance()->FindValue("/A/F"));
}

void TestVtClient::servedNodesAreThoseBelowAnAnsweredHook()
{
    Driver driver;
    driver.define("/RX1/DDC/DDC1/F", 1.0);
    Node* node = ValueDescriptor::CreateNodeAbsolute("/RX1", nullptr);
    Node* other = ValueDescriptor::CreateNodeAbsolute("/RX10", nullptr);
    VtClient client(quickClient());
    QVERIFY(!client.IsNodeServed(node));
    client.HookValues("/RX1,/RX1", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(client.IsNodeServed(node));
    QVERIFY(client.IsNodeServed(Tree::Instance()->FindNode("/RX1/DDC/DDC1")));
    QVERIFY(!client.IsNodeServed(other));
    QVERIFY(!client.IsNodeServed(nullptr));
    driver.die();
    RX_TRY(!client.IsNodeServed(node));
}

void TestVtClient::aFurtherHookTakesTheFlagThroughFalseToTrue()
{
    Driver driver;
    driver.define("/A/F", 1.0);
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
    client.HookValues("/A,/A", "");
    RX_TRY(seen.size() == 2);
    QCOMPARE(seen, QVector<bool>({false, true}));
}

void TestVtClient::changesReachObserversOnceAndOnlyWhereTheyDiffer()
{
    Driver driver;
    const auto id = driver.define("/A/F", 1.0);
    const auto last = driver.define("/A/Last", 0.0);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/F") == 1.0);
    Listener listener;
    valueAt<FloatValue>("/A/F")->AddObserver(&listener);
    driver.store->set(id, 2.0);
    RX_TRY(numberAt("/A/F") == 2.0);
    driver.store->set(id, 2.0, 99);  // measured again
    driver.store->set(last, 1.0);
    RX_TRY(numberAt("/A/Last") == 1.0);
    QCOMPARE(listener.codes, QVector<TChangeCode>{CC_VALUE});
    QCOMPARE(ValueHost::TimeStamp(*valueAt<FloatValue>("/A/F")), qint64(99));
}

void TestVtClient::aValueOfTheTreeWithTheSameTypeIsTakenOver()
{
    Driver driver;
    driver.define("/A/F", 1.0);
    driver.define("/A/T", QString("text"));
    ValueDescription local;
    local.type = ValueType::Float;
    ValueBase* number = ValueHost::Create("/A/F", local, 5.0);
    ValueHost::Create("/A/T", local, 5.0);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(valueAt<TextValue>("/A/T"));
    QCOMPARE(Tree::Instance()->FindValue("/A/F"), number);
    QCOMPARE(numberAt("/A/F"), 1.0);
    QCOMPARE(driver.store->number(1), 1.0);
}

void TestVtClient::whatTheDriverSaysOfAvailabilityIsTheState()
{
    Driver driver;
    const auto id = driver.define("/A/F", 1.0);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/F") == 1.0);
    double seenWhenUsable = 0;
    Listener listener([&](Observable*, TChangeCode code) {
        if (code == CC_STATE && valueAt<FloatValue>("/A/F")->GetState() == VS_USABLE)
            seenWhenUsable = numberAt("/A/F");
    });
    valueAt<FloatValue>("/A/F")->AddObserver(&listener);
    driver.store->setStatus(id, Link::ValueStatus::NotAvailable);
    RX_TRY(valueAt<FloatValue>("/A/F")->GetState() == VS_NOT_AVAILABLE);
    driver.store->set(id, 2.0);
    driver.store->setStatus(id, Link::ValueStatus::Usable);
    RX_TRY(valueAt<FloatValue>("/A/F")->GetState() == VS_USABLE);
    QCOMPARE(seenWhenUsable, 2.0);
}

void TestVtClient::aReleasedHookLeavesItsValuesStale()
{
    Driver driver;
    const auto id = driver.define("/A/F", 1.0);
    const auto other = driver.define("/B/F", 1.0);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.HookValues("/B,/B", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/B/F") == 1.0);
    client.ReleaseValues("/A,/A");
    RX_TRY(valueAt<FloatValue>("/A/F")->GetState() == VS_STALE);
    QVERIFY(!ValueHost::IsMirrored(*valueAt<FloatValue>("/A/F")));
    driver.store->set(id, 2.0);
    driver.store->set(other, 2.0);
    RX_TRY(numberAt("/B/F") == 2.0);
    QCOMPARE(numberAt("/A/F"), 1.0);
    client.HookValues("/A,/A", "");
    RX_TRY(numberAt("/A/F") == 2.0);
    QCOMPARE(valueAt<FloatValue>("/A/F")->GetState(), VS_USABLE);
}

void TestVtClient::selectionsFollowNewItemsWithoutWritingBack()
{
    Driver driver;
    Link::Description description;
    description.path = "/A/S";
    description.kind = Link::ValueKind::Selection;
    description.items = {{0, "zero", 0}, {1, "one", 0}};
    int writes = 0;
    const auto id = driver.store->define(description, qint64(1), [&](Receiver::ClientId, Link::Content&) {
        ++writes;
        return Receiver::WriteResult();
    });
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    const auto selection = [] { return valueAt<ValueSelection>("/A/S"); };
    RX_TRY(selection() && selection()->GetCurrentKey() == 1);
    description.items = {{5, "five", 0}, {6, "six", 0}};
    driver.store->describe(id, description);
    driver.store->set(id, qint64(6));
    RX_TRY(selection()->GetCurrentKey() == 6);
    QCOMPARE(selection()->GetCurrentText(), QString("six"));
    QVERIFY(!ValueHost::Status(*selection()).pending);
    // A write that the operator makes afterwards is one.
    selection()->SelectKey(5, nullptr);
    RX_TRY(writes == 1);
    QCOMPARE(driver.store->key(id), qint64(5));
}

void TestVtClient::eventsArriveOneByOne()
{
    Driver driver;
    Link::Description description;
    description.path = "/A/Open";
    description.kind = Link::ValueKind::Bool;
    description.event = true;
    const auto id = driver.store->define(description, false);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(valueAt<BoolValue>("/A/Open"));
    Listener listener;
    valueAt<BoolValue>("/A/Open")->AddObserver(&listener);
    const int count = 100;
    for (int i = 0; i < count; ++i)
        driver.store->set(id, true);
    RX_TRY(listener.count(CC_VALUE) == count);
    QCOMPARE(client.LostEvents(), quint64(0));
}

void TestVtClient::anEventLoopInsideUpdateGoesOnWithTheRestOfTheBatch()
{
    Driver driver;
    const auto first = driver.define("/A/First", 0.0);
    const auto second = driver.define("/A/Second", 0.0);
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/Second") == 0.0);
    QEventLoop dialog;
    bool inside = false;
    QVector<double> seconds;
    Listener opensDialog([&](Observable*, TChangeCode code) {
        if (code != CC_VALUE || inside)
            return;
        inside = true;
        QTimer::singleShot(patienceMs, &dialog, &QEventLoop::quit);  // rather fail than hang
        dialog.exec();
    });
    Listener watches([&](Observable*, TChangeCode code) {
        if (code != CC_VALUE)
            return;
        seconds.append(numberAt("/A/Second"));
        if (seconds.size() == 1)
            driver.store->set(second, 2.0);  // newer than the interrupted batch
        else if (seconds.size() == 2)
            dialog.quit();
    });
    valueAt<FloatValue>("/A/First")->AddObserver(&opensDialog);
    valueAt<FloatValue>("/A/Second")->AddObserver(&watches);
    // Both in one batch: the dialog stands between them.
    driver.store->set(first, 1.0);
    driver.store->set(second, 1.0);
    RX_TRY(inside && !dialog.isRunning());
    QCOMPARE(seconds, QVector<double>({1.0, 2.0}));
    driver.store->set(first, 3.0);
    RX_TRY(numberAt("/A/First") == 3.0);
}

void TestVtClient::valuesMayBeDeletedInsideABatch()
{
    Driver driver;
    QVector<Receiver::ValueId> ids;
    for (int i = 0; i < 10; ++i)
        ids.append(driver.define(QStringLiteral("/A/V%1").arg(i), 0.0));
    VtClient client(quickClient());
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/V9") == 0.0);
    Listener deletes([&](Observable*, TChangeCode code) {
        if (code == CC_VALUE) {
            Tree::Instance()->DeleteValue("/A/V3");
            Tree::Instance()->DeleteValue("/A/V0");  // the one at hand
        }
    });
    valueAt<FloatValue>("/A/V0")->AddObserver(&deletes);
    for (const auto id : ids)
        driver.store->set(id, 1.0);
    RX_TRY(numberAt("/A/V9") == 1.0);
    QVERIFY(!Tree::Instance()->FindValue("/A/V0"));
    QVERIFY(!Tree::Instance()->FindValue("/A/V3"));
}

void TestVtClient::theClientMayBeStoppedOrDeletedInsideABatch_data()
{
    QTest::addColumn<bool>("deleted");
    QTest::newRow("stopped") << false;
    QTest::newRow("deleted") << true;
}

void TestVtClient::theClientMayBeStoppedOrDeletedInsideABatch()
{
    QFETCH(bool, deleted);
    Driver driver;
    QVector<Receiver::ValueId> ids;
    for (int i = 0; i < 10; ++i)
        ids.append(driver.define(QStringLiteral("/A/V%1").arg(i), 0.0));
    auto client = std::make_unique<VtClient>(quickClient());
    client->HookValues("/A,/A", "");
    client->Start("127.0.0.1", driver.port());
    RX_TRY(numberAt("/A/V9") == 0.0);
    int calls = 0;
    Listener ends([&](Observable*, TChangeCode code) {
        if (code != CC_VALUE)
            return;
        ++calls;
        if (deleted)
            client.reset();
        else
            client->Stop();
    });
    valueAt<FloatValue>("/A/V2")->AddObserver(&ends);
    for (const auto id : ids)
        driver.store->set(id, 1.0);
    RX_TRY(calls == 1);
    RX_TRY(driver.server->connectionCount() == 0);
    if (deleted)
        QCOMPARE(numberAt("/A/V9"), 0.0);
    else
        RX_TRY(valueAt<FloatValue>("/A/V9")->GetState() == VS_STALE);
}

void TestVtClient::manyValuesComeInSeveralParts()
{
    Driver driver;
    const int count = 5000;
    for (int i = 0; i < count; ++i)
        driver.define(QStringLiteral("/A/V%1").arg(i), double(i));
    VtClient client(quickClient());
    Listener listener;
    client.AddObserver(&listener);
    client.HookValues("/A,/A", "");
    client.Start("127.0.0.1", driver.port());
    RX_TRY(listener.count(CC_HOOKS_SERVED) == 1);
    QCOMPARE(ValueHost::CountValues(), count);
    for (int i = 0; i < count; ++i)
        QCOMPARE(numberAt(QStringLiteral("/A/V%1").arg(i)), double(i));
}

QTEST_GUILESS_MAIN(TestVtClient)
#include "tst_vtclient.moc"
