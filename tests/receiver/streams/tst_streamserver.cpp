#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <cmath>
#include <limits>
#include <memory>

#include "link/heart.h"
#include "link/limits.h"
#include "receiver/streams/streamserver.h"
#include "streampeer.h"

using namespace Receiver;

namespace {

constexpr int patienceMs = 20000;
constexpr qint64 frameMicroseconds = 33333;  // from frame to frame

PanoramaPicture pictureAt(qint64 number, std::size_t bins = 64)
{
    PanoramaFrame frame;
    frame.sequence = quint64(number + 1);
    frame.time = 1777777777000000 + number * frameMicroseconds;
    frame.start = 96e6;
    frame.step = 500;
    frame.resolutionBandwidth = 1000;
    frame.mean.assign(bins, float(number));
    frame.maximum.assign(bins, float(number) + 0.5f);
    return std::make_shared<const PanoramaFrame>(std::move(frame));
}

float levelOf(const Link::ScanData& data)
{
    const QVector<float> levels = Link::unpackLevels(data.levels);
    return levels.isEmpty() ? -1 : levels.first();
}

}  // namespace

class TestStreamServer : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void anAskedForStreamStarts();
    void framesReachEveryClient();
    void onlyTwoFramesAreOnTheWay();
    void theLatestFrameWinsAndTheSkippedAreCounted();
    void framesThatNeverCameAreCountedToo();
    void acknowledgingTheNewerAcknowledgesTheOlder();
    void anAcknowledgementSaidTwiceChangesNothing();
    void theFrameRateIsNotExceeded_data();
    void theFrameRateIsNotExceeded();
    void eachClientHasItsOwnPointsAndDetector();
    void theFirstClientDecidesOnWindowAndResolution();
    void theHighestFrameRateIsMade();
    void nothingIsMadeWhenNobodyListens();
    void aStreamMayBeAskedForAnew();
    void whatCannotBeServedIsRefusedWithAReason_data();
    void whatCannotBeServedIsRefusedWithAReason();
    void whatIsAtTheLimitIsServed_data();
    void whatIsAtTheLimitIsServed();
    void whatIsOutOfOrderEndsTheConnectionWithAReason_data();
    void whatIsOutOfOrderEndsTheConnectionWithAReason();
    void bytesThatAreNoMessageEndTheConnectionWithAReason();
    void whoAsksForNothingIsSentAway();
    void tooManyConnectionsAreSentAway();
    void aSilentClientIsLostAndItsStreamStops();
    void heartbeatsKeepAnIdleStream();
    void whoLeavesStopsItsStream();
    void nothingGrowsWithAReaderThatStops();
    void closingSaysGoodbyeToAll();
    void anAddressThatCannotBeListenedOnIsNamed_data();
    void anAddressThatCannotBeListenedOnIsNamed();

private:
    std::unique_ptr<StreamPeer> peer(const Link::StreamRequest& request = spectrumRequest());
    void serve(const StreamOptions& options);

    std::unique_ptr<StreamServer> m_server;
};

void TestStreamServer::serve(const StreamOptions& options)
{
    m_server = std::make_unique<StreamServer>(options);
    QString error;
    QVERIFY2(m_server->listen(QStringLiteral("127.0.0.1"), 0, &error), qPrintable(error));
}

void TestStreamServer::init()
{
    StreamOptions options;
    // Only where silence is the subject shall a busy machine break a connection.
    options.lostMs = 10 * patienceMs;
    options.requestMs = 10 * patienceMs;
    serve(options);
}

void TestStreamServer::cleanup()
{
    m_server.reset();
}

// Connected, and its stream started.
std::unique_ptr<StreamPeer> TestStreamServer::peer(const Link::StreamRequest& request)
{
    auto peer = std::make_unique<StreamPeer>(m_server->port());
    if (!peer->socket.waitForConnected(patienceMs))
        qFatal("cannot connect");
    peer->say(request);
    if (!QTest::qWaitFor([&] { return !peer->starts.empty() || peer->isGone(); }, patienceMs))
        qFatal("the stream does not start");
    return peer;
}

void TestStreamServer::anAskedForStreamStarts()
{
    QSignalSpy changed(m_server.get(), &StreamServer::demandChanged);
    QVERIFY(!m_server->demand());
    Link::StreamRequest request = spectrumRequest(1000);
    request.frameRate = 25;
    request.window = Link::StreamWindow::FlatTop;
    const auto client = peer(request);
    QCOMPARE(client->starts.size(), std::size_t(1));
    QCOMPARE(client->starts[0].version, Link::protocolVersion);
    QCOMPARE(client->starts[0].unacknowledged, quint32(2));
    QCOMPARE(client->starts[0].frameRate, 25.0);
    QCOMPARE(client->starts[0].window, Link::StreamWindow::FlatTop);
    QVERIFY(m_server->demand() == (StreamDemand{1000, 25, Link::StreamWindow::FlatTop}));
    QCOMPARE(changed.count(), 1);
}

void TestStreamServer::framesReachEveryClient()
{
    const auto one = peer();
    const auto other = peer();
    for (int i = 0; i < 5; ++i) {
        m_server->deliver(pictureAt(i), 0);
        const auto expected = std::size_t(i + 1);
        QTRY_VERIFY_WITH_TIMEOUT(one->frames.size() == expected && other->frames.size() == expected,
                                 patienceMs);
    }
    for (const auto& client : {one.get(), other.get()}) {
        for (int i = 0; i < 5; ++i) {
            const Link::ScanData& data = client->frames[std::size_t(i)];
            QCOMPARE(data.sequence, quint64(i + 1));
            QCOMPARE(data.skipped, quint64(0));
            QCOMPARE(levelOf(data), float(i));
            QCOMPARE(data.time, pictureAt(i)->time);
            QCOMPARE(data.step, 500.0);
        }
    }
}

void TestStreamServer::onlyTwoFramesAreOnTheWay()
{
    const auto client = peer();
    client->acknowledges = false;
    for (int i = 0; i < 10; ++i)
        m_server->deliver(pictureAt(i), 0);
    // What the driver says later comes later: after this answer nothing else is on the way.
    client->say(spectrumRequest());
    QTRY_COMPARE_WITH_TIMEOUT(client->starts.size(), std::size_t(2), patienceMs);
    QCOMPARE(client->frames.size(), std::size_t(2));
}

void TestStreamServer::theLatestFrameWinsAndTheSkippedAreCounted()
{
    const auto client = peer();
    client->acknowledges = false;
    for (int i = 0; i < 10; ++i)
        m_server->deliver(pictureAt(i), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(2), patienceMs);
    client->acknowledge(1);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(3), patienceMs);
    QCOMPARE(levelOf(client->frames[2]), 9.0f);
    QCOMPARE(client->frames[2].sequence, quint64(10));
    QCOMPARE(client->frames[2].skipped, quint64(7));
    // Then it goes on as before.
    client->acknowledge(10);
    client->acknowledges = true;
    m_server->deliver(pictureAt(10), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(4), patienceMs);
    QCOMPARE(client->frames[3].sequence, quint64(11));
    QCOMPARE(client->frames[3].skipped, quint64(0));
}

void TestStreamServer::framesThatNeverCameAreCountedToo()
{
    const auto client = peer();
    m_server->deliver(pictureAt(0), 0);
    m_server->deliver(pictureAt(4), 3);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(2), patienceMs);
    QCOMPARE(client->frames[1].sequence, quint64(5));
    QCOMPARE(client->frames[1].skipped, quint64(3));
}

void TestStreamServer::acknowledgingTheNewerAcknowledgesTheOlder()
{
    const auto client = peer();
    client->acknowledges = false;
    for (int i = 0; i < 2; ++i)
        m_server->deliver(pictureAt(i), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(2), patienceMs);
    client->acknowledge(2);
    client->say(spectrumRequest());
    QTRY_COMPARE_WITH_TIMEOUT(client->starts.size(), std::size_t(2), patienceMs);
    for (int i = 2; i < 4; ++i)
        m_server->deliver(pictureAt(i), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(4), patienceMs);
}

void TestStreamServer::anAcknowledgementSaidTwiceChangesNothing()
{
    const auto client = peer();
    client->acknowledges = false;
    for (int i = 0; i < 6; ++i)
        m_server->deliver(pictureAt(i), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(2), patienceMs);
    for (int i = 0; i < 5; ++i)
        client->acknowledge(1);
    client->acknowledge(0);
    client->say(spectrumRequest());
    QTRY_COMPARE_WITH_TIMEOUT(client->starts.size(), std::size_t(2), patienceMs);
    QCOMPARE(client->frames.size(), std::size_t(3));
    m_server->deliver(pictureAt(6), 0);
    client->say(spectrumRequest());
    QTRY_COMPARE_WITH_TIMEOUT(client->starts.size(), std::size_t(3), patienceMs);
    QCOMPARE(client->frames.size(), std::size_t(3));
    QVERIFY(!client->isGone());
}

void TestStreamServer::theFrameRateIsNotExceeded_data()
{
    QTest::addColumn<double>("frameRate");
    QTest::addColumn<int>("least");
    QTest::addColumn<int>("most");
    // Of 90 frames, which are three seconds.
    QTest::newRow("all") << 30.0 << 89 << 90;
    QTest::newRow("more than there are") << 60.0 << 90 << 90;
    QTest::newRow("two of three") << 20.0 << 59 << 61;
    QTest::newRow("every sixth") << 5.0 << 14 << 16;
    QTest::newRow("one in two seconds") << 0.5 << 2 << 2;
}

void TestStreamServer::theFrameRateIsNotExceeded()
{
    QFETCH(double, frameRate);
    QFETCH(int, least);
    QFETCH(int, most);
    const auto all = peer();
    Link::StreamRequest request = spectrumRequest();
    request.frameRate = frameRate;
    const auto client = peer(request);
    for (int i = 0; i < 90; ++i) {
        m_server->deliver(pictureAt(i), 0);
        QTRY_COMPARE_WITH_TIMEOUT(all->frames.size(), std::size_t(i + 1), patienceMs);
    }
    client->say(request);
    QTRY_COMPARE_WITH_TIMEOUT(client->starts.size(), std::size_t(2), patienceMs);
    const int got = int(client->frames.size());
    QVERIFY2(got >= least && got <= most, qPrintable(QString::number(got)));
    // Frames that it did not ask for are not skipped ones.
    for (const Link::ScanData& data : client->frames)
        QCOMPARE(data.skipped, quint64(0));
}

void TestStreamServer::eachClientHasItsOwnPointsAndDetector()
{
    const auto one = peer(spectrumRequest(64));
    Link::StreamRequest request = spectrumRequest(10);
    request.detector = Link::StreamDetector::Maximum;
    const auto other = peer(request);
    m_server->deliver(pictureAt(3), 0);
    QTRY_VERIFY_WITH_TIMEOUT(one->frames.size() == 1 && other->frames.size() == 1, patienceMs);
    QCOMPARE(one->frames[0].levels.size(), qsizetype(64 * 4));
    QCOMPARE(levelOf(one->frames[0]), 3.0f);
    QCOMPARE(other->frames[0].levels.size(), qsizetype(10 * 4));
    QCOMPARE(levelOf(other->frames[0]), 3.5f);
}

void TestStreamServer::theFirstClientDecidesOnWindowAndResolution()
{
    Link::StreamRequest request = spectrumRequest(2000);
    request.window = Link::StreamWindow::Hann;
    auto first = peer(request);
    request = spectrumRequest(8000);
    request.window = Link::StreamWindow::FlatTop;
    const auto second = peer(request);
    QCOMPARE(m_server->demand()->points, 2000);
    QCOMPARE(second->starts[0].window, Link::StreamWindow::Hann);
    // When it leaves, the next one is the first.
    first.reset();
    QTRY_COMPARE_WITH_TIMEOUT(second->starts.size(), std::size_t(2), patienceMs);
    QCOMPARE(second->starts[1].window, Link::StreamWindow::FlatTop);
    QCOMPARE(m_server->demand()->points, 8000);
}

void TestStreamServer::theHighestFrameRateIsMade()
{
    Link::StreamRequest request = spectrumRequest();
    request.frameRate = 10;
    const auto slow = peer(request);
    QCOMPARE(m_server->demand()->frameRate, 10.0);
    request.frameRate = 50;
    auto fast = peer(request);
    QCOMPARE(m_server->demand()->frameRate, 50.0);
    fast.reset();
    QTRY_COMPARE_WITH_TIMEOUT(m_server->demand()->frameRate, 10.0, patienceMs);
}

void TestStreamServer::nothingIsMadeWhenNobodyListens()
{
    QSignalSpy changed(m_server.get(), &StreamServer::demandChanged);
    StreamPeer quiet(m_server->port());
    QTRY_COMPARE_WITH_TIMEOUT(m_server->connectionCount(), 1, patienceMs);
    QVERIFY(!m_server->demand());
    auto client = peer();
    QVERIFY(m_server->demand());
    client.reset();
    QTRY_VERIFY_WITH_TIMEOUT(!m_server->demand(), patienceMs);
    QCOMPARE(changed.count(), 2);
    m_server->deliver(pictureAt(0), 0);  // one that was under way
    quiet.say(spectrumRequest());
    QTRY_COMPARE_WITH_TIMEOUT(quiet.starts.size(), std::size_t(1), patienceMs);
    QVERIFY(quiet.frames.empty());
}

void TestStreamServer::aStreamMayBeAskedForAnew()
{
    const auto client = peer(spectrumRequest(64));
    m_server->deliver(pictureAt(0), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(1), patienceMs);
    client->say(spectrumRequest(16));
    QTRY_COMPARE_WITH_TIMEOUT(client->starts.size(), std::size_t(2), patienceMs);
    QCOMPARE(m_server->demand()->points, 16);
    m_server->deliver(pictureAt(1), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(2), patienceMs);
    QCOMPARE(client->frames[1].levels.size(), qsizetype(16 * 4));
    QCOMPARE(client->frames[1].sequence, quint64(2));
}

void TestStreamServer::whatCannotBeServedIsRefusedWithAReason_data()
{
    QTest::addColumn<Link::StreamRequest>("request");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const char* reason, auto change) {
        Link::StreamRequest request = spectrumRequest();
        change(request);
        QTest::newRow(name) << request << QString::fromLatin1(reason);
    };
    using R = Link::StreamRequest&;
    row("another version", "version 99", [](R r) { r.version = 99; });
    row("no kind", "no stream \"\"", [](R r) { r.kind.clear(); });
    row("an unknown kind", "\"audio\"; ask for \"spectrum\"", [](R r) { r.kind = QStringLiteral("audio"); });
    row("no device", "this is /RX1", [](R r) { r.path.clear(); });
    row("an unknown device", "no device /RX2; this is /RX1", [](R r) { r.path = QStringLiteral("/RX2"); });
    row("a value of the device", "no device /RX1/FREQUENCY",
        [](R r) { r.path = QStringLiteral("/RX1/FREQUENCY"); });
    row("no points", "0 points", [](R r) { r.points = 0; });
    row("too many points", "131073 points in a frame; ask for 1 to 131072", [](R r) { r.points = 131073; });
    row("very many points", "4294967295 points", [](R r) { r.points = 0xffffffff; });
    row("no frames", "0 frames per second", [](R r) { r.frameRate = 0; });
    row("frames below zero", "-1 frames per second", [](R r) { r.frameRate = -1; });
    row("too many frames", "61 frames per second; ask for more than 0 and up to 60",
        [](R r) { r.frameRate = 61; });
    row("frames that are no number", "nan frames per second", [](R r) { r.frameRate = std::nan(""); });
    row("averaging below zero", "averaging over -0.1 s", [](R r) { r.averagingSeconds = -0.1; });
    row("averaging for ever", "averaging over inf s",
        [](R r) { r.averagingSeconds = std::numeric_limits<double>::infinity(); });
    row("averaging too long", "averaging over 61 s; ask for 0 to 60 s", [](R r) { r.averagingSeconds = 61; });
    row("averaging that is no number", "averaging over nan s",
        [](R r) { r.averagingSeconds = std::nan(""); });
    row("an unknown window", "7 is more than 2", [](R r) { r.window = Link::StreamWindow(7); });
    row("an unknown detector", "7 is more than 1", [](R r) { r.detector = Link::StreamDetector(7); });
}

void TestStreamServer::whatCannotBeServedIsRefusedWithAReason()
{
    QFETCH(Link::StreamRequest, request);
    QFETCH(QString, reason);
    StreamPeer client(m_server->port());
    QVERIFY(client.socket.waitForConnected(patienceMs));
    client.say(request);
    QTRY_VERIFY_WITH_TIMEOUT(client.isGone(), patienceMs);
    QVERIFY2(client.reason.contains(reason), qPrintable(client.reason));
    QVERIFY(client.starts.empty());
    QVERIFY(!m_server->demand());
    QTRY_COMPARE_WITH_TIMEOUT(m_server->connectionCount(), 0, patienceMs);
}

void TestStreamServer::whatIsAtTheLimitIsServed_data()
{
    QTest::addColumn<Link::StreamRequest>("request");
    const auto row = [](const char* name, auto change) {
        Link::StreamRequest request = spectrumRequest();
        change(request);
        QTest::newRow(name) << request;
    };
    using R = Link::StreamRequest&;
    row("one point", [](R r) { r.points = 1; });
    row("the most points", [](R r) { r.points = Link::Limits::scanPoints; });
    row("hardly any frames", [](R r) { r.frameRate = 0.01; });
    row("the most frames", [](R r) { r.frameRate = 60; });
    row("the longest averaging", [](R r) { r.averagingSeconds = 60; });
    row("flat top", [](R r) { r.window = Link::StreamWindow::FlatTop; });
    row("the maximum", [](R r) { r.detector = Link::StreamDetector::Maximum; });
}

void TestStreamServer::whatIsAtTheLimitIsServed()
{
    QFETCH(Link::StreamRequest, request);
    const auto client = peer(request);
    m_server->deliver(pictureAt(0, 131072), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(1), patienceMs);
    QVERIFY(client->frames[0].levels.size() <= qsizetype(request.points) * 4);
}

void TestStreamServer::whatIsOutOfOrderEndsTheConnectionWithAReason_data()
{
    QTest::addColumn<Link::Message>("message");
    QTest::addColumn<bool>("started");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const Link::Message& message, bool started, const char* reason) {
        QTest::newRow(name) << message << started << QString::fromLatin1(reason);
    };
    row("ready before a stream", Link::StreamReady{1}, false, "StreamReady came before StreamRequest");
    row("hello", Link::Hello(), false, "Hello came before StreamRequest");
    row("hello later", Link::Hello(), true, "Hello is not for a stream's client to say");
    row("a frame", Link::ScanData(), true, "ScanData is not for a stream's client to say");
    row("a start", Link::StreamStart(), true, "StreamStart is not for a stream's client to say");
    row("ready for what was not sent", Link::StreamReady{1}, true, "frame 1 was acknowledged, but 0");
    Link::StreamRequest other = spectrumRequest();
    other.path = QStringLiteral("/RX9");
    row("another device later", other, true, "no device /RX9");
}

void TestStreamServer::whatIsOutOfOrderEndsTheConnectionWithAReason()
{
    QFETCH(Link::Message, message);
    QFETCH(bool, started);
    QFETCH(QString, reason);
    StreamPeer client(m_server->port());
    QVERIFY(client.socket.waitForConnected(patienceMs));
    if (started)
        client.say(spectrumRequest());
    client.say(message);
    QTRY_VERIFY_WITH_TIMEOUT(client.isGone(), patienceMs);
    QVERIFY2(client.reason.contains(reason), qPrintable(client.reason));
    QTRY_COMPARE_WITH_TIMEOUT(m_server->connectionCount(), 0, patienceMs);
    QVERIFY(!m_server->demand());
}

void TestStreamServer::bytesThatAreNoMessageEndTheConnectionWithAReason()
{
    StreamPeer client(m_server->port());
    QVERIFY(client.socket.waitForConnected(patienceMs));
    client.socket.write("GET / HTTP/1.1\r\n\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(client.isGone(), patienceMs);
    QVERIFY2(client.reason.contains("was announced"), qPrintable(client.reason));
}

void TestStreamServer::whoAsksForNothingIsSentAway()
{
    StreamOptions options;
    options.requestMs = 50;
    serve(options);
    StreamPeer client(m_server->port());
    QTRY_VERIFY_WITH_TIMEOUT(!client.reason.isEmpty() && client.isGone(), patienceMs);
    QCOMPARE(client.reason, QStringLiteral("connected, but asked for no stream"));
}

void TestStreamServer::tooManyConnectionsAreSentAway()
{
    std::vector<std::unique_ptr<StreamPeer>> clients;
    for (int i = 0; i < Link::Limits::streamConnections; ++i)
        clients.push_back(peer());
    StreamPeer one(m_server->port());
    QTRY_VERIFY_WITH_TIMEOUT(!one.reason.isEmpty() && one.isGone(), patienceMs);
    QVERIFY2(one.reason.contains("serves 16 streams already"), qPrintable(one.reason));
    QCOMPARE(m_server->connectionCount(), 16);
    clients.pop_back();
    QTRY_COMPARE_WITH_TIMEOUT(m_server->connectionCount(), 15, patienceMs);
    QVERIFY(!peer()->starts.empty());
}

void TestStreamServer::aSilentClientIsLostAndItsStreamStops()
{
    StreamOptions options;
    options.heartbeatMs = 20;
    options.lostMs = 200;
    serve(options);
    const auto client = peer();
    QVERIFY(m_server->demand());
    QTRY_VERIFY_WITH_TIMEOUT(!client->reason.isEmpty(), patienceMs);
    QVERIFY2(client->reason.contains("nothing heard"), qPrintable(client->reason));
    QVERIFY(!m_server->demand());
}

void TestStreamServer::heartbeatsKeepAnIdleStream()
{
    StreamOptions options;
    options.heartbeatMs = 20;
    options.lostMs = 2000;
    serve(options);
    const auto client = peer();
    const Link::Heart heart(&client->channel, 20, 10 * patienceMs, nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(client->heartbeats > 150 || client->isGone(), patienceMs);  // over three seconds
    QVERIFY(!client->isGone());
    QVERIFY(m_server->demand());
}

void TestStreamServer::whoLeavesStopsItsStream()
{
    const auto polite = peer();
    polite->say(Link::Bye{QStringLiteral("hidden")});
    QTRY_VERIFY_WITH_TIMEOUT(!m_server->demand(), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(polite->isGone(), patienceMs);
    const auto rude = peer();
    QVERIFY(m_server->demand());
    rude->socket.abort();
    QTRY_VERIFY_WITH_TIMEOUT(!m_server->demand(), patienceMs);
    QCOMPARE(m_server->connectionCount(), 0);
}

void TestStreamServer::nothingGrowsWithAReaderThatStops()
{
    const auto client = peer(spectrumRequest(131072));
    client->channel.setPaused(true);
    client->socket.setReadBufferSize(1024);
    const auto other = peer(spectrumRequest(16));
    // Large frames, each kept alive by whoever still holds it.
    std::vector<std::weak_ptr<const PanoramaFrame>> pictures;
    for (int i = 0; i < 300; ++i) {
        const PanoramaPicture picture = pictureAt(i, 131072);
        pictures.push_back(picture);
        m_server->deliver(picture, 0);
        QTRY_COMPARE_WITH_TIMEOUT(other->frames.size(), std::size_t(i + 1), patienceMs);
    }
    const auto alive =
        std::count_if(pictures.begin(), pictures.end(), [](const auto& p) { return !p.expired(); });
    QCOMPARE(int(alive), 1);
    qint64 waiting = 0;
    for (const QTcpSocket* socket : m_server->findChildren<QTcpSocket*>())
        waiting = std::max(waiting, socket->bytesToWrite());
    QVERIFY2(waiting < 2 * (131072 * 4 + 200), qPrintable(QString::number(waiting)));
    // Reading on, it gets what was on the way and then the latest.
    client->socket.setReadBufferSize(0);
    client->channel.setPaused(false);
    QTRY_COMPARE_WITH_TIMEOUT(client->frames.size(), std::size_t(3), patienceMs);
    QCOMPARE(levelOf(client->frames[2]), 299.0f);
    QCOMPARE(client->frames[2].skipped, quint64(297));
}

void TestStreamServer::closingSaysGoodbyeToAll()
{
    const auto one = peer();
    const auto other = peer();
    const quint16 port = m_server->port();
    m_server->close(QStringLiteral("the driver ends"));
    QTRY_VERIFY_WITH_TIMEOUT(one->isGone() && other->isGone(), patienceMs);
    QCOMPARE(one->reason, QStringLiteral("the driver ends"));
    QCOMPARE(other->reason, QStringLiteral("the driver ends"));
    QTcpSocket late;
    late.connectToHost(QStringLiteral("127.0.0.1"), port);
    QVERIFY(!late.waitForConnected(patienceMs));
}

void TestStreamServer::anAddressThatCannotBeListenedOnIsNamed_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("taken");
    QTest::newRow("no address") << QStringLiteral("nowhere") << false;
    QTest::newRow("of another machine") << QStringLiteral("192.0.2.1") << false;
    QTest::newRow("in use") << QStringLiteral("127.0.0.1") << true;
}

void TestStreamServer::anAddressThatCannotBeListenedOnIsNamed()
{
    QFETCH(QString, host);
    QFETCH(bool, taken);
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    const quint16 port = taken ? other.serverPort() : quint16(4601);
    StreamServer server;
    QString error;
    QVERIFY(!server.listen(host, port, &error));
    QVERIFY2(error.startsWith(QStringLiteral("%1:%2: ").arg(host).arg(port)), qPrintable(error));
}

QTEST_GUILESS_MAIN(TestStreamServer)
#include "tst_streamserver.moc"
