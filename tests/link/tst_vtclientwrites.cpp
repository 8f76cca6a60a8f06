#include "link/channel.h"
#include "mirrorfixture.h"
#include "valueframework/value.h"

using Link::AnswerKind;
using Receiver::ClientId;
using Receiver::WriteResult;

namespace {

const WriteStatus& statusAt(const QString& path)
{
    static const WriteStatus none;
    ValueBase* value = Tree::Instance()->FindValue(path);
    return value ? ValueHost::Status(*value) : none;
}

// A driver with one number, whose fate the test decides.
struct Station
{
    explicit Station(const VtClientOptions& options = quickClient()) : client(options)
    {
        id = driver.define("/A/F", 1.0, [this](ClientId, Link::Content& content) {
            written.append(std::get<double>(content));
            return decide ? decide(content) : WriteResult();
        });
        client.HookValues("/A,/A", "");
        client.Start("127.0.0.1", driver.port());
    }

    FloatValue* value() const { return valueAt<FloatValue>("/A/F"); }

    QVector<double> written;
    std::function<WriteResult(Link::Content&)> decide;
    Driver driver;
    Receiver::ValueId id = 0;
    VtClient client;
};

}  // namespace

class TestVtClientWrites : public QObject
{
    Q_OBJECT
private slots:
    void init() { ValueHost::CreateTree(); }
    void cleanup() { ValueHost::DestroyTree(); }

    void aWriteIsPendingUntilItIsAccepted();
    void aClampedWriteShowsWhatTheDriverTook();
    void aRefusedWriteGoesBackWithItsReason();
    void aWriteWithoutAnswerIsUnansweredAndGoesBack();
    void onlyTheFinalContentOfOneTurnIsSent();
    void aNestedWriteOfAnEarlierObserverWins();
    void writingThereAndBackSendsNothing();
    void flushingSendsAtOnce();
    void whatStandsIsNotWrittenAgain();
    void anOlderAnswerDoesNotFlickerBackANewerWrite();
    void theDriversContentWaitsForTheAnswer();
    void aWriteWhileTheDriverIsAwayIsRefusedAtOnce();
    void aWriteUnderWayAtALossIsUnansweredAndGoesBack();
    void aWriteToAValueThatIsNotServedIsRefused();
    void aWriteAsALossIsNoticedReachesNoOtherValue();
    void theWriterHimselfHearsOfTheAnswer();
    void aValueDeletedWithAWritePendingIsForgotten();
    void everyTypeIsWritten();
    void stoppingSendsTheWritesThatWait();
    void deletingTheClientSendsTheWritesThatWait();
    void aReadOnlyValueIsRefusedByTheDriver();
};

void TestVtClientWrites::aWriteIsPendingUntilItIsAccepted()
{
    Station station;
    RX_TRY(station.value());
    Listener listener;
    station.value()->AddObserver(&listener);
    station.value()->SetValue(5.0, &listener);
    QVERIFY(statusAt("/A/F").pending);
    QCOMPARE(numberAt("/A/F"), 5.0);
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Accepted);
    QVERIFY(!statusAt("/A/F").pending);
    QCOMPARE(station.written, QVector<double>{5.0});
    QCOMPARE(station.driver.store->number(station.id), 5.0);
    QCOMPARE(listener.count(CC_VALUE), 0);
    QCOMPARE(listener.count(CC_DESCRIPTION), 2);
}

void TestVtClientWrites::aClampedWriteShowsWhatTheDriverTook()
{
    Station station;
    station.decide = [](Link::Content& content) {
        content = 10.0;
        return WriteResult{AnswerKind::Clamped, "clamped to 10"};
    };
    RX_TRY(station.value());
    station.value()->SetValue(50.0, nullptr);
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Clamped);
    QCOMPARE(statusAt("/A/F").reason, QString("clamped to 10"));
    QCOMPARE(numberAt("/A/F"), 10.0);
}

void TestVtClientWrites::aRefusedWriteGoesBackWithItsReason()
{
    Station station;
    station.decide = [](Link::Content&) { return WriteResult{AnswerKind::Refused, "taken by station-b"}; };
    RX_TRY(station.value());
    station.value()->SetValue(50.0, nullptr);
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Refused);
    QCOMPARE(statusAt("/A/F").reason, QString("taken by station-b"));
    QCOMPARE(numberAt("/A/F"), 1.0);
    // The next one may fare better.
    station.decide = nullptr;
    station.value()->SetValue(50.0, nullptr);
    QVERIFY(statusAt("/A/F").pending);
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Accepted);
    QVERIFY(statusAt("/A/F").reason.isEmpty());
}

void TestVtClientWrites::onlyTheFinalContentOfOneTurnIsSent()
{
    Station station;
    RX_TRY(station.value());
    for (int i = 10; i <= 20; ++i)
        station.value()->SetValue(i, nullptr);
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Accepted);
    QCOMPARE(station.written, QVector<double>{20.0});
}

void TestVtClientWrites::aNestedWriteOfAnEarlierObserverWins()
{
    Station station;
    RX_TRY(station.value());
    Listener earlier([&](Observable*, TChangeCode code) {
        if (code == CC_VALUE && numberAt("/A/F") == 5.0)
            station.value()->SetValue(6.0, nullptr);
    });
    station.value()->MakeFirstObserver(&earlier);
    station.value()->SetValue(5.0, nullptr);
    station.client.Flush();
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Accepted);
    QCOMPARE(station.written, QVector<double>{6.0});
    QCOMPARE(numberAt("/A/F"), 6.0);
}

void TestVtClientWrites::writingThereAndBackSendsNothing()
{
    Station station;
    RX_TRY(station.value());
    station.value()->SetValue(5.0, nullptr);
    station.value()->SetValue(1.0, nullptr);
    RX_TRY(!statusAt("/A/F").pending);
    QCOMPARE(statusAt("/A/F").answer, WriteStatus::None);
    station.value()->SetValue(7.0, nullptr);
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Accepted);
    QCOMPARE(station.written, QVector<double>{7.0});
}

void TestVtClientWrites::flushingSendsAtOnce()
{
    Station station;
    RX_TRY(station.value());
    station.value()->SetValue(5.0, nullptr);
    station.client.Flush();
    station.value()->SetValue(6.0, nullptr);
    station.client.Flush();
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Accepted);
    QCOMPARE(station.written, QVector<double>({5.0, 6.0}));
}

void TestVtClientWrites::whatStandsIsNotWrittenAgain()
{
    Station station;
    RX_TRY(station.value());
    station.value()->SetValue(1.0, nullptr);
    station.value()->NotifyObservers(CC_VALUE, nullptr);
    QVERIFY(!statusAt("/A/F").pending);
    station.value()->SetValue(2.0, nullptr);
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Accepted);
    QCOMPARE(station.written, QVector<double>{2.0});
}

void TestVtClientWrites::anOlderAnswerDoesNotFlickerBackANewerWrite()
{
    Station station;
    RX_TRY(station.value());
    QVector<double> seen;
    Listener listener([&](Observable*, TChangeCode code) {
        if (code == CC_VALUE)
            seen.append(numberAt("/A/F"));
    });
    station.value()->AddObserver(&listener);
    for (int i = 10; i <= 30; ++i) {
        station.value()->SetValue(i, nullptr);
        station.client.Flush();
    }
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Accepted);
    QCOMPARE(station.written.size(), 21);
    QCOMPARE(numberAt("/A/F"), 30.0);
    QCOMPARE(seen.size(), 21);
    QVERIFY(std::is_sorted(seen.begin(), seen.end()));
}

// Plays the driver's part by hand: the order of its messages is what counts.
class Puppet : public MirrorTree::Owner
{
public:
    void wake() override {}
    void wakeLater() override {}
    void wakeWrites() override {}
    void announce(TChangeCode) override {}
    quint32 write(quint64, quint32, const Link::Content& content) override
    {
        written.append(std::get<double>(content));
        return quint32(written.size());
    }

    QVector<double> written;
};

void TestVtClientWrites::theDriversContentWaitsForTheAnswer()
{
    Puppet puppet;
    const auto mirror = std::make_shared<MirrorTree>(&puppet);
    mirror->addHook(1, "/A", "/A");
    Link::Description description;
    description.id = 7;
    description.path = "/A/F";
    description.kind = Link::ValueKind::Float;
    const auto update = [](double content) { return Link::Update{7, 1, Link::ValueStatus::Usable, content}; };
    mirror->connected(1);
    mirror->snapshot(Link::Snapshot{1, true, {description}, {update(1.0)}});
    mirror->run();
    valueAt<FloatValue>("/A/F")->SetValue(5.0, nullptr);
    mirror->sendWrites();
    QCOMPARE(puppet.written, QVector<double>{5.0});
    mirror->batch(Link::Batch{1, 1, 0, 0, {update(2.0)}});
    mirror->run();
    QCOMPARE(numberAt("/A/F"), 5.0);
    mirror->answer(Link::Answer{1, AnswerKind::Refused, "no", std::monostate()});
    mirror->run();
    QCOMPARE(numberAt("/A/F"), 2.0);
    QCOMPARE(statusAt("/A/F").answer, WriteStatus::Refused);
    mirror->batch(Link::Batch{1, 2, 0, 0, {update(3.0)}});
    mirror->run();
    QCOMPARE(numberAt("/A/F"), 3.0);
    mirror->leave();
}

void TestVtClientWrites::aWriteAsALossIsNoticedReachesNoOtherValue()
{
    Puppet puppet;
    const auto mirror = std::make_shared<MirrorTree>(&puppet);
    mirror->addHook(1, "/A", "/A");
    Link::Description description;
    description.id = 7;
    description.path = "/A/F";
    description.kind = Link::ValueKind::Float;
    mirror->connected(1);
    mirror->snapshot(Link::Snapshot{1, true, {description}, {{7, 1, Link::ValueStatus::Usable, 1.0}}});
    mirror->run();
    valueAt<FloatValue>("/A/F")->SetValue(5.0, nullptr);
    mirror->lost("gone");
    mirror->connected(2);
    mirror->run();
    mirror->sendWrites();
    QVERIFY(puppet.written.isEmpty());
    QCOMPARE(statusAt("/A/F").answer, WriteStatus::Refused);
    QCOMPARE(numberAt("/A/F"), 1.0);
    mirror->leave();
}

void TestVtClientWrites::aWriteWithoutAnswerIsUnansweredAndGoesBack()
{
    Puppet puppet;
    const auto mirror = std::make_shared<MirrorTree>(&puppet);
    mirror->addHook(1, "/A", "/A");
    Link::Description description;
    description.id = 7;
    description.path = "/A/F";
    description.kind = Link::ValueKind::Float;
    mirror->connected(1);
    mirror->snapshot(Link::Snapshot{1, true, {description}, {{7, 1, Link::ValueStatus::Usable, 1.0}}});
    mirror->run();
    valueAt<FloatValue>("/A/F")->SetValue(5.0, nullptr);
    mirror->sendWrites();
    mirror->unanswered(1, "the driver did not answer within 0.05 s");
    mirror->run();
    QCOMPARE(statusAt("/A/F").answer, WriteStatus::Unanswered);
    QVERIFY(statusAt("/A/F").reason.contains("did not answer"));
    QVERIFY(!statusAt("/A/F").pending);
    QCOMPARE(numberAt("/A/F"), 1.0);
    mirror->leave();
}

void TestVtClientWrites::aWriteWhileTheDriverIsAwayIsRefusedAtOnce()
{
    Station station;
    RX_TRY(station.value());
    station.driver.die();
    RX_TRY(station.value()->GetState() == VS_STALE && !station.client.IsConnected());
    Listener listener;
    station.value()->AddObserver(&listener);
    station.value()->SetValue(5.0, nullptr);
    QCOMPARE(numberAt("/A/F"), 1.0);
    QCOMPARE(statusAt("/A/F").answer, WriteStatus::Refused);
    QVERIFY2(statusAt("/A/F").reason.contains("the driver is away"), qPrintable(statusAt("/A/F").reason));
    QVERIFY(listener.count(CC_VALUE) >= 1);
}

void TestVtClientWrites::aWriteUnderWayAtALossIsUnansweredAndGoesBack()
{
    Station station;
    RX_TRY(station.value());
    station.value()->SetValue(5.0, nullptr);
    station.client.Flush();
    station.driver.die();  // before it read the write
    RX_TRY(statusAt("/A/F").answer == WriteStatus::Unanswered);
    QVERIFY2(statusAt("/A/F").reason.contains("lost"), qPrintable(statusAt("/A/F").reason));
    QCOMPARE(numberAt("/A/F"), 1.0);
    QVERIFY(station.written.isEmpty());
}

void TestVtClientWrites::aWriteToAValueThatIsNotServedIsRefused()
{
    Station station;
    RX_TRY(station.value());
    station.driver.store->remove(station.id);
    RX_TRY(station.value()->GetState() == VS_NOT_AVAILABLE);
    station.value()->SetValue(5.0, nullptr);
    QCOMPARE(statusAt("/A/F").answer, WriteStatus::Refused);
    QVERIFY(statusAt("/A/F").reason.contains("does not serve this value"));
    QCOMPARE(numberAt("/A/F"), 1.0);
}

void TestVtClientWrites::theWriterHimselfHearsOfTheAnswer()
{
    Station station;
    station.decide = [](Link::Content&) { return WriteResult{AnswerKind::Refused, "no"}; };
    RX_TRY(station.value());
    Listener writer;
    station.value()->AddObserver(&writer);
    station.value()->SetValue(5.0, &writer);
    QCOMPARE(writer.count(CC_VALUE), 0);
    RX_TRY(writer.count(CC_VALUE) == 1);
    QCOMPARE(numberAt("/A/F"), 1.0);
}

void TestVtClientWrites::aValueDeletedWithAWritePendingIsForgotten()
{
    Station station;
    RX_TRY(station.value());
    station.value()->SetValue(5.0, nullptr);
    station.client.Flush();
    Tree::Instance()->DeleteValue("/A/F");
    RX_TRY(station.written.size() == 1);
    const auto other = station.driver.define("/A/G", 1.0);
    RX_TRY(numberAt("/A/G") == 1.0);
    QVERIFY(other != 0);
    QVERIFY(!Tree::Instance()->FindValue("/A/F"));
}

void TestVtClientWrites::everyTypeIsWritten()
{
    Station station;
    const auto text = station.driver.define("/A/T", QString("old"));
    const auto flag = station.driver.define("/A/B", false);
    const auto integer = station.driver.define("/A/I", qint64(1));
    RX_TRY(valueAt<IntValue>("/A/I") && valueAt<IntValue>("/A/I")->GetValue() == 1);
    valueAt<TextValue>("/A/T")->SetValue("Köln", nullptr);
    valueAt<BoolValue>("/A/B")->SetValue(true, nullptr);
    valueAt<IntValue>("/A/I")->SetValue(-7, nullptr);
    RX_TRY(statusAt("/A/T").answer == WriteStatus::Accepted);
    RX_TRY(statusAt("/A/B").answer == WriteStatus::Accepted);
    RX_TRY(statusAt("/A/I").answer == WriteStatus::Accepted);
    QCOMPARE(station.driver.store->text(text), QString("Köln"));
    QVERIFY(station.driver.store->flag(flag));
    QCOMPARE(station.driver.store->number(integer), -7.0);
}

void TestVtClientWrites::stoppingSendsTheWritesThatWait()
{
    Station station;
    RX_TRY(station.value());
    station.value()->SetValue(5.0, nullptr);
    station.client.Stop();
    RX_TRY(station.written == QVector<double>{5.0});
    RX_TRY(station.driver.server->connectionCount() == 0);
}

void TestVtClientWrites::deletingTheClientSendsTheWritesThatWait()
{
    Driver driver;
    const auto id = driver.define("/A/Claim", QString());
    {
        VtClient client(quickClient());
        client.HookValues("/A,/A", "");
        client.Start("127.0.0.1", driver.port());
        RX_TRY(valueAt<TextValue>("/A/Claim"));
        valueAt<TextValue>("/A/Claim")->SetValue("station-a", nullptr);
    }
    RX_TRY(driver.store->text(id) == "station-a");
}

void TestVtClientWrites::aReadOnlyValueIsRefusedByTheDriver()
{
    Driver driver;
    VtClient client(quickClient());
    client.HookValues("/ADMINISTRATION,/ADMINISTRATION", "");
    client.Start("127.0.0.1", driver.port());
    const auto flag = [] { return valueAt<BoolValue>("/ADMINISTRATION/SERVERVALUESHOOKED"); };
    RX_TRY(flag() && flag()->GetValue());
    flag()->SetValue(false, nullptr);
    RX_TRY(statusAt("/ADMINISTRATION/SERVERVALUESHOOKED").answer == WriteStatus::Refused);
    QVERIFY(flag()->GetValue());
}

QTEST_GUILESS_MAIN(TestVtClientWrites)
#include "tst_vtclientwrites.moc"
