#include <QElapsedTimer>
#include <QImage>
#include <QJsonArray>
#include <QRect>
#include <QRegularExpression>
#include <QTest>
#include <cmath>
#include <memory>

#include "station.h"

using namespace RxTest;

namespace {

const QString channel = "/RX1/DDC/DDC1";
const Target canvas{{"name", "spectrumCanvas"}};
const Target pane{{"class", "DdcIfSpectrum"}};

// Of the built-in scene, for every seed.
constexpr double carrierFrequency = 97.3e6;
constexpr double carrierLevel = 80 - 40;  // dBµV; 0 dBFS is 80 dBµV
constexpr double broadcastFrequency = 98.5e6;

constexpr int answerRefused = 3;
constexpr int streamStopped = 0;
constexpr int streamLive = 3;
constexpr int stopMs = 1000;  // of a stream that nobody sees
constexpr int tries = 3;      // of what is timed on a machine that others use

}  // namespace

// The live panorama in the window of a channel, with the real programs.
class SpectrumTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void showsTheSceneAsItIs();
    void showsACarrierAtItsFrequencyAndLevelInEverySpan();
    void drawsTheCarrierInItsPlace();
    void saysInWordsWhatItShows();
    void drawsTheChannelWhereTheValuesSay();
    void drawsTheThresholdOfTheChannelsBandwidthIntoTheTrace();
    void aClickTunesAndComesBackThroughTheDriver();
    void arrowKeysTuneByAStep();
    void draggingAnEdgeChoosesTheNearestBandwidth();
    void draggingTheThresholdWritesTheSquelch();
    void theWheelZoomsAndWritesNothing();
    void aRefusedClickLeavesTheChannelWhereItIs();
    void followsTheReceiverWhenItIsTunedElsewhere();
    void standsStillWithItsAgeWhileTheDriverIsAway();
    void comesBackWhenTheDriverHasAnotherPortForItsStreams();
    void aHiddenWindowEndsTheStreamWithinASecond_data();
    void aHiddenWindowEndsTheStreamWithinASecond();
    void keepsItsLayoutInEverySize_data();
    void keepsItsLayoutInEverySize();

private:
    Pilot& pilot() { return m_window->pilot; }
    QString ctl(const QString& suffix) { return m_station->ctl({"get", channel + suffix}); }
    QJsonObject drawn() { return pilot().scan()["channel"].toObject(); }
    QJsonObject places() { return pilot().scan()["places"].toObject(); }
    QPointF spot(double frequency, double share);
    bool isLive();
    bool comesTo(const char* fact, double number, double within);

    std::unique_ptr<Station> m_station;
    Window* m_window = nullptr;
};

// Where a frequency is on the canvas, at a share of its height.
QPointF SpectrumTest::spot(double frequency, double share)
{
    const QJsonObject scan = pilot().scan();
    const double start = scan["view"].toArray().at(0).toDouble();
    const double stop = scan["view"].toArray().at(1).toDouble();
    const QJsonObject size = scan["places"].toObject();
    return QPointF((frequency - start) / (stop - start) * size["width"].toDouble(),
                   size["height"].toDouble() * share);
}

bool SpectrumTest::isLive()
{
    const QJsonObject scan = pilot().scan();
    return scan["stream"].toInt() == streamLive && !scan["stale"].toBool() && scan["received"].toInt() > 0 &&
           scan["message"].toString().isEmpty();
}

bool SpectrumTest::comesTo(const char* fact, double number, double within)
{
    return until([&] { return std::abs(drawn()[fact].toDouble() - number) <= within; });
}

void SpectrumTest::init()
{
    m_station = std::make_unique<Station>();
    QVERIFY2(m_station->startDriver(), qPrintable(m_station->driver().output()));
    m_window = m_station->openChannel();
    if (m_window == nullptr) {
        QFAIL(qPrintable("the window does not come up: " + m_station->finish()));
    }
    QVERIFY2(until([this] { return isLive(); }), qPrintable(pilot().scan()["message"].toString()));
}

void SpectrumTest::cleanup()
{
    const QString faults = m_station->finish();
    m_station.reset();
    QVERIFY2(faults.isEmpty(), qPrintable(faults));
}

void SpectrumTest::showsTheSceneAsItIs()
{
    const QJsonObject scan = pilot().scan();
    QCOMPARE(scan["view"].toArray().at(0).toDouble(), 96e6);
    QCOMPARE(scan["view"].toArray().at(1).toDouble(), 100e6);
    QCOMPARE(scan["levels"].toArray().at(0).toDouble(), -20.0);
    QCOMPARE(scan["levels"].toArray().at(1).toDouble(), 80.0);
    QVERIFY(scan["trace"].toObject()["step"].toDouble() > 0);
    const double before = scan["received"].toDouble();
    QVERIFY(until([&] { return pilot().scan()["received"].toDouble() > before + 30; }));
    QCOMPARE(pilot().scan()["dropped"].toInt(), 0);
}

void SpectrumTest::showsACarrierAtItsFrequencyAndLevelInEverySpan()
{
    QVERIFY(!m_station->ctl({"set", "/RX1/FREQUENCY", "97.3M"}).isEmpty());
    double before = 0;
    for (const char* span : {"4 MHz", "2 MHz", "1 MHz", "500 kHz", "200 kHz", "100 kHz", "50 kHz", "20 kHz",
                             "10 kHz", "5 kHz", "2 kHz", "1 kHz"}) {
        QVERIFY2(!m_station->ctl({"set", "/RX1/IFPANSPAN", span}).isEmpty(), span);
        const double width =
            pilot().value("/RX1/IFPANSPAN").isEmpty()
                ? 0
                : QString(span).section(' ', 0, 0).toDouble() * (QString(span).endsWith("MHz") ? 1e6 : 1e3);
        QJsonObject scan;
        const auto arrived = [&] {
            scan = pilot().scan();
            const QJsonArray view = scan["view"].toArray();
            const QJsonObject trace = scan["trace"].toObject();
            const double covered = trace["step"].toDouble() * trace["count"].toDouble();
            return std::abs(view.at(1).toDouble() - view.at(0).toDouble() - width) < 1 &&
                   covered < 1.5 * width && covered > 0.9 * width && !scan["stale"].toBool();
        };
        QVERIFY2(until(arrived), span);
        const double step = scan["trace"].toObject()["step"].toDouble();
        const double resolution = scan["trace"].toObject()["resolutionBandwidth"].toDouble();
        // Narrower spans show more, down to bins of a transform that lasts a second.
        QVERIFY2(before == 0 || resolution < before || (resolution < before * 1.001 && step < 1.001),
                 qPrintable(QString("%1: %2 Hz after %3 Hz, step %4 Hz")
                                .arg(span)
                                .arg(resolution)
                                .arg(before)
                                .arg(step)));
        before = resolution;
        const auto fits = [&] {
            const QJsonObject peak = pilot().peak(carrierFrequency - width / 4, carrierFrequency + width / 4);
            const double level = peak["level"].toDouble();
            return std::abs(peak["frequency"].toDouble() - carrierFrequency) <= step &&
                   std::abs(level - carrierLevel) < 1.0;
        };
        const QJsonObject peak = pilot().peak(carrierFrequency - width / 4, carrierFrequency + width / 4);
        QVERIFY2(until(fits), qPrintable(QString("%1: %2 dBµV at %3 Hz")
                                             .arg(span)
                                             .arg(peak["level"].toDouble())
                                             .arg(peak["frequency"].toDouble(), 0, 'f', 1)));
    }
}

// In the pixels: the trace's topmost pixel near the carrier is at its frequency and its level.
void SpectrumTest::drawsTheCarrierInItsPlace()
{
    const QString file = m_station->folder() + "/spectrum.png";
    // Nothing of the channel near the carrier.
    QVERIFY(!m_station->ctl({"set", channel + "/Frequency", "98.9M"}).isEmpty());
    QVERIFY(!m_station->ctl({"set", channel + "/SquelchValue", "-10"}).isEmpty());
    QVERIFY(comesTo("frequency", 98.9e6, 1));
    const QPointF place = spot(carrierFrequency, 0);
    const QJsonObject scan = pilot().scan();
    const double height = scan["places"].toObject()["height"].toDouble();
    const double perPixel = 100 / height;  // dB
    const int top = int((80 - carrierLevel) / perPixel);
    const int column = int(std::lround(place.x()));
    QImage picture;
    // Whether the trace's upper end is at the carrier's level in that column: the first pixel that
    // differs clearly from those above, which the grid's lines do not.
    const auto reaches = [&](int x) {
        const int above = qGray(picture.pixel(x, top - 12));
        for (int y = top - 12; y < picture.height(); ++y) {
            if (std::abs(qGray(picture.pixel(x, y)) - above) > 60) {
                return std::abs((y - top) * perPixel) < 1.5;
            }
        }
        return false;
    };
    const auto found = [&] {
        if (!pilot().grab(canvas, file).isEmpty() || !picture.load(file)) {
            return false;
        }
        return (reaches(column - 1) || reaches(column) || reaches(column + 1)) && !reaches(column - 6) &&
               !reaches(column + 6);
    };
    QVERIFY(until(found));
}

void SpectrumTest::saysInWordsWhatItShows()
{
    const auto words = [this] { return pilot().scan()["accessible"].toString(); };
    QVERIFY2(until([&] { return words().contains("Strongest signal") && words().contains("98.5"); }),
             qPrintable(words()));
    QVERIFY2(words().contains("View from 96"), qPrintable(words()));
}

void SpectrumTest::drawsTheChannelWhereTheValuesSay()
{
    QVERIFY(comesTo("frequency", broadcastFrequency, 1));
    QVERIFY(comesTo("bandwidth", 150e3, 1));
    const QString color = drawn()["color"].toString();
    QVERIFY(!m_station->ctl({"set", channel + "/Frequency", "97.9M"}).isEmpty());
    QVERIFY(!m_station->ctl({"set", channel + "/Bandwidth", "50 kHz"}).isEmpty());
    QVERIFY(!m_station->ctl({"set", channel + "/Demodulation", "USB"}).isEmpty());
    QVERIFY(comesTo("frequency", 97.9e6, 1));
    QVERIFY(comesTo("center", 97.9e6, 50e3));
    QVERIFY(comesTo("bandwidth", 50e3, 1));
    QVERIFY(until([&] { return drawn()["color"].toString() != color; }));
}

void SpectrumTest::drawsTheThresholdOfTheChannelsBandwidthIntoTheTrace()
{
    QVERIFY(!m_station->ctl({"set", channel + "/SquelchValue", "30"}).isEmpty());
    QVERIFY(comesTo("threshold", 30, 0.01));
    const double resolution = pilot().scan()["trace"].toObject()["resolutionBandwidth"].toDouble();
    QVERIFY(resolution > 0);
    const double line = 30 - 10 * std::log10(150e3 / resolution);
    QVERIFY(comesTo("thresholdLine", line, 0.1));
    const QJsonObject there = places();
    QVERIFY(std::abs(there["threshold"].toDouble() - (80 - line) / 100 * there["height"].toDouble()) < 1.5);
}

void SpectrumTest::aClickTunesAndComesBackThroughTheDriver()
{
    const double view = 4e6;
    QCOMPARE(pilot().drag({spot(carrierFrequency, 0.1)}), QString());
    const auto tuned = [this] { return ctl("/Frequency").section(' ', 0, 0).toDouble(); };
    const double pixel = view / places()["width"].toDouble();
    QVERIFY2(until([&] { return std::abs(tuned() - carrierFrequency) <= pixel; }),
             qPrintable(ctl("/Frequency")));
    // What the driver took is what is drawn, what the panel shows, and a round number.
    QVERIFY(comesTo("frequency", tuned(), 1));
    QCOMPARE(std::fmod(tuned(), 1e3), 0.0);
    QVERIFY(until([&] {
        return pilot().value(channel + "/Frequency")["number"].toDouble() == tuned() &&
               !pilot().value(channel + "/Frequency")["pending"].toBool();
    }));
}

void SpectrumTest::arrowKeysTuneByAStep()
{
    const Target control{{"class", "glWidgets::VCIFControl"}};
    const auto tuned = [this] { return ctl("/Frequency").section(' ', 0, 0).toDouble(); };
    const double before = tuned();
    QCOMPARE(pilot().type(control, "", {"Right"}), QString());
    QVERIFY(until([&] { return tuned() > before; }));
    const double step = tuned() - before;
    QVERIFY(comesTo("frequency", before + step, 1));
    QCOMPARE(pilot().type(control, "", {"Ctrl+Right"}), QString());
    QVERIFY(until([&] { return std::abs(tuned() - before - 11 * step) < 1; }));
    QVERIFY(comesTo("frequency", before + 11 * step, 1));
    QCOMPARE(pilot().type(control, "", {"Ctrl+Left", "Left"}), QString());
    QVERIFY(until([&] { return std::abs(tuned() - before) < 1; }));
}

void SpectrumTest::draggingAnEdgeChoosesTheNearestBandwidth()
{
    const QJsonObject there = places();
    const double y = there["height"].toDouble() * 0.2;
    const QPointF edge(there["upperEdge"].toDouble(), y);
    const double perHertz = there["width"].toDouble() / 4e6;
    const QPointF wide(there["frequency"].toDouble() + 245e3 * perHertz, y);
    QCOMPARE(pilot().drag({edge, edge + QPointF(8, 0), wide}), QString());
    QTRY_COMPARE_WITH_TIMEOUT(ctl("/Bandwidth"), QString("500 kHz"), patienceMs);
    QVERIFY(comesTo("bandwidth", 500e3, 1));
    QCOMPARE(pilot().text(At::named("Bandwidth")), QString("500 kHz"));
    QVERIFY(ctl("/Frequency").startsWith("98500000"));
}

void SpectrumTest::draggingTheThresholdWritesTheSquelch()
{
    const QJsonObject there = places();
    const double before = drawn()["threshold"].toDouble();
    const QPointF line(there["width"].toDouble() * 0.2, there["threshold"].toDouble());
    const double perDecibel = there["height"].toDouble() / 100;
    QCOMPARE(pilot().drag({line, line - QPointF(0, 10 * perDecibel), line - QPointF(0, 20 * perDecibel)}),
             QString());
    const auto squelch = [this] { return ctl("/SquelchValue").section(' ', 0, 0).toDouble(); };
    QVERIFY2(until([&] { return std::abs(squelch() - before - 20) < 1.0; }),
             qPrintable(ctl("/SquelchValue")));
    QVERIFY(comesTo("threshold", squelch(), 0.06));
    QVERIFY(ctl("/Frequency").startsWith("98500000"));
}

void SpectrumTest::theWheelZoomsAndWritesNothing()
{
    const QString tuned = ctl("/Frequency");
    const QString bandwidth = ctl("/Bandwidth");
    const QString squelch = ctl("/SquelchValue");
    QCOMPARE(pilot().wheel(canvas, 4), QString());
    const auto width = [this] {
        const QJsonArray view = pilot().scan()["view"].toArray();
        return view.at(1).toDouble() - view.at(0).toDouble();
    };
    QVERIFY(until([&] { return width() < 3.5e6; }));
    QCOMPARE(ctl("/Frequency"), tuned);
    QCOMPARE(ctl("/Bandwidth"), bandwidth);
    QCOMPARE(ctl("/SquelchValue"), squelch);
    QCOMPARE(pilot().type({{"class", "glWidgets::VCIFControl"}}, "", {"Home"}), QString());
    QVERIFY(until([&] { return std::abs(width() - 4e6) < 1; }));
}

void SpectrumTest::aRefusedClickLeavesTheChannelWhereItIs()
{
    QCOMPARE(pilot().click(At::named("Couple Frequency")), QString());
    QTRY_COMPARE_WITH_TIMEOUT(ctl("/FrequencyCoupled"), QString("On"), patienceMs);
    const double before = ctl("/Frequency").section(' ', 0, 0).toDouble();
    QVERIFY(comesTo("frequency", before, 1));
    QCOMPARE(pilot().drag({spot(carrierFrequency, 0.1)}), QString());
    QTRY_COMPARE_WITH_TIMEOUT(pilot().value(channel + "/Frequency")["answer"].toInt(), answerRefused,
                              patienceMs);
    QVERIFY(comesTo("frequency", before, 1));
}

void SpectrumTest::followsTheReceiverWhenItIsTunedElsewhere()
{
    QVERIFY(!m_station->ctl({"set", "/RX1/FREQUENCY", "99M"}).isEmpty());
    QVERIFY(until([this] { return pilot().scan()["view"].toArray().at(0).toDouble() == 97e6; }));
    const auto fits = [this] {
        const QJsonObject peak = pilot().peak(carrierFrequency - 50e3, carrierFrequency + 50e3);
        return std::abs(peak["frequency"].toDouble() - carrierFrequency) < 2e3 &&
               std::abs(peak["level"].toDouble() - carrierLevel) < 1;
    };
    QVERIFY(until(fits));
    // Away from it, and the pane says where the channel is.
    QVERIFY(!m_station->ctl({"set", "/RX1/FREQUENCY", "92M"}).isEmpty());
    QVERIFY(until([this] { return drawn()["text"].toString().contains("outside of the span"); }));
}

void SpectrumTest::standsStillWithItsAgeWhileTheDriverIsAway()
{
    m_station->killDriver();
    QTRY_VERIFY_WITH_TIMEOUT(pilot().scan()["stale"].toBool(), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(!pilot().scan()["message"].toString().isEmpty(), patienceMs);
    const QString first = pilot().scan()["message"].toString();
    QVERIFY2(first.contains(QRegularExpression("\\d+ s")), qPrintable(first));
    QTRY_VERIFY_WITH_TIMEOUT(pilot().scan()["message"].toString() != first, patienceMs);  // it grows older
    const double received = pilot().scan()["received"].toDouble();

    QVERIFY(m_station->startDriver());
    QVERIFY2(until([this] { return isLive(); }), qPrintable(pilot().scan()["message"].toString()));
    QVERIFY(pilot().scan()["received"].toDouble() > received);
}

void SpectrumTest::comesBackWhenTheDriverHasAnotherPortForItsStreams()
{
    m_station->killDriver();
    QTRY_VERIFY_WITH_TIMEOUT(pilot().scan()["stale"].toBool(), patienceMs);
    QVERIFY(m_station->startDriver({"--scene", "7", "--stream-port", "0"}));
    QVERIFY2(until([this] { return isLive(); }), qPrintable(pilot().scan()["message"].toString()));
}

void SpectrumTest::aHiddenWindowEndsTheStreamWithinASecond_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("hidden") << "hidden";
    QTest::newRow("minimized") << "minimized";
}

void SpectrumTest::aHiddenWindowEndsTheStreamWithinASecond()
{
    QFETCH(QString, how);
    const Target main{{"class", "DdcGuiMain"}};
    const auto ended = [this] { return m_station->driver().output().count("the picture is not shown"); };
    qint64 best = patienceMs;
    for (int i = 0; i < tries && best > stopMs; ++i) {
        const auto before = ended();
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(pilot().show(main, how), QString());
        QVERIFY(until([&] { return ended() > before; }));
        best = qMin(best, clock.elapsed());
        QCOMPARE(pilot().scan()["stream"].toInt(), streamStopped);
        const double received = pilot().scan()["received"].toDouble();
        const int paints = pilot().scan()["paints"].toInt();
        // A round trip through driver and tree later, nothing has come or been painted.
        QVERIFY(!m_station->ctl({"set", channel + "/Frequency", i % 2 ? "98.5M" : "98.4M"}).isEmpty());
        QVERIFY(until(
            [&] { return pilot().valueText(channel + "/Frequency").startsWith(i % 2 ? "985" : "984"); }));
        QCOMPARE(pilot().scan()["received"].toDouble(), received);
        QCOMPARE(pilot().scan()["paints"].toInt(), paints);
        QCOMPARE(pilot().show(main, "shown"), QString());
        QVERIFY(until([this] { return isLive(); }));
    }
    QVERIFY2(best <= stopMs, qPrintable(QString("%1 ms").arg(best)));
}

void SpectrumTest::keepsItsLayoutInEverySize_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("narrow") << 470 << 700;
    QTest::newRow("wide") << 780 << 600;
    QTest::newRow("high") << 500 << 790;
}

void SpectrumTest::keepsItsLayoutInEverySize()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QCOMPARE(pilot().resize({{"class", "DdcGuiMain"}}, width, height), QString());
    const auto rect = [this](const Target& target) {
        const QJsonArray numbers = pilot().widget(target)["rect"].toArray();
        return QRect(numbers.at(0).toInt(), numbers.at(1).toInt(), numbers.at(2).toInt(),
                     numbers.at(3).toInt());
    };
    const auto fits = [&] {
        const QRect window(0, 0, width, height);
        const QRect panel = rect({{"class", "DdcGuiFfm"}});
        const QRect spectrum = rect(pane);
        return window.contains(panel) && window.contains(spectrum) && spectrum.top() > panel.bottom() &&
               rect({{"name", "waterfallCanvas"}}).top() > rect(canvas).bottom() &&
               window.contains(rect({{"name", "scanStatus"}}));
    };
    QVERIFY(until(fits));
    QVERIFY(until([this] { return isLive(); }));
}

QTEST_GUILESS_MAIN(SpectrumTest)
#include "tst_e2e_spectrum.moc"
