#include <QtTest>
#include <limits>

#include "scanpictures.h"
#include "spectrum/levelpower.h"
#include "spectrum/tracecolumns.h"

namespace {

constexpr float infinite = std::numeric_limits<float>::infinity();

// Bins at 0, 1, 2 ... Hz.
ScanFrame plainFrame(const QVector<float>& levels)
{
    ScanFrame frame;
    frame.step = 1;
    frame.levels = levels;
    return frame;
}

bool isNear(float value, double expected, double tolerance = 0.005)
{
    return std::abs(static_cast<double>(value) - expected) <= tolerance;
}

}  // namespace

class TestTraceColumns : public QObject
{
    Q_OBJECT
private slots:
    void turnsLevelsIntoPowersAndBack();
    void neverLosesAOneBinSignal_data();
    void neverLosesAOneBinSignal();
    void givesEveryBinInViewToExactlyOneColumn();
    void meansPowerAndNotDecibels();
    void keepsTheMeanAtOrBelowTheMaximum();
    void interpolatesWhereBinsAreWiderThanPixels();
    void isEmptyOutsideOfTheFrame();
    void countsEmptyBinsForNothing();
    void takesTheFullBinAtTheEnds();
    void isEmptyWithoutMeaning_data();
    void isEmptyWithoutMeaning();
    void findsTheSameMaximumAlone();
    void keepsItsBinsAtHighFrequencies();
};

void TestTraceColumns::turnsLevelsIntoPowersAndBack()
{
    for (float level = -240; level < 240; level += 0.037f) {
        const double exact = std::pow(10.0, static_cast<double>(level) / 10);
        QVERIFY(isNear(static_cast<float>(10 * std::log10(LevelPower::power(level) / exact)), 0, 0.002));
        QVERIFY(isNear(LevelPower::fastLevel(static_cast<float>(exact)), static_cast<double>(level), 0.002));
    }
    QVERIFY(std::isfinite(LevelPower::power(1e30f)));
    QVERIFY(LevelPower::power(-1e30f) > 0);
    QVERIFY(!LevelPower::isLevel(LevelPower::none));
    QVERIFY(!LevelPower::isLevel(infinite));
    QVERIFY(!LevelPower::isLevel(-infinite));
    QVERIFY(LevelPower::isLevel(-3e38f));
}

void TestTraceColumns::neverLosesAOneBinSignal_data()
{
    QTest::addColumn<int>("bins");
    QTest::addColumn<int>("width");
    QTest::newRow("many to one") << 65536 << 1200;
    QTest::newRow("no whole number") << 4096 << 1199;
    QTest::newRow("one to one") << 500 << 500;
    QTest::newRow("nearly one to one") << 501 << 500;
    QTest::newRow("all to one") << 1000 << 1;
    QTest::newRow("wider than pixels") << 100 << 777;
}

void TestTraceColumns::neverLosesAOneBinSignal()
{
    QFETCH(int, bins);
    QFETCH(int, width);
    TraceColumns columns;
    for (int bin = 0; bin < bins; bin += std::max(1, bins / 97)) {
        ScanFrame frame = ScanPictures::emptyFrame(bins, -10);
        frame.levels[bin] = 70;
        columns.fill(frame, {97.5e6, 99.5e6}, width);
        const auto highest = std::max_element(columns.maximum.begin(), columns.maximum.end());
        // Between two bins a column may just miss the top.
        QVERIFY(width > bins ? *highest > 60 : *highest == 70.0f);
        const double column = static_cast<double>(highest - columns.maximum.begin()) + 0.5;
        QVERIFY(std::abs(column - (bin + 0.5) * width / bins) <= std::max(1, width / bins));
    }
}

void TestTraceColumns::givesEveryBinInViewToExactlyOneColumn()
{
    const int bins = 1000;
    ScanFrame frame = plainFrame(QVector<float>(bins, -200));
    TraceColumns columns;
    for (int bin = 100; bin < 900; bin += 7) {
        frame.levels.fill(-200);
        frame.levels[bin] = 50;
        columns.fill(frame, {99.7, 900.2}, 123);
        QCOMPARE(std::count(columns.maximum.begin(), columns.maximum.end(), 50.0f), 1);
    }
}

void TestTraceColumns::meansPowerAndNotDecibels()
{
    TraceColumns columns;
    columns.fill(plainFrame({0, 10, 20, 30}), {-0.5, 3.5}, 1);
    QVERIFY(isNear(columns.mean[0], 10 * std::log10((1 + 10 + 100 + 1000) / 4.0)));
    QCOMPARE(columns.maximum[0], 30.0f);
}

void TestTraceColumns::keepsTheMeanAtOrBelowTheMaximum()
{
    const ScanFrame frame = ScanPictures::noisyFrame(65536);
    TraceColumns columns;
    for (const int width : {1, 17, 1200, 65536}) {
        columns.fill(frame, {97.5e6, 99.5e6}, width);
        for (int x = 0; x < width; ++x)
            QVERIFY(columns.mean[x] <= columns.maximum[x]);
    }
}

void TestTraceColumns::interpolatesWhereBinsAreWiderThanPixels()
{
    TraceColumns columns;
    columns.fill(plainFrame({0, 10}), {0, 1}, 10);
    for (int x = 1; x < 9; ++x)
        QVERIFY(isNear(columns.maximum[x], x + 0.5, 0.6));
    for (int x = 1; x < 10; ++x)
        QVERIFY(columns.maximum[x] >= columns.maximum[x - 1]);
    columns.fill(plainFrame({0, 10}), {0.25, 0.75}, 5);
    QVERIFY(isNear(columns.maximum[2], 5));
    QCOMPARE(columns.mean[2], columns.maximum[2]);
}

void TestTraceColumns::isEmptyOutsideOfTheFrame()
{
    TraceColumns columns;
    columns.fill(plainFrame({1, 2, 3, 4}), {-10, 10}, 20);
    QVERIFY(std::isnan(columns.maximum[0]));
    QVERIFY(std::isnan(columns.mean[19]));
    QVERIFY(!std::isnan(columns.maximum[11]));
    columns.fill(plainFrame({1, 2, 3, 4}), {100, 200}, 20);
    for (int x = 0; x < 20; ++x)
        QVERIFY(std::isnan(columns.maximum[x]) && std::isnan(columns.mean[x]));
}

void TestTraceColumns::countsEmptyBinsForNothing()
{
    TraceColumns columns;
    columns.fill(plainFrame({20, LevelPower::none, infinite, -infinite}), {-0.5, 3.5}, 1);
    QCOMPARE(columns.maximum[0], 20.0f);
    QVERIFY(isNear(columns.mean[0], 20));
    columns.fill(plainFrame({LevelPower::none, infinite, -infinite}), {-0.5, 2.5}, 1);
    QVERIFY(std::isnan(columns.maximum[0]) && std::isnan(columns.mean[0]));
    // Also where columns interpolate: the empty half shows nothing, the other its own level.
    columns.fill(plainFrame({20, LevelPower::none}), {0, 1}, 100);
    QCOMPARE(columns.maximum[20], 20.0f);
    QVERIFY(std::isnan(columns.maximum[80]));
}

void TestTraceColumns::takesTheFullBinAtTheEnds()
{
    TraceColumns columns;
    columns.fill(plainFrame({5, 5, 5}), {-0.5, 2.5}, 300);
    for (int x = 0; x < 300; ++x)
        QCOMPARE(columns.maximum[x], 5.0f);
    columns.fill(plainFrame({5}), {-0.5, 0.5}, 10);
    for (int x = 0; x < 10; ++x)
        QCOMPARE(columns.maximum[x], 5.0f);
}

void TestTraceColumns::isEmptyWithoutMeaning_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    const double infinity = std::numeric_limits<double>::infinity();
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("no step") << 0.0 << 0.0 << 0.0 << 1.0;
    QTest::newRow("negative step") << 0.0 << -1.0 << 0.0 << 1.0;
    QTest::newRow("step is no number") << 0.0 << nothing << 0.0 << 1.0;
    QTest::newRow("start is no number") << nothing << 1.0 << 0.0 << 1.0;
    QTest::newRow("endless start") << infinity << 1.0 << 0.0 << 1.0;
    QTest::newRow("turned view") << 0.0 << 1.0 << 1.0 << 0.0;
    QTest::newRow("endless view") << 0.0 << 1.0 << -infinity << infinity;
    QTest::newRow("view is no number") << 0.0 << 1.0 << nothing << 1.0;
}

void TestTraceColumns::isEmptyWithoutMeaning()
{
    QFETCH(double, start);
    QFETCH(double, step);
    QFETCH(double, from);
    QFETCH(double, to);
    ScanFrame frame = plainFrame({1, 2, 3});
    frame.start = start;
    frame.step = step;
    TraceColumns columns;
    columns.fill(frame, {from, to}, 5);
    QCOMPARE(columns.maximum.size(), 5);
    QCOMPARE(columns.mean.size(), 5);
    for (int x = 0; x < 5; ++x)
        QVERIFY(std::isnan(columns.maximum[x]) && std::isnan(columns.mean[x]));
    columns.fill(frame, {from, to}, 0);
    QVERIFY(columns.maximum.isEmpty());
    columns.fill(frame, {from, to}, -3);
    QVERIFY(columns.mean.isEmpty());
    columns.fill(ScanFrame(), {0, 1}, 3);
    QVERIFY(std::isnan(columns.maximum[2]));
}

void TestTraceColumns::findsTheSameMaximumAlone()
{
    const ScanFrame frame = ScanPictures::noisyFrame(5000);
    for (const int width : {7, 1200, 9000}) {
        TraceColumns both;
        both.fill(frame, {97.6e6, 99.3e6}, width);
        TraceColumns alone;
        alone.fillMaximum(frame, {97.6e6, 99.3e6}, width);
        for (int x = 0; x < width; ++x)
            QCOMPARE(alone.maximum[x], both.maximum[x]);
        QVERIFY(alone.mean.isEmpty());
    }
}

void TestTraceColumns::keepsItsBinsAtHighFrequencies()
{
    ScanFrame frame = plainFrame(QVector<float>(8192, 0));
    frame.start = 40e9;
    frame.step = 0.5;
    frame.levels[8000] = 60;
    TraceColumns columns;
    columns.fill(frame, {40e9, 40e9 + 4096}, 1024);
    QCOMPARE(columns.maximum[1000], 60.0f);
    QCOMPARE(columns.maximum[999], 0.0f);
}

QTEST_APPLESS_MAIN(TestTraceColumns)
#include "tst_tracecolumns.moc"
