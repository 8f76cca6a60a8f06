#include <QDateTime>
#include <QTcpServer>
#include <QTest>
#include <cmath>
#include <csignal>

#include "driverclient.h"
#include "driverprocess.h"
#include "link/heart.h"
#include "signals.h"
#include "streampeer.h"

namespace {

constexpr int patienceMs = DriverProcess::patienceMs;
constexpr double carrier = 97.3e6;       // Hz, of the built-in scene, steady
constexpr double carrierLevel = 40;      // dBµV
constexpr double center = 97.3e6 - 137;  // so that it lies in the narrowest span, between two bins

const auto spanPath = QStringLiteral("/RX1/IFPANSPAN");
const auto centerPath = QStringLiteral("/RX1/FREQUENCY");
const auto commandsPath = QStringLiteral("/RX1/DRVCOMMANDS");

// Listens to the real driver for as long as it lives.
struct Listener
{
    Listener(quint16 port, const Link::StreamRequest& request)
        : peer(port), heart(&peer.channel, 500, 10 * patienceMs, nullptr)
    {
        if (peer.socket.waitForConnected(patienceMs))
            peer.say(request);
    }

    // Waits for a frame of this span and centre that came after now.
    const Link::ScanData* frameOf(double span, double middle)
    {
        peer.frames.clear();
        const auto fits = [&] {
            if (peer.frames.empty())
                return false;
            const Link::ScanData& frame = peer.frames.back();
            const double width = frame.step * double(frame.levels.size() / 4 - 1);
            return std::abs(frame.start + width / 2 - middle) < 1 && width <= span * 1.0001 &&
                   width > span * 0.9;
        };
        return QTest::qWaitFor(fits, patienceMs) ? &peer.frames.back() : nullptr;
    }

    StreamPeer peer;
    Link::Heart heart;
};

void verifyCarrier(const Link::ScanData& frame)
{
    const QVector<float> levels = Link::unpackLevels(frame.levels);
    const double expected = (carrier - frame.start) / frame.step;
    const int around = int(std::lround(expected));
    const auto peak = Signals::peakOf(std::vector<float>(levels.begin(), levels.end()),
                                      std::max(0, around - 8), std::min(int(levels.size()) - 1, around + 8));
    QVERIFY2(std::abs(peak.at - expected) <= 1,
             qPrintable(QString("bin %1, not %2").arg(peak.at).arg(expected)));
    QVERIFY2(std::abs(peak.level - carrierLevel) < 1, qPrintable(QString::number(peak.level)));
}

}  // namespace

// The panorama as it comes from the real driver.
class TestRxDriverSpectrum : public QObject
{
    Q_OBJECT
private slots:
    void theCarrierStandsInEverySpan();
    void theCarrierStandsWithEveryWindow_data();
    void theCarrierStandsWithEveryWindow();
    void framesBearTheTimeOfTheirSamples();
    void aSpanThatTheSourceCannotGiveIsRefused();
    void noPicturesWhileTheDriverIsToldToStop();
    void anotherDeviceIsRefused();
    void theDriverSaysGoodbyeWhenItEnds();
    void thePortIsTheOneAskedFor();
    void thePortAfterThatOfTheValuesIsTakenOnlyWhereItIsFree();
    void aStreamPortInUseIsOneLineAndExitCodeTwo();
};

void TestRxDriverSpectrum::theCarrierStandsInEverySpan()
{
    DriverProcess driver({"--scene", "1"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1"));
    QVERIFY(client.streamPort() != 0);
    QCOMPARE(client.write(centerPath, center).kind, Link::AnswerKind::Accepted);
    Listener listener(client.streamPort(), spectrumRequest());
    const auto items = client.description(spanPath).items;
    QVERIFY(items.size() >= 11);
    double resolution = 1e9;
    for (const Link::Item& item : items) {
        QCOMPARE(client.write(spanPath, item.key).kind, Link::AnswerKind::Accepted);
        const Link::ScanData* frame = listener.frameOf(item.number, center);
        QVERIFY2(frame, qPrintable(item.text));
        QVERIFY2(frame->resolutionBandwidth < resolution * 1.001, qPrintable(item.text));
        resolution = frame->resolutionBandwidth;
        verifyCarrier(*frame);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(item.text));
    }
    QVERIFY2(resolution < 3, qPrintable(QString::number(resolution)));
}

void TestRxDriverSpectrum::theCarrierStandsWithEveryWindow_data()
{
    QTest::addColumn<int>("window");
    QTest::addColumn<double>("noiseBins");
    QTest::newRow("Hann") << int(Link::StreamWindow::Hann) << 1.5;
    QTest::newRow("Blackman-Harris") << int(Link::StreamWindow::BlackmanHarris) << 2.0;
    QTest::newRow("flat top") << int(Link::StreamWindow::FlatTop) << 3.81;
}

void TestRxDriverSpectrum::theCarrierStandsWithEveryWindow()
{
    QFETCH(int, window);
    QFETCH(double, noiseBins);
    DriverProcess driver({"--scene", "1"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1"));
    Link::StreamRequest request = spectrumRequest(2000);
    request.window = Link::StreamWindow(window);
    Listener listener(client.streamPort(), request);
    const Link::ScanData* frame = listener.frameOf(4e6, 98e6);
    QVERIFY(frame);
    QCOMPARE(int(listener.peer.starts.front().window), window);
    QVERIFY(std::abs(frame->resolutionBandwidth / frame->step - noiseBins) < 0.05);
    QVERIFY(frame->levels.size() <= 4 * 2000);
    verifyCarrier(*frame);
}

void TestRxDriverSpectrum::framesBearTheTimeOfTheirSamples()
{
    DriverProcess driver({"--scene", "1"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1"));
    const qint64 before = QDateTime::currentMSecsSinceEpoch() * 1000;
    Listener listener(client.streamPort(), spectrumRequest());
    QTRY_VERIFY_WITH_TIMEOUT(listener.peer.frames.size() >= 30, patienceMs);
    const qint64 after = QDateTime::currentMSecsSinceEpoch() * 1000;
    const auto& frames = listener.peer.frames;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        // A clock that was put right in between moves both by little.
        QVERIFY(frames[i].time > before - 2000000 && frames[i].time < after + 100000);
        QVERIFY(i == 0 || frames[i].time > frames[i - 1].time);
        QVERIFY(i == 0 || frames[i].sequence == frames[i - 1].sequence + 1 + frames[i].skipped);
    }
}

void TestRxDriverSpectrum::aSpanThatTheSourceCannotGiveIsRefused()
{
    DriverProcess driver({"--scene", "1"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1"));
    const auto items = client.description(spanPath).items;
    for (const Link::Item& item : items)
        QVERIFY(item.number <= 0.8 * 5e6);
    Listener listener(client.streamPort(), spectrumRequest());
    QVERIFY(listener.frameOf(4e6, 98e6));
    for (const qint64 key : {qint64(-1), qint64(items.size()), qint64(1000000)}) {
        const Link::Answer answer = client.write(spanPath, key);
        QCOMPARE(answer.kind, Link::AnswerKind::Refused);
        QVERIFY(!answer.reason.isEmpty());
    }
    QVERIFY(listener.frameOf(4e6, 98e6));
}

void TestRxDriverSpectrum::noPicturesWhileTheDriverIsToldToStop()
{
    DriverProcess driver({"--scene", "1"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1"));
    Listener listener(client.streamPort(), spectrumRequest());
    QVERIFY(listener.frameOf(4e6, 98e6));
    QCOMPARE(client.write(commandsPath, qint64(0)).kind, Link::AnswerKind::Accepted);
    // Said after the stop was answered, answered after what was under way: from here on there is nothing.
    const auto again = [&] {
        const std::size_t starts = listener.peer.starts.size();
        listener.peer.say(spectrumRequest());
        return QTest::qWaitFor([&] { return listener.peer.starts.size() > starts; }, patienceMs);
    };
    QVERIFY(again());
    listener.peer.frames.clear();
    const int heartbeats = listener.peer.heartbeats;
    QTRY_VERIFY_WITH_TIMEOUT(listener.peer.heartbeats >= heartbeats + 2, patienceMs);
    QVERIFY(listener.peer.frames.empty());
    QCOMPARE(client.write(commandsPath, qint64(1)).kind, Link::AnswerKind::Accepted);
    QVERIFY(listener.frameOf(4e6, 98e6));
}

void TestRxDriverSpectrum::anotherDeviceIsRefused()
{
    DriverProcess driver({"--scene", "1", "--device", "/SITE/RX7"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/SITE/RX7"));
    Listener wrong(client.streamPort(), spectrumRequest());
    QTRY_VERIFY_WITH_TIMEOUT(wrong.peer.isGone(), patienceMs);
    QCOMPARE(wrong.peer.reason, QStringLiteral("there is no device /RX1; this is /SITE/RX7"));
    Link::StreamRequest request = spectrumRequest();
    request.path = QStringLiteral("/SITE/RX7");
    Listener right(client.streamPort(), request);
    QVERIFY(right.frameOf(4e6, 98e6));
}

void TestRxDriverSpectrum::theDriverSaysGoodbyeWhenItEnds()
{
    DriverProcess driver({"--scene", "1"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1"));
    Listener listener(client.streamPort(), spectrumRequest());
    QVERIFY(listener.frameOf(4e6, 98e6));
    driver.send(SIGTERM);
    QTRY_VERIFY_WITH_TIMEOUT(listener.peer.isGone(), patienceMs);
    QCOMPARE(listener.peer.reason, QStringLiteral("the driver ends"));
    QVERIFY(driver.waitForEnd());
    QCOMPARE(driver.exitCode(), 0);
}

void TestRxDriverSpectrum::thePortIsTheOneAskedFor()
{
    quint16 port = 0;
    {
        QTcpServer free;
        QVERIFY(free.listen(QHostAddress::LocalHost));
        port = free.serverPort();
    }
    DriverProcess driver({"--scene", "1", "--stream-port", QString::number(port)});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1/FREQUENCY"));
    QCOMPARE(client.streamPort(), port);
}

void TestRxDriverSpectrum::thePortAfterThatOfTheValuesIsTakenOnlyWhereItIsFree()
{
    // Two ports in a row: the first is given to the driver, the second is in use.
    QTcpServer next;
    quint16 port = 0;
    for (int i = 0; i < 100 && port == 0; ++i) {
        QTcpServer first;
        QVERIFY(first.listen(QHostAddress::LocalHost));
        if (first.serverPort() < 65535 &&
            next.listen(QHostAddress::LocalHost, quint16(first.serverPort() + 1)))
            port = first.serverPort();
    }
    QVERIFY(port != 0);
    const QString address = QString("127.0.0.1:%1").arg(port);
    DriverProcess driver({"--scene", "1", "--listen", address});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1/FREQUENCY"));
    QVERIFY(client.streamPort() != 0);
    QVERIFY(client.streamPort() != port + 1);
    client.leave();
    driver.send(SIGTERM);
    QVERIFY(driver.waitForEnd());
    next.close();
    DriverProcess again({"--scene", "1", "--listen", address});
    QVERIFY2(again.waitForPort(), qPrintable(again.errors()));
    DriverClient later(again.port());
    QVERIFY(later.hook("/RX1/FREQUENCY"));
    QCOMPARE(later.streamPort(), quint16(port + 1));
}

void TestRxDriverSpectrum::aStreamPortInUseIsOneLineAndExitCodeTwo()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    const QString port = QString::number(other.serverPort());
    DriverProcess driver({"--scene", "1", "--stream-port", port});
    QVERIFY(driver.waitForEnd());
    QCOMPARE(driver.exitCode(), 2);
    const QString errors = driver.errors();
    QVERIFY2(errors.startsWith(QString("rxdriver: 127.0.0.1:%1: cannot listen").arg(port)),
             qPrintable(errors));
    QCOMPARE(errors.count('\n'), 1);
}

QTEST_GUILESS_MAIN(TestRxDriverSpectrum)
#include "tst_rxdriver_spectrum.moc"
