// The pane's end of the spectrum stream, against a server that speaks its messages.

#include <QTest>
#include <limits>

#include "link/limits.h"
#include "spectrum/scanstream.h"
#include "tests/spectrum/streamserver.h"

namespace {

constexpr int waitMs = 20000;

ScanStreamOptions quick()
{
    ScanStreamOptions options;
    options.connectMs = 2000;
    options.startMs = 300;
    options.heartbeatMs = 100;
    options.lostMs = 500;
    options.backoffFirstMs = 10;
    options.backoffLastMs = 50;
    return options;
}

// A stream that is live at a server.
struct Live
{
    Live() : stream(quick())
    {
        QObject::connect(&stream, &ScanStream::frameReceived, &stream,
                         [this](const ScanFrame& frame) { frames.append(frame); });
        stream.setAddress(server.address());
        stream.start();
        QTRY_COMPARE_WITH_TIMEOUT(stream.state(), ScanStream::State::Live, waitMs);
    }

    StreamServer server;
    ScanStream stream;
    QList<ScanFrame> frames;
};

using Spoil = std::function<void(Link::ScanData&)>;

}  // namespace
Q_DECLARE_METATYPE(Spoil)

class TestScanStream : public QObject
{
    Q_OBJECT
private slots:
    void addressesThatAreTaken_data();
    void addressesThatAreTaken();
    void addressesThatAreRefused_data();
    void addressesThatAreRefused();
    void asksForWhatItWasTold();
    void aChangedRequestIsToldOnTheSameConnection();
    void framesArriveAndAreAcknowledged();
    void skippedFramesAreCounted();
    void badFramesAreDroppedWithAReasonAndTheStreamGoesOn_data();
    void badFramesAreDroppedWithAReasonAndTheStreamGoesOn();
    void timesThatGoBackAreDroppedUntilTheClockIsKnownToBeSetBack();
    void levelsThatAreNoNumbersBecomeEmptyBinsAndAreCounted();
    void bytesThatAreNoMessageEndTheConnectionAndItComesBack();
    void aRefusedRequestIsSaidAndTriedAgain();
    void aSilentServerIsGivenUpAndTriedAgain();
    void aServerThatFallsSilentIsLost();
    void comesBackAfterALossForEver();
    void asksTheClientForTheAddressAfterAFailure();
    void stopsAtOnceAndSaysGoodbye();
    void anotherAddressConnectsAnew();
    void startedWithoutAnAddressSaysSoAndWaits();
};

void TestScanStream::addressesThatAreTaken_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    QTest::newRow("host and port") << "127.0.0.1:4711"
                                   << "127.0.0.1" << 4711;
    QTest::newRow("bare host") << "127.0.0.1"
                               << "127.0.0.1" << int(Link::defaultStreamPort);
    QTest::newRow("name") << "receiver-2.site"
                          << "receiver-2.site" << int(Link::defaultStreamPort);
    QTest::newRow("name and port") << "receiver:1"
                                   << "receiver" << 1;
    QTest::newRow("highest port") << "receiver:65535"
                                  << "receiver" << 65535;
    QTest::newRow("blanks around") << "  receiver:80 "
                                   << "receiver" << 80;
    QTest::newRow("bare v6") << "::1"
                             << "::1" << int(Link::defaultStreamPort);
    QTest::newRow("v6 and port") << "[fe80::1%eth0]:99"
                                 << "fe80::1%eth0" << 99;
    QTest::newRow("v6 in brackets") << "[::1]"
                                    << "::1" << int(Link::defaultStreamPort);
}

void TestScanStream::addressesThatAreTaken()
{
    QFETCH(QString, text);
    const ScanAddress address = ScanAddress::read(text);
    QVERIFY2(address.isValid(), qPrintable(address.problem));
    QTEST(address.host, "host");
    QTEST(int(address.port), "port");
    const ScanAddress again = ScanAddress::read(address.text());
    QCOMPARE(again.host, address.host);
    QCOMPARE(again.port, address.port);
}

void TestScanStream::addressesThatAreRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("said");
    QTest::newRow("empty") << ""
                           << "not known";
    QTest::newRow("blanks") << "   "
                            << "not known";
    for (const char* text :
         {":4601", "host:", "host:0", "host:65536", "host:-1", "host:abc", "host:46 01", "two words",
          "http://host/", "[::1", "[::1]x", "[]:5", "a/b:4601", "host;reboot"})
        QTest::newRow(text) << text << "HOST:PORT";
    QTest::newRow("too long") << QString(300, QLatin1Char('h')) << "HOST:PORT";
}

void TestScanStream::addressesThatAreRefused()
{
    QFETCH(QString, text);
    QFETCH(QString, said);
    const ScanAddress address = ScanAddress::read(text);
    QVERIFY(!address.isValid());
    QVERIFY2(address.problem.contains(said), qPrintable(address.problem));
    QVERIFY(address.problem.size() < 200);
}

void TestScanStream::asksForWhatItWasTold()
{
    StreamServer server;
    ScanStream stream(quick());
    Link::StreamRequest request;
    request.kind = Link::spectrumStream();
    request.path = QStringLiteral("/RX1");
    request.points = 777;
    request.frameRate = 12;
    request.averagingSeconds = 0.5;
    request.detector = Link::StreamDetector::Maximum;
    stream.setRequest(request);
    stream.setAddress(server.address());
    stream.start();
    QTRY_COMPARE_WITH_TIMEOUT(int(server.requests.size()), 1, waitMs);
    const Link::StreamRequest& asked = server.requests.first();
    QCOMPARE(asked.version, Link::protocolVersion);
    QCOMPARE(asked.kind, QStringLiteral("spectrum"));
    QCOMPARE(asked.path, QStringLiteral("/RX1"));
    QCOMPARE(asked.points, 777u);
    QCOMPARE(asked.frameRate, 12.0);
    QCOMPARE(asked.averagingSeconds, 0.5);
    QCOMPARE(asked.detector, Link::StreamDetector::Maximum);
}

void TestScanStream::aChangedRequestIsToldOnTheSameConnection()
{
    Live live;
    Link::StreamRequest request = live.server.requests.first();
    request.detector = Link::StreamDetector::Maximum;
    live.stream.setRequest(request);
    live.stream.setRequest(request);
    QTRY_COMPARE_WITH_TIMEOUT(int(live.server.requests.size()), 2, waitMs);
    live.server.sendFrame(panorama());
    QTRY_COMPARE_WITH_TIMEOUT(int(live.frames.size()), 1, waitMs);
    QCOMPARE(live.server.connections, 1);
    QCOMPARE(int(live.server.requests.size()), 2);
}

void TestScanStream::framesArriveAndAreAcknowledged()
{
    Live live;
    for (int i = 0; i < 5; ++i)
        live.server.sendFrame(panorama(98.7e6, 60.5f));
    QTRY_COMPARE_WITH_TIMEOUT(int(live.frames.size()), 5, waitMs);
    const ScanFrame& frame = live.frames.first();
    QCOMPARE(frame.sequence, quint64(1));
    QCOMPARE(int(frame.levels.size()), 2000);
    QCOMPARE(frame.step, 1000.0);
    QCOMPARE(frame.start, 97.5005e6);
    QCOMPARE(frame.resolutionBandwidth, 2000.0);
    QCOMPARE(*std::max_element(frame.levels.begin(), frame.levels.end()), 60.5f);
    QTRY_COMPARE_WITH_TIMEOUT(live.server.ready, (QList<quint64>{1, 2, 3, 4, 5}), waitMs);
    QCOMPARE(live.stream.received(), quint64(5));
    QCOMPARE(live.stream.dropped(), quint64(0));
}

void TestScanStream::skippedFramesAreCounted()
{
    Live live;
    Link::ScanData data = panorama();
    data.skipped = 3;
    live.server.sendFrame(data);
    live.server.sendFrame(data);
    QTRY_COMPARE_WITH_TIMEOUT(live.stream.skipped(), quint64(6), waitMs);
}

void TestScanStream::badFramesAreDroppedWithAReasonAndTheStreamGoesOn_data()
{
    QTest::addColumn<Spoil>("spoil");
    QTest::addColumn<QString>("said");
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const auto row = [](const char* name, const char* said, const Spoil& spoil) {
        QTest::newRow(name) << spoil << QString::fromLatin1(said);
    };
    row("no levels", "0 bytes", [](Link::ScanData& d) { d.levels.clear(); });
    row("one byte too many", "not a multiple of 4", [](Link::ScanData& d) { d.levels.append('x'); });
    row("three bytes", "3 bytes", [](Link::ScanData& d) { d.levels.truncate(3); });
    row("step zero", "step", [](Link::ScanData& d) { d.step = 0; });
    row("step negative", "step", [](Link::ScanData& d) { d.step = -1000; });
    row("step no number", "step", [](Link::ScanData& d) { d.step = nan; });
    row("step infinite", "step", [](Link::ScanData& d) { d.step = infinite; });
    row("step lost beside the frequency", "too fine", [](Link::ScanData& d) { d.step = 1e-12; });
    row("start no number", "begins at", [](Link::ScanData& d) { d.start = nan; });
    row("start infinite", "begins at", [](Link::ScanData& d) { d.start = -infinite; });
    row("start beyond all frequencies", "begins at", [](Link::ScanData& d) { d.start = 1e300; });
    row("stop beyond all frequencies", "begins at", [](Link::ScanData& d) { d.step = 1e300; });
    row("resolution zero", "resolution", [](Link::ScanData& d) { d.resolutionBandwidth = 0; });
    row("resolution negative", "resolution", [](Link::ScanData& d) { d.resolutionBandwidth = -5; });
    row("resolution no number", "resolution", [](Link::ScanData& d) { d.resolutionBandwidth = nan; });
    row("number of the frame before", "after number", [](Link::ScanData& d) { d.sequence = 1; });
    row("number zero", "after number", [](Link::ScanData& d) { d.sequence = 0; });
    row("time going back", "goes back", [](Link::ScanData& d) { d.time = 5; });
    row("time far before 1970", "goes back", [](Link::ScanData& d) { d.time = -d.time; });
}

void TestScanStream::badFramesAreDroppedWithAReasonAndTheStreamGoesOn()
{
    QFETCH(Spoil, spoil);
    QFETCH(QString, said);
    Live live;
    live.server.sendFrame(panorama());
    Link::ScanData bad = live.server.next(panorama());
    spoil(bad);
    live.server.send(bad);
    QTRY_COMPARE_WITH_TIMEOUT(live.stream.dropped(), quint64(1), waitMs);
    QVERIFY2(live.stream.dropReason().contains(said), qPrintable(live.stream.dropReason()));
    live.server.sendFrame(panorama());
    QTRY_COMPARE_WITH_TIMEOUT(int(live.frames.size()), 2, waitMs);
    QCOMPARE(live.server.connections, 1);
    // The driver counts what is not acknowledged: a dropped frame is out of its way as well.
    QTRY_COMPARE_WITH_TIMEOUT(int(live.server.ready.size()), 3, waitMs);
}

void TestScanStream::timesThatGoBackAreDroppedUntilTheClockIsKnownToBeSetBack()
{
    Live live;
    live.server.sendFrame(panorama());
    for (int i = 0; i < ScanFrameCheck::clockSetBack + 3; ++i) {
        Link::ScanData data = live.server.next(panorama());
        data.time -= 3'600'000'000;
        live.server.send(data);
    }
    QTRY_COMPARE_WITH_TIMEOUT(int(live.frames.size()), 5, waitMs);
    QCOMPARE(live.stream.dropped(), quint64(ScanFrameCheck::clockSetBack - 1));
}

void TestScanStream::levelsThatAreNoNumbersBecomeEmptyBinsAndAreCounted()
{
    Live live;
    Link::ScanData data = panorama();
    const float bad[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity()};
    data.levels.replace(0, sizeof bad, Link::packLevels(bad, 3));
    live.server.sendFrame(data);
    QTRY_COMPARE_WITH_TIMEOUT(int(live.frames.size()), 1, waitMs);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(std::isfinite(live.frames.first().levels[i]), i == 3);
    QCOMPARE(live.stream.emptied(), quint64(3));
}

void TestScanStream::bytesThatAreNoMessageEndTheConnectionAndItComesBack()
{
    Live live;
    live.server.sendBytes(QByteArray("GET / HTTP/1.0\r\n\r\n"));
    QTRY_COMPARE_WITH_TIMEOUT(live.server.connections, 2, waitMs);
    QTRY_COMPARE_WITH_TIMEOUT(live.stream.state(), ScanStream::State::Live, waitMs);
    live.server.sendFrame(panorama());
    QTRY_COMPARE_WITH_TIMEOUT(int(live.frames.size()), 1, waitMs);
}

void TestScanStream::aRefusedRequestIsSaidAndTriedAgain()
{
    StreamServer server;
    server.answer = StreamServer::Answer::Refuse;
    ScanStream stream(quick());
    stream.setAddress(server.address());
    stream.start();
    QTRY_VERIFY_WITH_TIMEOUT(stream.failure().contains(QStringLiteral("no such device")), waitMs);
    server.answer = StreamServer::Answer::Start;
    QTRY_COMPARE_WITH_TIMEOUT(stream.state(), ScanStream::State::Live, waitMs);
}

void TestScanStream::aSilentServerIsGivenUpAndTriedAgain()
{
    StreamServer server;
    server.answer = StreamServer::Answer::Silence;
    ScanStream stream(quick());
    stream.setAddress(server.address());
    stream.start();
    QTRY_VERIFY_WITH_TIMEOUT(stream.failure().contains(QStringLiteral("sends no spectrum")), waitMs);
    QTRY_VERIFY_WITH_TIMEOUT(server.connections >= 2, waitMs);
}

// The test's server sends no heartbeats.
void TestScanStream::aServerThatFallsSilentIsLost()
{
    Live live;
    QTRY_VERIFY_WITH_TIMEOUT(live.stream.failure().contains(QStringLiteral("nothing heard")), waitMs);
    QTRY_VERIFY_WITH_TIMEOUT(live.server.connections >= 2, waitMs);
}

void TestScanStream::comesBackAfterALossForEver()
{
    Live live;
    const quint16 port = live.server.port();
    for (int i = 0; i < 5; ++i) {
        live.server.close();
        QTRY_COMPARE_WITH_TIMEOUT(live.stream.state(), ScanStream::State::Waiting, waitMs);
        QVERIFY(!live.stream.failure().isEmpty());
        QVERIFY(live.server.listen(port));
        QTRY_COMPARE_WITH_TIMEOUT(live.stream.state(), ScanStream::State::Live, waitMs);
        live.server.sendFrame(panorama());
        QTRY_COMPARE_WITH_TIMEOUT(int(live.frames.size()), i + 1, waitMs);
        QVERIFY(live.stream.failure().isEmpty());
    }
}

void TestScanStream::asksTheClientForTheAddressAfterAFailure()
{
    StreamServer former;
    StreamServer now;
    ScanStream stream(quick());
    QString known;
    stream.setAddressSource([&known] { return known; });
    stream.setAddress(former.address());
    former.close();
    stream.start();
    QTRY_VERIFY_WITH_TIMEOUT(!stream.failure().isEmpty(), waitMs);
    known = now.address();
    QTRY_COMPARE_WITH_TIMEOUT(stream.state(), ScanStream::State::Live, waitMs);
    QCOMPARE(now.connections, 1);
}

void TestScanStream::stopsAtOnceAndSaysGoodbye()
{
    Live live;
    live.stream.stop();
    QCOMPARE(live.stream.state(), ScanStream::State::Stopped);
    QTRY_VERIFY_WITH_TIMEOUT(!live.server.isConnected(), waitMs);
    QCOMPARE(live.server.goodbyes, 1);
    QVERIFY(!live.stream.isRunning());
    live.stream.start();
    QTRY_COMPARE_WITH_TIMEOUT(live.stream.state(), ScanStream::State::Live, waitMs);
}

void TestScanStream::anotherAddressConnectsAnew()
{
    Live live;
    StreamServer other;
    live.stream.setAddress(other.address());
    QTRY_COMPARE_WITH_TIMEOUT(other.connections, 1, waitMs);
    QTRY_VERIFY_WITH_TIMEOUT(!live.server.isConnected(), waitMs);
    QTRY_COMPARE_WITH_TIMEOUT(live.stream.state(), ScanStream::State::Live, waitMs);
}

void TestScanStream::startedWithoutAnAddressSaysSoAndWaits()
{
    ScanStream stream(quick());
    stream.start();
    QCOMPARE(stream.state(), ScanStream::State::Waiting);
    QVERIFY(stream.failure().contains(QStringLiteral("not known")));
    StreamServer server;
    stream.setAddress(server.address());
    QTRY_COMPARE_WITH_TIMEOUT(stream.state(), ScanStream::State::Live, waitMs);
}

QTEST_GUILESS_MAIN(TestScanStream)
#include "tst_scanstream.moc"
