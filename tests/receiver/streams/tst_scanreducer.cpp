#include <QTest>
#include <cmath>

#include "receiver/streams/scanreducer.h"

using namespace Receiver;

namespace {

PanoramaFrame frameOf(const std::vector<float>& mean, qint64 time = 1000000)
{
    PanoramaFrame frame;
    frame.time = time;
    frame.start = 96e6;
    frame.step = 500;
    frame.resolutionBandwidth = 1000;
    frame.mean = mean;
    for (const float level : mean)
        frame.maximum.push_back(level + 6);
    return frame;
}

Link::StreamRequest requestOf(quint32 points, double averagingSeconds = 0)
{
    Link::StreamRequest request;
    request.points = points;
    request.averagingSeconds = averagingSeconds;
    return request;
}

QVector<float> reduced(ScanReducer& reducer, const PanoramaFrame& frame)
{
    return Link::unpackLevels(reducer.reduce(frame).levels);
}

}  // namespace

class TestScanReducer : public QObject
{
    Q_OBJECT
private slots:
    void aFrameThatFitsIsSentAsItIs();
    void theDetectorChoosesTheLevels();
    void tooManyBinsBecomeTheHighestOfEachGroup_data();
    void tooManyBinsBecomeTheHighestOfEachGroup();
    void aGroupStandsInTheMiddleOfItsBins();
    void averagingIsOfPowerWithItsTimeConstant();
    void averagingBeginsAnewWithOtherBins_data();
    void averagingBeginsAnewWithOtherBins();
    void averagingComesBeforeGrouping();
    void averagedLevelsStayFinite();
};

void TestScanReducer::aFrameThatFitsIsSentAsItIs()
{
    ScanReducer reducer(requestOf(4));
    const Link::ScanData data = reducer.reduce(frameOf({1, -200, 3.5, 80}));
    QCOMPARE(Link::unpackLevels(data.levels), QVector<float>({1, -200, 3.5, 80}));
    QCOMPARE(data.time, qint64(1000000));
    QCOMPARE(data.start, 96e6);
    QCOMPARE(data.step, 500.0);
    QCOMPARE(data.resolutionBandwidth, 1000.0);
}

void TestScanReducer::theDetectorChoosesTheLevels()
{
    Link::StreamRequest request = requestOf(2);
    request.detector = Link::StreamDetector::Maximum;
    ScanReducer reducer(request);
    QCOMPARE(reduced(reducer, frameOf({1, 2})), QVector<float>({7, 8}));
}

void TestScanReducer::tooManyBinsBecomeTheHighestOfEachGroup_data()
{
    QTest::addColumn<int>("bins");
    QTest::addColumn<uint>("points");
    QTest::addColumn<QVector<float>>("levels");
    QTest::newRow("one too many") << 5 << 4u << QVector<float>({1, 3, 4});
    QTest::newRow("half") << 6 << 3u << QVector<float>({1, 3, 5});
    QTest::newRow("one point") << 4 << 1u << QVector<float>({3});
    QTest::newRow("a rest") << 7 << 3u << QVector<float>({2, 5, 6});
    QTest::newRow("just so") << 4 << 4u << QVector<float>({0, 1, 2, 3});
    QTest::newRow("no bins") << 0 << 4u << QVector<float>();
}

void TestScanReducer::tooManyBinsBecomeTheHighestOfEachGroup()
{
    QFETCH(int, bins);
    QFETCH(uint, points);
    std::vector<float> rising;
    for (int i = 0; i < bins; ++i)
        rising.push_back(float(i));
    ScanReducer reducer(requestOf(points));
    QTEST(reduced(reducer, frameOf(rising)), "levels");
}

void TestScanReducer::aGroupStandsInTheMiddleOfItsBins()
{
    ScanReducer reducer(requestOf(2));
    const Link::ScanData data = reducer.reduce(frameOf({0, 0, 9, 0, 0, 0}));
    QCOMPARE(data.step, 1500.0);
    QCOMPARE(data.start, 96e6 + 500);
    QCOMPARE(data.resolutionBandwidth, 1000.0);
    QCOMPARE(Link::unpackLevels(data.levels), QVector<float>({9, 0}));
}

void TestScanReducer::averagingIsOfPowerWithItsTimeConstant()
{
    constexpr double seconds = 0.5;
    ScanReducer reducer(requestOf(1, seconds));
    QCOMPARE(qRound(reduced(reducer, frameOf({40}, 0))[0]), 40);
    // Steps of any length make the same curve.
    double time = 0;
    for (const double step : {0.033, 0.1, 0.01, 0.4, 0.033, 1.0}) {
        time += step;
        const float level = reduced(reducer, frameOf({-100}, qint64(time * 1e6)))[0];
        const double expected = 40 + 10 * std::log10(std::exp(-time / seconds));
        QVERIFY2(std::abs(double(level) - expected) < 0.05,
                 qPrintable(QStringLiteral("%1, not %2").arg(level).arg(expected)));
    }
}

void TestScanReducer::averagingBeginsAnewWithOtherBins_data()
{
    QTest::addColumn<int>("bins");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("step");
    QTest::addColumn<qint64>("time");
    QTest::newRow("another number of bins") << 3 << 96e6 << 500.0 << qint64(1010000);
    QTest::newRow("another start") << 2 << 97e6 << 500.0 << qint64(1010000);
    QTest::newRow("another step") << 2 << 96e6 << 250.0 << qint64(1010000);
    QTest::newRow("time goes back") << 2 << 96e6 << 500.0 << qint64(5000);
    QTest::newRow("time stands still") << 2 << 96e6 << 500.0 << qint64(1000000);
}

void TestScanReducer::averagingBeginsAnewWithOtherBins()
{
    QFETCH(int, bins);
    QFETCH(double, start);
    QFETCH(double, step);
    QFETCH(qint64, time);
    ScanReducer reducer(requestOf(10, 10));
    reduced(reducer, frameOf({60, 60}));
    PanoramaFrame frame = frameOf(std::vector<float>(std::size_t(bins), 10.0f), time);
    frame.start = start;
    frame.step = step;
    for (const float level : reduced(reducer, frame))
        QVERIFY2(std::abs(level - 10) < 0.01f, qPrintable(QString::number(level)));
}

void TestScanReducer::averagingComesBeforeGrouping()
{
    // Two bins of one group loud by turns: averaged first, neither is as loud as one frame.
    ScanReducer reducer(requestOf(1, 1));
    float level = 0;
    for (int i = 0; i < 10000; ++i) {
        const bool even = i % 2 == 0;
        level = reduced(reducer, frameOf({even ? 50.0f : -50.0f, even ? -50.0f : 50.0f}, 1000 * (i + 1)))[0];
    }
    QVERIFY2(std::abs(level - 47) < 0.2f, qPrintable(QString::number(level)));
}

void TestScanReducer::averagedLevelsStayFinite()
{
    ScanReducer reducer(requestOf(2, 1));
    for (int i = 0; i < 10; ++i) {
        for (const float level : reduced(reducer, frameOf({-320, 250}, 100000 * (i + 1))))
            QVERIFY(std::isfinite(level));
    }
}

QTEST_GUILESS_MAIN(TestScanReducer)
#include "tst_scanreducer.moc"
