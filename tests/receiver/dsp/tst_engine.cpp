#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <limits>

#include "receiver/dsp/engine.h"
#include "receiver/sources/opensource.h"

using namespace Receiver;

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr int patience = 60000;  // ms; only a broken engine takes as long

struct ToneSetup
{
    double rate = 48000;
    double tone = 1005000;  // Hz, absolute
    double center = 1e6;    // Hz
    qint64 samples = -1;    // length, -1: endless
    qint64 failAfter = -1;  // samples
    qint64 pulseAt = -1;    // silence but for 2 ms from this sample on; -1: no silence
    qint64 spoilEvery = 0;  // every so many samples one is not a number
    bool tunable = false;
    bool rewinds = true;
};

// A carrier of 0.1 (-20 dBFS) on a fixed frequency, louder by 1 dB for each second of signal.
class ToneSource : public IqSource
{
public:
    explicit ToneSource(const ToneSetup& setup) : m_setup(setup), m_center(setup.center) {}

    QString name() const override { return "tone"; }
    double sampleRate() const override { return m_setup.rate; }
    double center() const override { return m_center; }
    double centerMinimum() const override { return m_setup.center - (m_setup.tunable ? 1e6 : 0); }
    double centerMaximum() const override { return m_setup.center + (m_setup.tunable ? 1e6 : 0); }
    void setCenter(double hertz) override { m_center = hertz; }
    QString error() const override { return m_error; }

    std::size_t read(Sample* samples, std::size_t count) override
    {
        std::size_t i = 0;
        for (; i < count && m_at != m_setup.samples; ++i, ++m_at) {
            if (m_at == m_setup.failAfter) {
                m_error = "tone: the cable came off";
                break;
            }
            const double seconds = double(m_at) / m_setup.rate;
            const double turns = std::fmod((m_setup.tone - m_center) * seconds, 1.0);
            samples[i] = Sample(std::polar(0.1 * std::pow(10.0, seconds / 20), 2 * pi * turns));
            if (m_setup.pulseAt >= 0 &&
                (m_at < m_setup.pulseAt || double(m_at - m_setup.pulseAt) >= 2e-3 * m_setup.rate))
                samples[i] = Sample();
            if (m_setup.spoilEvery > 0 && m_at % m_setup.spoilEvery == 0)
                samples[i] = Sample(std::numeric_limits<float>::quiet_NaN(), 0.0F);
        }
        return i;
    }

    bool rewind() override
    {
        if (m_setup.rewinds)
            m_at = 0;
        return m_setup.rewinds;
    }

private:
    ToneSetup m_setup;
    double m_center;
    qint64 m_at = 0;
    QString m_error;
};

// An engine with everything it has said.
struct Listener
{
    explicit Listener(const ToneSetup& setup, Engine::Options options = offline())
        : engine(std::make_unique<ToneSource>(setup), options),
          ended(&engine, &Engine::ended),
          failed(&engine, &Engine::failed)
    {
        QObject::connect(&engine, &Engine::levelsReady, &engine,
                         [this](const Engine::Levels& levels) { reports.append(levels); });
    }

    static Engine::Options offline()
    {
        Engine::Options options;
        options.loop = false;
        options.realTime = false;
        return options;
    }

    bool runToTheEnd()
    {
        engine.start();
        return ended.count() > 0 || ended.wait(patience);
    }

    QVector<Engine::Levels> reports;
    Engine engine;
    QSignalSpy ended;
    QSignalSpy failed;
};

ToneSetup seconds(double length, double rate = 48000)
{
    ToneSetup setup;
    setup.rate = rate;
    setup.samples = std::llround(length * rate);
    return setup;
}

}  // namespace

class EngineTest : public QObject
{
    Q_OBJECT
private slots:
    void reportsTwentyTimesForASecondOfSignal_data();
    void reportsTwentyTimesForASecondOfSignal();
    void levelIsThatOfTheReportsOwnTime();
    void shortPulseCountsAlikeWhereverItLies_data();
    void shortPulseCountsAlikeWhereverItLies();
    void fullScaleIsTheLevelGiven();
    void lastReportCoversTheRest();
    void recordingShorterThanATransformIsStillMeasured();
    void eachChannelHasItsOwnLevel();
    void channelOutsideTheBandReportsTheFloor();
    void channelNumbersThatDoNotExistAreIgnored();
    void signalsArriveInTheThreadThatMadeTheEngine();
    void reportsFollowTheClockInRealTime();
    void timeStampsFollowTheSystemClock();
    void stopIsPromptAndNothingComesAfterIt();
    void engineIsDeletedFromItsOwnSignal();
    void startBeginsAgainAtTheFirstSample();
    void loopBeginsAgainAndThePositionWithIt();
    void loopOfAFewSamplesGoesOn();
    void sourceThatCannotRewindEndsDespiteTheLoop();
    void movedCentreLeavesTheTonesLevelAlone();
    void centreIsHeldWithinTheSourcesLimits();
    void settingsChangeWhileItRuns();
    void invalidSamplesAreCountedAndDoNotSpoilTheLevel();
    void failureOfTheSourceIsTold();
    void sourceWithoutSamplesFails();
    void slowReceiverLosesNothingWithoutRealTime();
    void nonsensicalReportRateFallsBackToTheDefault();
    void runsTheSceneInRealTime();
};

void EngineTest::reportsTwentyTimesForASecondOfSignal_data()
{
    QTest::addColumn<double>("rate");
    for (const double rate : {8000.0, 12001.03, 48000.0, 250e3, 1e6})
        QTest::addRow("%.2f S/s", rate) << rate;
}

void EngineTest::reportsTwentyTimesForASecondOfSignal()
{
    QFETCH(double, rate);
    Listener listener(seconds(1.5, rate));
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.size(), 30);
    for (int i = 0; i < 30; ++i) {
        // To the next sample.
        QVERIFY(std::abs(listener.reports[i].position - 0.05 * (i + 1)) < 1.01 / rate);
        const qint64 since = listener.reports[i].time - listener.reports[0].time;
        QVERIFY(std::abs(double(since) - 50000.0 * i) < 1.5e6 / rate + 2);
    }
    QCOMPARE(listener.failed.count(), 0);
}

void EngineTest::levelIsThatOfTheReportsOwnTime()
{
    ToneSetup setup = seconds(3);
    Listener listener(setup);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.tone, 3000);
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.size(), 60);
    for (const Engine::Levels& report : listener.reports) {
        // The tone rises by 1 dB a second: a report shows the middle of its time.
        const double expected = 60 + report.position - 0.025;
        QVERIFY2(std::abs(double(report.levels[0]) - expected) < 0.05,
                 qPrintable(QString("%1 at %2 s").arg(double(report.levels[0])).arg(report.position)));
    }
}

void EngineTest::shortPulseCountsAlikeWhereverItLies_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("at");
    for (const double rate : {12001.03, 48e3, 1e6})
        for (const double at : {0.113, 0.115, 0.1171, 0.1193, 0.1214, 0.125, 0.1288, 0.131})
            QTest::addRow("%.0f S/s, %.1f ms", rate, at * 1e3) << rate << at;
}

void EngineTest::shortPulseCountsAlikeWhereverItLies()
{
    QFETCH(double, rate);
    QFETCH(double, at);
    ToneSetup setup = seconds(0.25, rate);
    setup.pulseAt = std::llround(at * rate);
    setup.tone = setup.center + 0.1 * rate;
    Listener listener(setup);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.center, rate);
    QVERIFY(listener.runToTheEnd());
    // 2 ms of the 50 that the third report lasts.
    const double expected = 60 + at + 10 * std::log10(2.0 / 50);
    const double measured = double(listener.reports[2].levels[0]);
    QVERIFY2(std::abs(measured - expected) < 0.5,
             qPrintable(QString("%1 for %2").arg(measured).arg(expected)));
}

void EngineTest::fullScaleIsTheLevelGiven()
{
    ToneSetup setup = seconds(0.2);
    Engine::Options options = Listener::offline();
    options.fullScale = 107;
    Listener listener(setup, options);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.tone, 3000);
    QVERIFY(listener.runToTheEnd());
    QVERIFY(std::abs(double(listener.reports[0].levels[0]) - 87) < 0.1);
}

void EngineTest::lastReportCoversTheRest()
{
    ToneSetup setup = seconds(0.262);
    Listener listener(setup);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.tone, 3000);
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.size(), 6);
    QVERIFY(std::abs(listener.reports.last().position - 0.262) < 1e-4);
    QVERIFY(std::abs(double(listener.reports.last().levels[0]) - 60.26) < 0.1);
    QCOMPARE(listener.ended.count(), 1);
}

void EngineTest::recordingShorterThanATransformIsStillMeasured()
{
    ToneSetup setup;
    setup.samples = 100;
    setup.tone = setup.center;
    Listener listener(setup);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.center, 40e3);
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.size(), 1);
    QVERIFY(std::abs(double(listener.reports[0].levels[0]) - 60) < 0.2);
}

void EngineTest::eachChannelHasItsOwnLevel()
{
    ToneSetup setup = seconds(0.3);
    Listener listener(setup);
    listener.engine.setChannelCount(3);
    listener.engine.setChannel(0, setup.tone, 1000);
    listener.engine.setChannel(1, setup.tone - 8000, 1000);
    listener.engine.setChannel(2, setup.tone + 1000, 4000);
    QVERIFY(listener.runToTheEnd());
    for (const Engine::Levels& report : listener.reports) {
        QCOMPARE(report.levels.size(), 3);
        QVERIFY(std::abs(double(report.levels[0]) - 60) < 0.4);
        QVERIFY(report.levels[1] < -10);
        QVERIFY(std::abs(double(report.levels[2]) - 60) < 0.4);
    }
}

void EngineTest::channelOutsideTheBandReportsTheFloor()
{
    Listener listener(seconds(0.1));
    listener.engine.setChannelCount(4);
    listener.engine.setChannel(0, 2e6, 1000);
    listener.engine.setChannel(1, std::numeric_limits<double>::quiet_NaN(), 1000);
    listener.engine.setChannel(2, 1e6, -5);
    QVERIFY(listener.runToTheEnd());
    for (const Engine::Levels& report : listener.reports)
        QCOMPARE(report.levels, QVector<float>(4, -200.0F));
}

void EngineTest::channelNumbersThatDoNotExistAreIgnored()
{
    Listener listener(seconds(0.1));
    listener.engine.setChannelCount(-3);
    listener.engine.setChannel(0, 1e6, 1000);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(-1, 1e6, 1000);
    listener.engine.setChannel(1, 1e6, 1000);
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports[0].levels, QVector<float>(1, -200.0F));
}

void EngineTest::signalsArriveInTheThreadThatMadeTheEngine()
{
    Listener listener(seconds(0.2));
    bool here = true;
    int calls = 0;
    // Without a receiver object: called wherever the signal is sent.
    QObject::connect(&listener.engine, &Engine::levelsReady, [&](const Engine::Levels&) {
        here = here && QThread::currentThread() == qApp->thread();
        ++calls;
    });
    QVERIFY(listener.runToTheEnd());
    QVERIFY(here);
    QCOMPARE(calls, 4);
}

void EngineTest::reportsFollowTheClockInRealTime()
{
    Engine::Options options;
    ToneSetup setup;
    Listener listener(setup, options);
    QElapsedTimer clock;
    clock.start();
    listener.engine.start();
    QTRY_VERIFY_WITH_TIMEOUT(listener.reports.size() >= 20, patience);
    const double elapsed = double(clock.nsecsElapsed()) * 1e-9;
    // Never ahead of the clock. How far behind depends on the machine's load: it only must not stall.
    QVERIFY2(
        listener.reports.last().position <= elapsed + 0.001,
        qPrintable(QString("%1 s of signal in %2 s").arg(listener.reports.last().position).arg(elapsed)));
    for (int i = 1; i < listener.reports.size(); ++i)
        QVERIFY(std::abs(listener.reports[i].position - listener.reports[i - 1].position - 0.05) < 1e-4);
}

void EngineTest::timeStampsFollowTheSystemClock()
{
    Listener listener(ToneSetup{}, Engine::Options{});
    const qint64 before = QDateTime::currentMSecsSinceEpoch() * 1000;
    listener.engine.start();
    QTRY_VERIFY_WITH_TIMEOUT(listener.reports.size() >= 3, patience);
    const qint64 after = QDateTime::currentMSecsSinceEpoch() * 1000 + 1000;
    for (const Engine::Levels& report : listener.reports) {
        QVERIFY(report.time >= before);
        QVERIFY(report.time <= after);
    }
}

void EngineTest::stopIsPromptAndNothingComesAfterIt()
{
    Listener listener(ToneSetup{}, Engine::Options{});
    listener.engine.start();
    QTRY_VERIFY_WITH_TIMEOUT(!listener.reports.isEmpty(), patience);
    QElapsedTimer clock;
    clock.start();
    listener.engine.stop();
    QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
    const auto count = listener.reports.size();
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QCOMPARE(listener.reports.size(), count);
    QCOMPARE(listener.ended.count(), 0);
    listener.engine.stop();  // again is nothing
}

void EngineTest::engineIsDeletedFromItsOwnSignal()
{
    auto* engine = new Engine(std::make_unique<ToneSource>(ToneSetup()), Listener::offline());
    bool deleted = false;
    QObject::connect(engine, &Engine::levelsReady, qApp, [&] {
        delete engine;
        deleted = true;
    });
    engine->start();
    QTRY_VERIFY_WITH_TIMEOUT(deleted, patience);
    QCoreApplication::processEvents();
}

void EngineTest::startBeginsAgainAtTheFirstSample()
{
    Listener listener(seconds(0.2));
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.size(), 4);
    listener.reports.clear();
    listener.ended.clear();
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.size(), 4);
    QVERIFY(std::abs(listener.reports[0].position - 0.05) < 1e-4);
}

void EngineTest::loopBeginsAgainAndThePositionWithIt()
{
    Engine::Options options = Listener::offline();
    options.loop = true;
    ToneSetup setup = seconds(0.12);
    Listener listener(setup, options);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.tone, 3000);
    listener.engine.start();
    QTRY_VERIFY_WITH_TIMEOUT(listener.reports.size() >= 12, patience);
    listener.engine.stop();
    // 0.05, 0.10, then 0.03 of the second round, 0.08, and exactly the end of it, 0.12 ...
    for (int i = 0; i < 12; ++i) {
        const double absolute = 0.05 * (i + 1);
        const double expected = absolute - 0.12 * (std::ceil(absolute / 0.12 - 1e-9) - 1);
        QVERIFY2(std::abs(listener.reports[i].position - expected) < 1e-4,
                 qPrintable(QString("%1 for %2").arg(listener.reports[i].position).arg(expected)));
        QVERIFY(std::abs(double(listener.reports[i].levels[0]) - 60) < 0.5);
    }
    QCOMPARE(listener.ended.count(), 0);
}

void EngineTest::loopOfAFewSamplesGoesOn()
{
    Engine::Options options = Listener::offline();
    options.loop = true;
    ToneSetup setup;
    setup.samples = 3;
    setup.tone = setup.center;
    Listener listener(setup, options);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.center, 3000);
    listener.engine.start();
    QTRY_VERIFY_WITH_TIMEOUT(listener.reports.size() >= 5, patience);
    QVERIFY(std::abs(double(listener.reports[4].levels[0]) - 60) < 0.1);
    QVERIFY(listener.reports[4].position <= 3 / setup.rate + 1e-9);
}

void EngineTest::sourceThatCannotRewindEndsDespiteTheLoop()
{
    Engine::Options options = Listener::offline();
    options.loop = true;
    ToneSetup setup = seconds(0.2);
    setup.rewinds = false;
    Listener listener(setup, options);
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.size(), 4);
}

void EngineTest::movedCentreLeavesTheTonesLevelAlone()
{
    Engine::Options options = Listener::offline();
    ToneSetup setup = seconds(3);
    setup.tunable = true;
    Listener listener(setup, options);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.tone, 3000);
    QObject::connect(&listener.engine, &Engine::levelsReady, &listener.engine, [&] {
        listener.engine.setCenter(setup.center + 1000.0 * double(listener.reports.size() % 11) - 3000);
    });
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.size(), 60);
    for (const Engine::Levels& report : listener.reports)
        QVERIFY2(std::abs(double(report.levels[0]) - 60 - report.position + 0.025) < 0.1,
                 qPrintable(QString("%1 at %2 s").arg(double(report.levels[0])).arg(report.position)));
}

void EngineTest::centreIsHeldWithinTheSourcesLimits()
{
    ToneSetup setup;
    setup.tunable = true;
    Engine engine(std::make_unique<ToneSource>(setup), Engine::Options());
    QCOMPARE(engine.center(), 1e6);
    engine.setCenter(1e9);
    QCOMPARE(engine.center(), engine.centerMaximum());
    engine.setCenter(-1e9);
    QCOMPARE(engine.center(), engine.centerMinimum());
    engine.setCenter(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(engine.center(), engine.centerMinimum());
    QCOMPARE(engine.sampleRate(), 48000.0);
    QCOMPARE(engine.sourceName(), QString("tone"));
}

void EngineTest::settingsChangeWhileItRuns()
{
    Engine::Options options;
    ToneSetup setup;
    setup.tunable = true;
    Listener listener(setup, options);
    listener.engine.start();
    int change = 0;
    QTRY_VERIFY_WITH_TIMEOUT(
        (++change, listener.engine.setChannelCount(1 + change % 7),
         listener.engine.setChannel(change % 7, setup.tone, 500 + change),
         listener.engine.setCenter(setup.center + change % 5), listener.reports.size() >= 10),
        patience);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.tone, 3000);
    listener.reports.clear();
    QTRY_VERIFY_WITH_TIMEOUT(listener.reports.size() >= 3, patience);
    QCOMPARE(listener.reports.last().levels.size(), 1);
    QVERIFY(listener.reports.last().levels[0] > 59);
}

void EngineTest::invalidSamplesAreCountedAndDoNotSpoilTheLevel()
{
    ToneSetup setup = seconds(1);
    setup.spoilEvery = 4800;
    Listener listener(setup);
    listener.engine.setChannelCount(1);
    listener.engine.setChannel(0, setup.tone, 3000);
    QVERIFY(listener.runToTheEnd());
    QCOMPARE(listener.reports.last().invalidSamples, 10);
    for (const Engine::Levels& report : listener.reports)
        QVERIFY(std::abs(double(report.levels[0]) - 60.5) < 0.7);
}

void EngineTest::failureOfTheSourceIsTold()
{
    ToneSetup setup = seconds(3);
    setup.failAfter = 24000;
    Listener listener(setup);
    listener.engine.start();
    QVERIFY(listener.failed.count() > 0 || listener.failed.wait(patience));
    QCOMPARE(listener.failed[0][0].toString(), QString("tone: the cable came off"));
    QCOMPARE(listener.ended.count(), 0);
    QVERIFY(listener.reports.size() >= 8);
}

void EngineTest::sourceWithoutSamplesFails()
{
    for (const bool loop : {false, true}) {
        Engine::Options options = Listener::offline();
        options.loop = loop;
        ToneSetup setup;
        setup.samples = 0;
        Listener listener(setup, options);
        listener.engine.start();
        QVERIFY(listener.failed.count() > 0 || listener.failed.wait(patience));
        QCOMPARE(listener.failed[0][0].toString(), QString("tone: gave no samples"));
        QCOMPARE(listener.reports.size(), 0);
    }
}

void EngineTest::slowReceiverLosesNothingWithoutRealTime()
{
    Listener listener(seconds(40, 8000));
    listener.engine.start();
    QVERIFY(listener.reports.isEmpty());
    QVERIFY(listener.ended.wait(patience));
    QCOMPARE(listener.reports.size(), 800);
    QCOMPARE(listener.reports.last().skipped, 0);
    for (int i = 0; i < 800; ++i)
        QVERIFY(std::abs(listener.reports[i].position - 0.05 * (i + 1)) < 1e-3);
}

void EngineTest::nonsensicalReportRateFallsBackToTheDefault()
{
    for (const double rate : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        Engine::Options options = Listener::offline();
        options.reportRate = rate;
        Listener listener(seconds(0.2), options);
        QVERIFY(listener.runToTheEnd());
        QCOMPARE(listener.reports.size(), 4);
    }
}

void EngineTest::runsTheSceneInRealTime()
{
    Engine engine(openScene(1), Engine::Options());
    engine.setChannelCount(2);
    engine.setChannel(0, 97.3e6, 500);
    engine.setChannel(1, 98.5e6, 180e3);
    QVector<Engine::Levels> reports;
    connect(&engine, &Engine::levelsReady, this,
            [&](const Engine::Levels& levels) { reports.append(levels); });
    engine.start();
    QTRY_VERIFY_WITH_TIMEOUT(reports.size() >= 6, patience);
    engine.setCenter(97e6);
    reports.clear();
    QTRY_VERIFY_WITH_TIMEOUT(reports.size() >= 4, patience);
    for (const Engine::Levels& report : reports) {
        QVERIFY2(std::abs(double(report.levels[0]) - 40) < 0.3,
                 qPrintable(QString::number(double(report.levels[0]))));
        QVERIFY2(std::abs(double(report.levels[1]) - 56) < 0.5,
                 qPrintable(QString::number(double(report.levels[1]))));
    }
}

QTEST_GUILESS_MAIN(EngineTest)
#include "tst_engine.moc"
