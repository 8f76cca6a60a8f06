#include <QSignalSpy>
#include <QtTest>

#include "link/clientsession.h"
#include "link/codec.h"
#include "peers.h"

using namespace Link;

namespace {

SessionOptions quick()
{
    SessionOptions options;
    options.heartbeatMs = 40;
    options.lostMs = 10000;
    options.welcomeMs = 10000;
    options.backoffFirstMs = 10;
    options.backoffLastMs = 40;
    return options;
}

Welcome welcomeOf(quint64 epoch, int version = protocolVersion)
{
    Welcome welcome;
    welcome.version = version;
    welcome.epoch = epoch;
    welcome.driver = QStringLiteral("scripted");
    return welcome;
}

#define RX_CONNECT(SESSION, DRIVER, COUNT, EPOCH)                           \
    QTRY_VERIFY_WITH_TIMEOUT((DRIVER).peers.size() == (COUNT), patienceMs); \
    QTRY_VERIFY_WITH_TIMEOUT((DRIVER).last().find<Hello>(), patienceMs);    \
    (DRIVER).last().say(welcomeOf(EPOCH));                                  \
    QTRY_VERIFY_WITH_TIMEOUT((SESSION).isConnected(), patienceMs)

}  // namespace

class TestClientSession : public QObject
{
    Q_OBJECT
private slots:
    void hooksAskedForBeforeAndAfterTheConnectionAreSent();
    void hooksAreSentAgainAfterALossAndReleasedOnesAreNot();
    void everyConnectionOfASessionCarriesTheSameName();
    void aDriverThatSaysNothingIsGivenUpWithAReasonAndTriedAgain();
    void aSilentDriverCountsAsLost();
    void aDriverThatIsNotThereIsTriedAgainWithoutLimit();
    void withoutReconnectOneFailureIsTheEnd();
    void aDriverOfAnotherVersionIsToldAndRefused();
    void theReasonOfAGoodbyeIsKept();
    void whatComesOutOfOrderEndsTheConnection_data();
    void whatComesOutOfOrderEndsTheConnection();
    void aGapInTheBatchesIsRepairedByASnapshot();
    void aNewEpochMeansANewHandshake();
    void aBrokenFrameEndsTheConnectionAndTheDriverIsToldWhy();
    void aWriteIsAnsweredOnce();
    void aWriteWithoutAnswerIsReported();
    void aLossReportsTheWritesUnderWay();
    void aWriteWithoutConnectionIsNotSent();
    void stoppingSendsWhatWaitsAndAGoodbye();
    void startingAgainGoesToTheNewDriver();
};

void TestClientSession::hooksAskedForBeforeAndAfterTheConnectionAreSent()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    session.hook(QStringLiteral("/A"));
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 5);
    session.hook(QStringLiteral("/B"));
    QTRY_COMPARE_WITH_TIMEOUT(driver.last().count<Hook>(), 2, patienceMs);
    QCOMPARE(session.welcome().epoch, quint64(5));
    QVERIFY(session.lastFailure().isEmpty());
}

void TestClientSession::hooksAreSentAgainAfterALossAndReleasedOnesAreNot()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    QSignalSpy lost(&session, &ClientSession::disconnected);
    const quint32 first = session.hook(QStringLiteral("/A"));
    const quint32 second = session.hook(QStringLiteral("/B"));
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 5);
    session.release(first);
    QTRY_VERIFY_WITH_TIMEOUT(driver.last().find<Release>(), patienceMs);
    driver.last().socket->abort();
    QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, patienceMs);
    RX_CONNECT(session, driver, 2u, 6);
    QTRY_COMPARE_WITH_TIMEOUT(driver.last().count<Hook>(), 1, patienceMs);
    QCOMPARE(driver.last().find<Hook>()->number, second);
}

void TestClientSession::everyConnectionOfASessionCarriesTheSameName()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    ClientSession other(quick());
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 5);
    const QByteArray name = driver.last().find<Hello>()->session;
    QCOMPARE(name.size(), 16);
    driver.last().socket->abort();
    RX_CONNECT(session, driver, 2u, 5);
    QCOMPARE(driver.last().find<Hello>()->session, name);
    other.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(other, driver, 3u, 5);
    QVERIFY(driver.last().find<Hello>()->session != name);
}

void TestClientSession::aDriverThatSaysNothingIsGivenUpWithAReasonAndTriedAgain()
{
    ScriptedDriver driver;
    SessionOptions options = quick();
    options.welcomeMs = 50;
    ClientSession session(options);
    QSignalSpy failed(&session, &ClientSession::attemptFailed);
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    QTRY_VERIFY_WITH_TIMEOUT(failed.size() >= 2, patienceMs);
    QVERIFY2(failed.first().first().toString().contains(QStringLiteral("said nothing for 0.05 s")),
             qPrintable(failed.first().first().toString()));
    QVERIFY(driver.peers.size() >= 2);
}

void TestClientSession::aSilentDriverCountsAsLost()
{
    ScriptedDriver driver;
    SessionOptions options = quick();
    options.lostMs = 200;
    ClientSession session(options);
    QSignalSpy lost(&session, &ClientSession::disconnected);
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 5);
    QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, patienceMs);
    QVERIFY(lost.first().first().toString().contains(QStringLiteral("nothing heard for 0.2 s")));
    QVERIFY(driver.peers.front()->count<Heartbeat>() > 0);
}

void TestClientSession::aDriverThatIsNotThereIsTriedAgainWithoutLimit()
{
    QTcpServer placeholder;
    placeholder.listen(QHostAddress::LocalHost, 0);
    const quint16 port = placeholder.serverPort();
    placeholder.close();
    ClientSession session(quick());
    QSignalSpy failed(&session, &ClientSession::attemptFailed);
    session.start(QStringLiteral("127.0.0.1"), port);
    QTRY_VERIFY_WITH_TIMEOUT(failed.size() >= 5, patienceMs);
    QVERIFY(!session.lastFailure().isEmpty());
}

void TestClientSession::withoutReconnectOneFailureIsTheEnd()
{
    QTcpServer placeholder;
    placeholder.listen(QHostAddress::LocalHost, 0);
    const quint16 port = placeholder.serverPort();
    placeholder.close();
    SessionOptions options = quick();
    options.reconnect = false;
    ClientSession session(options);
    QSignalSpy failed(&session, &ClientSession::attemptFailed);
    session.start(QStringLiteral("127.0.0.1"), port);
    QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, patienceMs);
    QCOMPARE(session.state(), ClientSession::State::Stopped);
}

void TestClientSession::aDriverOfAnotherVersionIsToldAndRefused()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    QSignalSpy failed(&session, &ClientSession::attemptFailed);
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    QTRY_VERIFY_WITH_TIMEOUT(!driver.peers.empty() && driver.last().find<Hello>(), patienceMs);
    Peer& peer = driver.last();
    peer.say(welcomeOf(1, 99));
    QTRY_VERIFY_WITH_TIMEOUT(!failed.isEmpty(), patienceMs);
    QVERIFY(failed.first().first().toString().contains(QStringLiteral("speaks version 99")));
    QTRY_VERIFY_WITH_TIMEOUT(peer.find<Bye>(), patienceMs);
    QVERIFY(peer.find<Bye>()->reason.contains(QStringLiteral("version 99")));
}

void TestClientSession::theReasonOfAGoodbyeIsKept()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    QTRY_VERIFY_WITH_TIMEOUT(!driver.peers.empty() && driver.last().find<Hello>(), patienceMs);
    driver.last().say(Bye{QStringLiteral("the driver is full")});
    QTRY_VERIFY_WITH_TIMEOUT(session.lastFailure().contains(QStringLiteral("the driver is full")),
                             patienceMs);
}

void TestClientSession::whatComesOutOfOrderEndsTheConnection_data()
{
    QTest::addColumn<int>("what");
    QTest::addColumn<bool>("greeted");
    QTest::addColumn<QString>("reason");
    QTest::newRow("batch before welcome") << 0 << false << "Batch out of order";
    QTest::newRow("snapshot before welcome") << 1 << false << "Snapshot out of order";
    QTest::newRow("welcome twice") << 2 << true << "Welcome out of order";
    QTest::newRow("what only clients say") << 3 << true << "Hello out of order";
    QTest::newRow("the same batch twice") << 4 << true << "batch 1 after batch 1";
}

void TestClientSession::whatComesOutOfOrderEndsTheConnection()
{
    QFETCH(int, what);
    QFETCH(bool, greeted);
    QFETCH(QString, reason);
    const Batch batch{7, 1, 0, 0, {}};
    const QVector<QVector<Message>> said = {
        {batch}, {Snapshot{1, true, {}, {}}}, {welcomeOf(7)}, {helloOf('x')}, {batch, batch}};
    ScriptedDriver driver;
    ClientSession session(quick());
    session.hook(QStringLiteral("/A"));
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    QTRY_VERIFY_WITH_TIMEOUT(!driver.peers.empty() && driver.last().find<Hello>(), patienceMs);
    Peer& peer = driver.last();
    if (greeted)
        peer.say(welcomeOf(7));
    for (const Message& message : said.at(what))
        peer.say(message);
    QTRY_VERIFY2_WITH_TIMEOUT(session.lastFailure().contains(reason), qPrintable(session.lastFailure()),
                              patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(peer.find<Bye>(), patienceMs);
}

void TestClientSession::aGapInTheBatchesIsRepairedByASnapshot()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    const quint32 hook = session.hook(QStringLiteral("/A"));
    int batches = 0;
    connect(&session, &ClientSession::batchReceived, this, [&] { ++batches; });
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 7);
    driver.last().say(Batch{7, 1, 0, 0, {}});
    driver.last().say(Batch{7, 3, 0, 0, {}});
    driver.last().say(Batch{7, 5, 0, 0, {}});
    QTRY_COMPARE_WITH_TIMEOUT(batches, 3, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(driver.last().count<Resync>(), 1, patienceMs);
    driver.last().say(Snapshot{hook, true, {}, {}});
    driver.last().say(Batch{7, 9, 0, 0, {}});
    QTRY_COMPARE_WITH_TIMEOUT(driver.last().count<Resync>(), 2, patienceMs);
    QVERIFY(session.isConnected());
}

void TestClientSession::aNewEpochMeansANewHandshake()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    int batches = 0;
    connect(&session, &ClientSession::batchReceived, this, [&] { ++batches; });
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 7);
    driver.last().say(Batch{8, 1, 0, 0, {}});
    RX_CONNECT(session, driver, 2u, 8);
    driver.last().say(Batch{8, 1, 0, 0, {}});
    QTRY_COMPARE_WITH_TIMEOUT(batches, 1, patienceMs);
}

void TestClientSession::aBrokenFrameEndsTheConnectionAndTheDriverIsToldWhy()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    QSignalSpy lost(&session, &ClientSession::disconnected);
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 7);
    Peer& peer = driver.last();
    peer.socket->write(QByteArray::fromHex("7fffffff"));
    QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, patienceMs);
    QVERIFY(lost.first().first().toString().contains(QStringLiteral("a frame of 2147483647 bytes")));
    QTRY_VERIFY_WITH_TIMEOUT(peer.find<Bye>(), patienceMs);
    QVERIFY(peer.find<Bye>()->reason.contains(QStringLiteral("a frame of 2147483647 bytes")));
}

void TestClientSession::aWriteIsAnsweredOnce()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    QVector<quint32> answered;
    connect(&session, &ClientSession::answered, this,
            [&](const Answer& answer) { answered.append(answer.number); });
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 7);
    const quint32 number = session.write(3, 1.5);
    QTRY_VERIFY_WITH_TIMEOUT(driver.last().find<Write>(), patienceMs);
    QCOMPARE(driver.last().find<Write>()->number, number);
    Answer answer;
    answer.number = number;
    driver.last().say(answer);
    driver.last().say(answer);
    answer.number = number + 1;
    driver.last().say(answer);
    const quint32 second = session.write(3, 2.5);
    QTRY_COMPARE_WITH_TIMEOUT(driver.last().count<Write>(), 2, patienceMs);
    answer.number = second;
    driver.last().say(answer);
    QTRY_VERIFY_WITH_TIMEOUT(answered.contains(second), patienceMs);
    QCOMPARE(answered.count(number), 1);
}

void TestClientSession::aWriteWithoutAnswerIsReported()
{
    ScriptedDriver driver;
    SessionOptions options = quick();
    options.answerMs = 50;
    ClientSession session(options);
    QSignalSpy unanswered(&session, &ClientSession::unanswered);
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 7);
    const quint32 first = session.write(3, 1.5);
    const quint32 second = session.write(4, 1.5);
    QTRY_COMPARE_WITH_TIMEOUT(unanswered.size(), 2, patienceMs);
    QCOMPARE(unanswered.at(0).at(0).toUInt(), first);
    QCOMPARE(unanswered.at(1).at(0).toUInt(), second);
    QVERIFY(unanswered.at(0).at(1).toString().contains(QStringLiteral("0.05 s")));
}

void TestClientSession::aLossReportsTheWritesUnderWay()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    QSignalSpy unanswered(&session, &ClientSession::unanswered);
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 7);
    session.write(3, 1.5);
    driver.last().socket->abort();
    QTRY_COMPARE_WITH_TIMEOUT(unanswered.size(), 1, patienceMs);
    QVERIFY(unanswered.first().at(1).toString().contains(QStringLiteral("the connection was lost")));
}

void TestClientSession::aWriteWithoutConnectionIsNotSent()
{
    ClientSession session(quick());
    QCOMPARE(session.write(1, true), 0u);
}

void TestClientSession::stoppingSendsWhatWaitsAndAGoodbye()
{
    ScriptedDriver driver;
    ClientSession session(quick());
    QSignalSpy lost(&session, &ClientSession::disconnected);
    session.start(QStringLiteral("127.0.0.1"), driver.port());
    RX_CONNECT(session, driver, 1u, 7);
    session.write(3, QString());
    session.stop(20);
    QCOMPARE(lost.size(), 1);
    QCOMPARE(session.state(), ClientSession::State::Stopped);
    QTRY_VERIFY_WITH_TIMEOUT(driver.last().find<Bye>(), patienceMs);
    QVERIFY(driver.last().find<Write>());
}

void TestClientSession::startingAgainGoesToTheNewDriver()
{
    ScriptedDriver first;
    ScriptedDriver second;
    ClientSession session(quick());
    session.start(QStringLiteral("127.0.0.1"), first.port());
    RX_CONNECT(session, first, 1u, 7);
    session.start(QStringLiteral("127.0.0.1"), second.port());
    RX_CONNECT(session, second, 1u, 9);
    QCOMPARE(session.welcome().epoch, quint64(9));
    QTRY_VERIFY_WITH_TIMEOUT(first.last().isGone(), patienceMs);
}

QTEST_GUILESS_MAIN(TestClientSession)
#include "tst_clientsession.moc"
