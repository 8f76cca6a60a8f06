#include <QtTest>

#include "link/codec.h"
#include "link/limits.h"
#include "peers.h"
#include "receiver/server/server.h"

using namespace Receiver;
using Link::AnswerKind;

namespace {

constexpr int patientLossMs = 60000;

ServerOptions quick()
{
    ServerOptions options;
    options.heartbeatMs = 40;
    options.lostMs = patientLossMs;
    options.helloMs = patientLossMs;
    return options;
}

struct Station
{
    explicit Station(const ServerOptions& options = quick()) : server(store, options)
    {
        QString error;
        if (!server.listen(QStringLiteral("localhost"), 0, &error))
            qFatal("%s", qPrintable(error));
        store.onClientGone([this](ClientId client) { gone.append(client); });
    }

    ValueId define(const QString& path, Link::Content content, ValueStore::Authority authority = {})
    {
        Link::Description description;
        description.path = path;
        description.kind =
            std::holds_alternative<QString>(content) ? Link::ValueKind::Text : Link::ValueKind::Float;
        return store.define(description, content, authority);
    }

    ValueStore store;
    QVector<ClientId> gone;
    Server server;
};

std::unique_ptr<Peer> client(const Station& station, char session)
{
    auto peer = std::make_unique<Peer>(connectedSocket(station.server.port()));
    QObject::connect(peer->socket.get(), &QTcpSocket::connected, &peer->channel,
                     [raw = peer.get(), session] { raw->say(helloOf(session)); });
    return peer;
}

#define RX_HEARD(PEER, TYPE) QTRY_VERIFY_WITH_TIMEOUT((PEER)->find<TYPE>(), patienceMs)
#define RX_ENDED(PEER, TEXT)                                                   \
    RX_HEARD(PEER, Link::Bye);                                                 \
    QVERIFY2((PEER)->find<Link::Bye>()->reason.contains(QStringLiteral(TEXT)), \
             qPrintable((PEER)->find<Link::Bye>()->reason));                   \
    QTRY_VERIFY_WITH_TIMEOUT((PEER)->isGone(), patienceMs)

}  // namespace

class TestServer : public QObject
{
    Q_OBJECT
private slots:
    void aClientIsWelcomedAndServed();
    void everyStartHasAnotherEpoch();
    void writesAreAcceptedClampedOrRefused();
    void aWriteToAnUnknownValueIsRefused();
    void numbersThatAreNoneAreRefused();
    void aClaimIsFreedWhenItsConnectionEnds();
    void theSameSessionRetiresItsOldConnectionFirst();
    void aSilentClientCountsAsGone();
    void aClientOfAnotherVersionIsToldWhy();
    void whatComesOutOfOrderEndsTheConnection_data();
    void whatComesOutOfOrderEndsTheConnection();
    void brokenFramesEndTheConnection_data();
    void brokenFramesEndTheConnection();
    void whoeverSaysNothingIsSentAway();
    void tooManyConnectionsAreToldSo();
    void tooManyHooksEndTheConnection();
    void aStoppedReaderGetsTheNewestContentAndTheCountOfTheOthers();
    void aClientThatNeverReadsAnswersHasToWait();
    void closingTheServerSaysGoodbye();
    void anAddressThatCannotBeListenedOnIsNamed();
};

void TestServer::aClientIsWelcomedAndServed()
{
    Station station;
    station.server.setStreamPort(4711);
    const ValueId id = station.define("/RX1/F", 98.5e6);
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    QCOMPARE(peer->find<Link::Welcome>()->version, Link::protocolVersion);
    QCOMPARE(peer->find<Link::Welcome>()->epoch, station.server.epoch());
    QCOMPARE(peer->find<Link::Welcome>()->streamPort, quint16(4711));
    peer->say(Link::Hook{1, "/RX1"});
    RX_HEARD(peer, Link::Snapshot);
    station.store.set(id, 99e6);
    QTRY_VERIFY_WITH_TIMEOUT(peer->content(id) == Link::Content(99e6), patienceMs);
    RX_HEARD(peer, Link::Heartbeat);
    QCOMPARE(station.server.connectionCount(), 1);
    QCOMPARE(station.store.clientName(1), QString("station-a"));
}

void TestServer::everyStartHasAnotherEpoch()
{
    Station first;
    Station second;
    QVERIFY(first.server.epoch() != second.server.epoch());
}

void TestServer::writesAreAcceptedClampedOrRefused()
{
    Station station;
    const ValueId id = station.define("/F", 1.0, [](ClientId, Link::Content& content) -> WriteResult {
        const double number = std::get<double>(content);
        if (number > 100)
            return {AnswerKind::Refused, "far too much"};
        if (number > 10) {
            content = 10.0;
            return {AnswerKind::Clamped, "clamped to 10"};
        }
        return {};
    });
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    peer->say(Link::Hook{1, ""});
    RX_HEARD(peer, Link::Snapshot);
    const auto answered = [&](quint32 number, double content) {
        peer->heard.clear();
        peer->say(Link::Write{number, id, content});
    };
    answered(1, 5);
    RX_HEARD(peer, Link::Answer);
    QCOMPARE(peer->find<Link::Answer>()->kind, AnswerKind::Accepted);
    QVERIFY(peer->find<Link::Answer>()->content == Link::Content(5.0));
    answered(2, 50);
    RX_HEARD(peer, Link::Answer);
    QCOMPARE(peer->find<Link::Answer>()->number, 2u);
    QCOMPARE(peer->find<Link::Answer>()->kind, AnswerKind::Clamped);
    QVERIFY(peer->find<Link::Answer>()->content == Link::Content(10.0));
    answered(3, 500);
    RX_HEARD(peer, Link::Answer);
    QCOMPARE(peer->find<Link::Answer>()->kind, AnswerKind::Refused);
    QCOMPARE(peer->find<Link::Answer>()->reason, QString("far too much"));
    QVERIFY(peer->find<Link::Answer>()->content == Link::Content(10.0));
}

void TestServer::aWriteToAnUnknownValueIsRefused()
{
    Station station;
    const ValueId notHooked = station.define("/F", 1.0);
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    peer->say(Link::Hook{1, "/ADMINISTRATION"});
    const QVector<quint32> unknown = {notHooked, 999999, 0xffffffff, 0};
    for (const quint32 id : unknown)
        peer->say(Link::Write{id, id, 2.0});
    QTRY_COMPARE_WITH_TIMEOUT(peer->count<Link::Answer>(), int(unknown.size()), patienceMs);
    for (const Link::Message& message : peer->heard) {
        if (const auto* answer = std::get_if<Link::Answer>(&message)) {
            QCOMPARE(answer->kind, AnswerKind::Refused);
            QVERIFY(!answer->reason.isEmpty());
        }
    }
    QCOMPARE(station.store.number(notHooked), 1.0);
}

void TestServer::numbersThatAreNoneAreRefused()
{
    Station station;
    const ValueId id = station.define("/F", 1.0);
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    peer->say(Link::Hook{1, ""});
    peer->say(Link::Write{1, id, qQNaN()});
    peer->say(Link::Write{2, id, qInf()});
    peer->say(Link::Write{3, id, QString("x")});
    QTRY_COMPARE_WITH_TIMEOUT(peer->count<Link::Answer>(), 3, patienceMs);
    QCOMPARE(station.store.number(id), 1.0);
}

void TestServer::aClaimIsFreedWhenItsConnectionEnds()
{
    Station station;
    for (const bool goodbye : {true, false}) {
        station.gone.clear();
        auto peer = client(station, 'a');
        RX_HEARD(peer, Link::Welcome);
        if (goodbye)
            peer->say(Link::Bye{});
        else
            peer->socket->abort();
        QTRY_COMPARE_WITH_TIMEOUT(station.gone.size(), 1, patienceMs);
        QCOMPARE(station.server.connectionCount(), 0);
    }
}

void TestServer::theSameSessionRetiresItsOldConnectionFirst()
{
    Station station;
    const auto old = client(station, 'a');
    RX_HEARD(old, Link::Welcome);
    const auto other = client(station, 'b');
    RX_HEARD(other, Link::Welcome);
    const auto again = client(station, 'a');
    RX_HEARD(again, Link::Welcome);
    QCOMPARE(station.gone, QVector<ClientId>{1});
    RX_ENDED(old, "the same client connected again");
    QCOMPARE(station.server.connectionCount(), 2);
    QVERIFY(!other->isGone());
}

void TestServer::aSilentClientCountsAsGone()
{
    ServerOptions options = quick();
    options.lostMs = 200;
    Station station(options);
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    RX_ENDED(peer, "nothing heard for 0.2 s");
    QCOMPARE(station.gone.size(), 1);
}

void TestServer::aClientOfAnotherVersionIsToldWhy()
{
    Station station;
    auto peer = std::make_unique<Peer>(connectedSocket(station.server.port()));
    QTRY_VERIFY_WITH_TIMEOUT(peer->socket->state() == QAbstractSocket::ConnectedState, patienceMs);
    peer->say(helloOf('a', 2));
    RX_ENDED(peer, "the client speaks version 2 of the link, the driver version 1");
    QVERIFY(!peer->find<Link::Welcome>());
}

void TestServer::whatComesOutOfOrderEndsTheConnection_data()
{
    QTest::addColumn<int>("what");
    QTest::addColumn<QString>("reason");
    QTest::newRow("hook before hello") << 0 << "Hook came before Hello";
    QTest::newRow("hello twice") << 1 << "Hello came twice";
    QTest::newRow("what the driver says") << 2 << "Welcome is for the driver to say";
    QTest::newRow("a short session") << 3 << "a session has 16 bytes, not 3";
    QTest::newRow("a hook's number twice") << 4 << "hook 1 was asked for twice";
}

void TestServer::whatComesOutOfOrderEndsTheConnection()
{
    QFETCH(int, what);
    QFETCH(QString, reason);
    Link::Hello shortSession = helloOf('a');
    shortSession.session = "abc";
    const Link::Hook hook{1, "/A"};
    const QVector<QVector<Link::Message>> said = {{hook},
                                                  {helloOf('a'), helloOf('a')},
                                                  {helloOf('a'), Link::Welcome()},
                                                  {shortSession},
                                                  {helloOf('a'), hook, hook}};
    Station station;
    auto peer = std::make_unique<Peer>(connectedSocket(station.server.port()));
    QTRY_VERIFY_WITH_TIMEOUT(peer->socket->state() == QAbstractSocket::ConnectedState, patienceMs);
    for (const Link::Message& message : said.at(what))
        peer->say(message);
    RX_HEARD(peer, Link::Bye);
    QCOMPARE(peer->find<Link::Bye>()->reason, reason);
    QTRY_VERIFY_WITH_TIMEOUT(peer->isGone(), patienceMs);
    QCOMPARE(station.server.connectionCount(), 0);
}

void TestServer::brokenFramesEndTheConnection_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    QTest::newRow("oversized") << QByteArray::fromHex("7fffffff")
                               << "a frame of 2147483647 bytes was announced";
    QTest::newRow("malformed") << QByteArray::fromHex("00000001ff") << "a frame that cannot be read";
    QTest::newRow("unknown type") << QByteArray::fromHex("00000004a1001863") << "unknown message type 99";
    QTest::newRow("another protocol") << QByteArray("GET / HTTP/1.1\r\n\r\n") << "was announced";
}

void TestServer::brokenFramesEndTheConnection()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    Station station;
    const auto good = client(station, 'g');
    RX_HEARD(good, Link::Welcome);
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    peer->socket->write(bytes);
    RX_HEARD(peer, Link::Bye);
    QVERIFY2(peer->find<Link::Bye>()->reason.contains(reason), qPrintable(peer->find<Link::Bye>()->reason));
    QTRY_COMPARE_WITH_TIMEOUT(station.gone.size(), 1, patienceMs);
    QCOMPARE(station.server.connectionCount(), 1);
}

void TestServer::whoeverSaysNothingIsSentAway()
{
    ServerOptions options = quick();
    options.helloMs = 50;
    Station station(options);
    auto peer = std::make_unique<Peer>(connectedSocket(station.server.port()));
    RX_ENDED(peer, "said no Hello");
    QVERIFY(station.gone.isEmpty());
}

void TestServer::tooManyConnectionsAreToldSo()
{
    ServerOptions options = quick();
    options.connections = 2;
    Station station(options);
    const auto first = client(station, 'a');
    RX_HEARD(first, Link::Welcome);
    const auto second = client(station, 'b');
    RX_HEARD(second, Link::Welcome);
    const auto third = client(station, 'c');
    RX_ENDED(third, "the driver serves 2 connections already");
    // One that comes back finds its own place.
    const auto again = client(station, 'a');
    RX_HEARD(again, Link::Welcome);
}

void TestServer::tooManyHooksEndTheConnection()
{
    Station station;
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    for (int i = 0; i <= Link::Limits::hooksPerConnection; ++i)
        peer->say(Link::Hook{quint32(i), "/A"});
    RX_ENDED(peer, "more than 64 hooks on one connection");
}

void TestServer::aStoppedReaderGetsTheNewestContentAndTheCountOfTheOthers()
{
    Station station;
    const int count = 2000;
    QVector<ValueId> ids;
    for (int i = 0; i < count; ++i)
        ids.append(station.define(QStringLiteral("/A/V%1").arg(i), QString()));
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    peer->say(Link::Hook{1, "/A"});
    QTRY_VERIFY_WITH_TIMEOUT(
        peer->find<Link::Snapshot>() && peer->content(ids.last()) == Link::Content(QString()), patienceMs);
    peer->channel.setPaused(true);
    peer->socket->setReadBufferSize(1024);
    // Far more than any socket buffer holds; the reader stands still meanwhile.
    const QString filler(2000, 'x');
    int rounds = 0;
    for (; rounds < 40; ++rounds) {
        for (const ValueId id : ids)
            station.store.set(id, filler + QString::number(rounds));
        QCoreApplication::processEvents();
    }
    peer->socket->setReadBufferSize(0);
    peer->channel.setPaused(false);
    const Link::Content newest = filler + QString::number(rounds - 1);
    QTRY_VERIFY_WITH_TIMEOUT(peer->content(ids.last()) == newest, patienceMs);
    quint64 skipped = 0;
    const auto accounted = [&] {
        skipped = 0;
        quint64 told = 0;
        for (const Link::Message& message : peer->heard) {
            if (const auto* batch = std::get_if<Link::Batch>(&message)) {
                skipped += batch->skipped;
                told += quint64(batch->updates.size());
            }
        }
        return skipped + told;
    };
    // Every change was told or counted.
    QTRY_COMPARE_WITH_TIMEOUT(accounted(), quint64(rounds) * count, patienceMs);
    QVERIFY(skipped > 0);
}

void TestServer::aClientThatNeverReadsAnswersHasToWait()
{
    Station station;
    const QString filler(100000, 'x');
    int writes = 0;
    const ValueId id = station.define("/T", QString(), [&](ClientId, Link::Content&) -> WriteResult {
        ++writes;
        return {AnswerKind::Refused, filler};
    });
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    peer->say(Link::Hook{1, ""});
    RX_HEARD(peer, Link::Snapshot);
    peer->channel.setPaused(true);
    peer->socket->setReadBufferSize(1024);
    const int asked = 1000;
    for (int i = 0; i < asked; ++i)
        peer->say(Link::Write{quint32(i), id, QString("y")});
    QTRY_VERIFY_WITH_TIMEOUT(writes > 0, patienceMs);
    for (int i = 0; i < 200; ++i)
        QCoreApplication::processEvents();
    QVERIFY2(writes < asked, qPrintable(QString::number(writes)));
    peer->socket->setReadBufferSize(0);
    peer->channel.setPaused(false);
    QTRY_COMPARE_WITH_TIMEOUT(peer->count<Link::Answer>(), asked, patienceMs);
}

void TestServer::closingTheServerSaysGoodbye()
{
    Station station;
    const auto peer = client(station, 'a');
    RX_HEARD(peer, Link::Welcome);
    station.server.close("the driver ends");
    RX_ENDED(peer, "the driver ends");
    QCOMPARE(station.gone.size(), 1);
}

void TestServer::anAddressThatCannotBeListenedOnIsNamed()
{
    Station station;
    ValueStore store;
    Server second(store);
    QString error;
    QVERIFY(!second.listen("127.0.0.1", station.server.port(), &error));
    QVERIFY2(error.contains(QStringLiteral("127.0.0.1:%1").arg(station.server.port())), qPrintable(error));
    QVERIFY(!second.listen("no such host", 1, &error));
    QVERIFY2(error.contains("no such host:1"), qPrintable(error));
}

QTEST_GUILESS_MAIN(TestServer)
#include "tst_server.moc"
