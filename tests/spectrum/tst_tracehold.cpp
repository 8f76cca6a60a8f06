#include <QtTest>
#include <limits>

#include "scanpictures.h"
#include "spectrum/tracehold.h"

namespace {

constexpr float none = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

ScanFrame frameOf(const QVector<float>& levels, qint64 milliseconds = 0)
{
    ScanFrame frame;
    frame.step = 100;
    frame.time = milliseconds * 1000;
    frame.levels = levels;
    return frame;
}

bool isNear(float value, double expected, double tolerance = 0.01)
{
    return std::abs(static_cast<double>(value) - expected) <= tolerance;
}

}  // namespace

class TestTraceHold : public QObject
{
    Q_OBJECT
private slots:
    void holdsTheHighestAndLowestOfEveryBin();
    void holdsNothingThatItIsNotAskedFor();
    void forgetsWhenSwitchedOff();
    void beginsAnewWithOtherBins_data();
    void beginsAnewWithOtherBins();
    void passesFramesWithoutAveraging();
    void meansPowerAndNotDecibels();
    void approachesAStepWithItsTimeConstant_data();
    void approachesAStepWithItsTimeConstant();
    void countsSkippedTime();
    void goesOnWhenTimeStandsStillOrRunsBack();
    void leavesEmptyBinsAsTheyWere();
    void ignoresFramesWithoutMeaning();
    void keepsItsSettingsWhenReset();
    void ignoresTimesWithoutMeaning();
};

void TestTraceHold::holdsTheHighestAndLowestOfEveryBin()
{
    TraceHold hold;
    hold.setMaximumHeld(true);
    hold.setMinimumHeld(true);
    QVERIFY(!hold.live() && !hold.maximum() && !hold.minimum());
    hold.add(frameOf({1, 5, 3}));
    hold.add(frameOf({4, 2, 3}, 40));
    hold.add(frameOf({2, 3, 9}, 80));
    QCOMPARE(hold.maximum()->levels, (QVector<float>{4, 5, 9}));
    QCOMPARE(hold.minimum()->levels, (QVector<float>{1, 2, 3}));
    QCOMPARE(hold.live()->levels, (QVector<float>{2, 3, 9}));
    QCOMPARE(hold.maximum()->time, 80000);
}

void TestTraceHold::holdsNothingThatItIsNotAskedFor()
{
    TraceHold hold;
    hold.add(frameOf({1}));
    QVERIFY(hold.live());
    QVERIFY(!hold.maximum() && !hold.minimum());
    QVERIFY(!hold.isMaximumHeld() && !hold.isMinimumHeld());
}

void TestTraceHold::forgetsWhenSwitchedOff()
{
    TraceHold hold;
    hold.setMaximumHeld(true);
    hold.setMinimumHeld(true);
    hold.add(frameOf({50}));
    hold.setMaximumHeld(false);
    hold.setMinimumHeld(false);
    QVERIFY(!hold.maximum() && !hold.minimum());
    hold.setMaximumHeld(true);
    hold.add(frameOf({10}));
    QCOMPARE(hold.maximum()->levels, QVector<float>{10});
}

void TestTraceHold::beginsAnewWithOtherBins_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("count");
    QTest::newRow("elsewhere") << 500.0 << 100.0 << 3;
    QTest::newRow("other step") << 0.0 << 50.0 << 3;
    QTest::newRow("more bins") << 0.0 << 100.0 << 5;
    QTest::newRow("fewer bins") << 0.0 << 100.0 << 1;
}

void TestTraceHold::beginsAnewWithOtherBins()
{
    QFETCH(double, start);
    QFETCH(double, step);
    QFETCH(int, count);
    TraceHold hold;
    hold.setMaximumHeld(true);
    hold.setMinimumHeld(true);
    hold.setAveraging(1);
    hold.add(frameOf({50, 50, 50}));
    ScanFrame other = frameOf(QVector<float>(count, 10), 40);
    other.start = start;
    other.step = step;
    hold.add(other);
    for (const ScanFrame* held : {hold.live(), hold.maximum(), hold.minimum()}) {
        QVERIFY(held->sameBins(other));
        for (const float level : held->levels)
            QVERIFY(isNear(level, 10));
    }
}

void TestTraceHold::passesFramesWithoutAveraging()
{
    TraceHold hold;
    const ScanFrame frame = ScanPictures::noisyFrame(1000);
    hold.add(ScanPictures::noisyFrame(1000, 2));
    hold.add(frame);
    QCOMPARE(hold.live()->levels, frame.levels);
    QCOMPARE(hold.live()->sequence, frame.sequence);
}

void TestTraceHold::meansPowerAndNotDecibels()
{
    TraceHold hold;
    hold.setAveraging(1000);
    for (int i = 0; i < 4000; ++i)
        hold.add(frameOf({i % 2 == 0 ? 0.0f : 30.0f}, qint64(i) * 1000));
    QVERIFY(isNear(hold.live()->levels[0], 10 * std::log10((1 + 1000) / 2.0), 0.3));
}

void TestTraceHold::approachesAStepWithItsTimeConstant_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<int>("interval");
    QTest::newRow("half a second at 30/s") << 0.5 << 33;
    QTest::newRow("half a second at 10/s") << 0.5 << 100;
    QTest::newRow("five seconds") << 5.0 << 33;
}

void TestTraceHold::approachesAStepWithItsTimeConstant()
{
    QFETCH(double, seconds);
    QFETCH(int, interval);
    TraceHold hold;
    hold.setAveraging(seconds);
    hold.add(frameOf({0}));
    int time = 0;
    while (time < seconds * 1000) {
        time += interval;
        hold.add(frameOf({40}, time));
    }
    const double share = 1 - std::exp(-time / 1000.0 / seconds);
    QVERIFY(isNear(hold.live()->levels[0], 10 * std::log10(1 + share * (1e4 - 1)), 0.02));
}

void TestTraceHold::countsSkippedTime()
{
    TraceHold hold;
    hold.setAveraging(1);
    hold.add(frameOf({0}));
    hold.add(frameOf({40}, 60000));
    QVERIFY(isNear(hold.live()->levels[0], 40));
}

void TestTraceHold::goesOnWhenTimeStandsStillOrRunsBack()
{
    TraceHold hold;
    hold.setAveraging(0.5);
    hold.add(frameOf({0}, 5000));
    for (int i = 0; i < 200; ++i)
        hold.add(frameOf({40}, 5000));
    QVERIFY(isNear(hold.live()->levels[0], 40));
    for (int i = 0; i < 300; ++i)
        hold.add(frameOf({10}, 4000 - i));
    QVERIFY(isNear(hold.live()->levels[0], 10, 0.2));
}

void TestTraceHold::leavesEmptyBinsAsTheyWere()
{
    TraceHold hold;
    hold.setMaximumHeld(true);
    hold.setMinimumHeld(true);
    hold.setAveraging(1);
    hold.add(frameOf({none, infinite, 20, -infinite}));
    QVERIFY(std::isnan(hold.maximum()->levels[0]) && std::isnan(hold.maximum()->levels[1]));
    QVERIFY(std::isnan(hold.minimum()->levels[3]) && std::isnan(hold.live()->levels[1]));
    hold.add(frameOf({5, 6, none, infinite}, 40));
    QCOMPARE(hold.maximum()->levels[0], 5.0f);
    QCOMPARE(hold.maximum()->levels[2], 20.0f);
    QVERIFY(std::isnan(hold.maximum()->levels[3]));
    QCOMPARE(hold.minimum()->levels[1], 6.0f);
    QVERIFY(isNear(hold.live()->levels[0], 5));
    QVERIFY(isNear(hold.live()->levels[2], 20));
    QVERIFY(std::isnan(hold.live()->levels[3]));
}

void TestTraceHold::ignoresFramesWithoutMeaning()
{
    TraceHold hold;
    hold.add(frameOf({1, 2}));
    ScanFrame bad = frameOf({3, 4});
    bad.step = 0;
    hold.add(bad);
    bad.step = -5;
    hold.add(bad);
    hold.add(ScanFrame());
    QCOMPARE(hold.live()->levels, (QVector<float>{1, 2}));
}

void TestTraceHold::keepsItsSettingsWhenReset()
{
    TraceHold hold;
    hold.setMaximumHeld(true);
    hold.setAveraging(2);
    hold.add(frameOf({50}));
    hold.reset();
    QVERIFY(!hold.live() && !hold.maximum());
    hold.add(frameOf({10}));
    QVERIFY(isNear(hold.live()->levels[0], 10));
    QCOMPARE(hold.maximum()->levels, QVector<float>{10});
    QCOMPARE(hold.averaging(), 2.0);
}

void TestTraceHold::ignoresTimesWithoutMeaning()
{
    TraceHold hold;
    for (const double seconds : {-1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        hold.setAveraging(seconds);
        QCOMPARE(hold.averaging(), 0.0);
    }
    // Switching it on late begins with what comes then.
    hold.add(frameOf({0}));
    hold.setAveraging(1);
    hold.add(frameOf({30}, 40));
    QVERIFY(isNear(hold.live()->levels[0], 30));
}

QTEST_APPLESS_MAIN(TestTraceHold)
#include "tst_tracehold.moc"
