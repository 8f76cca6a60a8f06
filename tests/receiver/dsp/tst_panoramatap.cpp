#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <condition_variable>
#include <mutex>

#include "receiver/dsp/engine.h"
#include "receiver/dsp/pace.h"
#include "signals.h"

using namespace Receiver;

namespace {

constexpr int patience = 60000;  // ms; only a broken engine takes as long
constexpr double rate = 200e3;
constexpr double toneFrequency = 10.02e6;

// A carrier of -20 dBFS on a fixed frequency, for ever, on any thread's count of samples.
class CarrierSource : public IqSource
{
public:
    QString name() const override { return "carrier"; }
    double sampleRate() const override { return rate; }
    double center() const override { return m_center; }
    double centerMinimum() const override { return 9e6; }
    double centerMaximum() const override { return 11e6; }
    void setCenter(double hertz) override { m_center = hertz; }
    bool rewind() override { return true; }

    std::size_t read(Sample* samples, std::size_t count) override
    {
        for (std::size_t i = 0; i < count; ++i, ++m_at) {
            const double turns = std::fmod((toneFrequency - m_center) / rate * double(m_at), 1.0);
            samples[i] = Sample(std::polar(0.1, 2 * Signals::pi * turns));
        }
        return count;
    }

private:
    double m_center = 10e6;
    qint64 m_at = 0;
};

PanoramaSettings settingsOf(double span, int points = 1024)
{
    PanoramaSettings settings;
    settings.span = span;
    settings.points = points;
    return settings;
}

}  // namespace

// The way of a panorama's frames from the engine's thread to the one that shows them.
class TestPanoramaTap : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void withoutAskingThereIsNoPanorama();
    void anAskedForPanoramaComes();
    void theCarrierKeepsItsPlaceWhenTheCentreMoves();
    void otherSettingsFollowWithoutAGap();
    void nothingComesAfterNothingIsWanted();
    void itMayBeWantedAgain();
    void aBusyReceiverGetsTheLatestAndACount();
    void aStoppedEngineBeginsANewPictureWhenItStarts();
    void changingItsMindQuicklyHarmsNothing();
    void anEngineMayEndWhileOneIsBuilt();

private:
    bool waitFor(int more);
    bool waitForStep(double step);

    std::unique_ptr<Engine> m_engine;
    QVector<PanoramaPicture> m_frames;
    QVector<quint64> m_skipped;
    int m_levels = 0;
};

void TestPanoramaTap::init()
{
    m_engine = std::make_unique<Engine>(std::make_unique<CarrierSource>(), Engine::Options());
    m_frames.clear();
    m_skipped.clear();
    m_levels = 0;
    connect(m_engine.get(), &Engine::panoramaReady, this,
            [this](const PanoramaPicture& frame, quint64 skipped) {
                m_frames.append(frame);
                m_skipped.append(skipped);
            });
    connect(m_engine.get(), &Engine::levelsReady, this, [this] { ++m_levels; });
}

void TestPanoramaTap::cleanup()
{
    m_engine.reset();
}

bool TestPanoramaTap::waitFor(int more)
{
    const auto wanted = m_frames.size() + more;
    return QTest::qWaitFor([&] { return m_frames.size() >= wanted; }, patience);
}

bool TestPanoramaTap::waitForStep(double step)
{
    return QTest::qWaitFor([&] { return !m_frames.isEmpty() && m_frames.last()->step == step; }, patience);
}

void TestPanoramaTap::withoutAskingThereIsNoPanorama()
{
    m_engine->start();
    QTRY_VERIFY_WITH_TIMEOUT(m_levels >= 10, patience);
    QVERIFY(m_frames.isEmpty());
}

void TestPanoramaTap::anAskedForPanoramaComes()
{
    m_engine->setPanorama(settingsOf(160e3));
    m_engine->start();
    QVERIFY(waitFor(5));
    const PanoramaFrame& frame = *m_frames.last();
    const auto peak = Signals::peakOf(frame.mean, 0, int(frame.mean.size()) - 1);
    QVERIFY(std::abs(frame.start + peak.at * frame.step - toneFrequency) < frame.step);
    QVERIFY2(std::abs(peak.level - 60) < 0.5, qPrintable(QString::number(peak.level)));
    // Levels go on beside it.
    const int before = m_levels;
    QTRY_VERIFY_WITH_TIMEOUT(m_levels > before, patience);
}

void TestPanoramaTap::theCarrierKeepsItsPlaceWhenTheCentreMoves()
{
    m_engine->setPanorama(settingsOf(160e3));
    m_engine->start();
    QVERIFY(waitFor(2));
    m_engine->setCenter(10.05e6);
    QTRY_VERIFY_WITH_TIMEOUT(std::abs(m_frames.last()->start + 80e3 - 10.05e6) < 500, patience);
    QVERIFY(waitFor(3));
    // No frame holds samples of two centres: in each the carrier alone stands out.
    for (const PanoramaPicture& frame : m_frames) {
        const auto peak = Signals::peakOf(frame->mean, 0, int(frame->mean.size()) - 1);
        QVERIFY(std::abs(frame->start + peak.at * frame->step - toneFrequency) < frame->step);
        for (int i = 0; i < int(frame->mean.size()); ++i) {
            if (std::abs(i - peak.bin) > 5)
                QVERIFY2(frame->maximum[std::size_t(i)] < 60 - 60, qPrintable(QString::number(i - peak.bin)));
        }
    }
}

void TestPanoramaTap::otherSettingsFollowWithoutAGap()
{
    m_engine->setPanorama(settingsOf(160e3));
    m_engine->start();
    QVERIFY(waitForStep(rate / 1024));
    m_engine->setPanorama(settingsOf(160e3, 2048));
    QVERIFY(waitForStep(rate / 2048));
    m_engine->setPanorama(settingsOf(80e3, 2048));
    QVERIFY(waitForStep(rate / 2 / 2048));
}

void TestPanoramaTap::nothingComesAfterNothingIsWanted()
{
    m_engine->setPanorama(settingsOf(160e3));
    m_engine->start();
    QVERIFY(waitFor(3));
    m_engine->setPanorama({});
    const auto before = m_frames.size();
    const int levels = m_levels;
    QTRY_VERIFY_WITH_TIMEOUT(m_levels >= levels + 10, patience);
    QCOMPARE(m_frames.size(), before);
}

void TestPanoramaTap::itMayBeWantedAgain()
{
    m_engine->start();
    for (int i = 0; i < 3; ++i) {
        m_engine->setPanorama(settingsOf(160e3));
        QVERIFY(waitFor(3));
        m_engine->setPanorama({});
    }
}

void TestPanoramaTap::aBusyReceiverGetsTheLatestAndACount()
{
    PanoramaSettings settings = settingsOf(160e3, 256);
    settings.frameRate = 60;
    m_engine->setPanorama(settings);
    m_engine->start();
    QVERIFY(waitFor(2));
    const auto before = m_frames.size();
    const quint64 lastSeen = m_frames.last()->sequence;
    // This thread delivers nothing while it waits for samples that are due a second later.
    const Pace::Clock::time_point until = Pace::Clock::now() + std::chrono::seconds(1);
    std::mutex mutex;
    std::condition_variable never;
    std::unique_lock<std::mutex> lock(mutex);
    never.wait_until(lock, until, [] { return false; });
    QVERIFY(waitFor(1));
    QVERIFY(m_skipped[before] > 20);
    QCOMPARE(m_frames[before]->sequence, lastSeen + 1 + m_skipped[before]);
}

void TestPanoramaTap::aStoppedEngineBeginsANewPictureWhenItStarts()
{
    m_engine->setPanorama(settingsOf(160e3));
    m_engine->start();
    QVERIFY(waitFor(2));
    m_engine->stop();
    m_engine->start();
    QVERIFY(waitFor(3));
    for (const PanoramaPicture& frame : m_frames) {
        const auto peak = Signals::peakOf(frame->mean, 0, int(frame->mean.size()) - 1);
        QVERIFY(std::abs(peak.level - 60) < 0.5);
    }
}

void TestPanoramaTap::changingItsMindQuicklyHarmsNothing()
{
    m_engine->start();
    for (int i = 0; i < 200; ++i) {
        m_engine->setPanorama(settingsOf(160e3, 64 + 2 * (i % 50)));
        if (i % 3 == 0)
            m_engine->setPanorama({});
        QCoreApplication::processEvents();
    }
    m_engine->setPanorama(settingsOf(160e3, 500));
    QVERIFY(waitForStep(rate / 500));
}

void TestPanoramaTap::anEngineMayEndWhileOneIsBuilt()
{
    for (int i = 0; i < 5; ++i) {
        m_engine->start();
        m_engine->setPanorama(settingsOf(160e3, 3000 + 2 * i));
        cleanup();
        init();
    }
    QVERIFY(m_frames.isEmpty());
}

QTEST_GUILESS_MAIN(TestPanoramaTap)
#include "tst_panoramatap.moc"
