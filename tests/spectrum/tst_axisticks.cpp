#include <QtTest>
#include <limits>

#include "scanpictures.h"
#include "spectrum/axispainter.h"
#include "spectrum/axisticks.h"
#include "spectrum/scantext.h"

namespace {

QStringList labels(const AxisTicks& ticks)
{
    QStringList result;
    for (const AxisTick& tick : ticks.ticks) {
        if (tick.major)
            result.append(tick.label);
    }
    return result;
}

}  // namespace

class TestAxisTicks : public QObject
{
    Q_OBJECT
private slots:
    void marksRoundSteps_data();
    void marksRoundSteps();
    void staysInsideOfTheRangeAndAscends_data();
    void staysInsideOfTheRangeAndAscends();
    void marksNothingOfRangesWithoutMeaning_data();
    void marksNothingOfRangesWithoutMeaning();
    void givesMinorTicksNoLabel();
    void labelsNeverOverlapAtAnyWidth_data();
    void labelsNeverOverlapAtAnyWidth();
    void levelLabelsKeepTheirDistance();
    void paintsAxesOfNoSizeAndOfOnePixel();
    void writesNumbersForPeople_data();
    void writesNumbersForPeople();
    void writesTimesAgesAndDifferences();
    void drawsTheThresholdLowerByTheRatioOfBandwidths();
};

void TestAxisTicks::marksRoundSteps_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("stop");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<bool>("prefixes");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("megahertz") << 97.5e6 << 99.5e6 << 4 << true << "MHz"
                               << QStringList{"97.5", "98.0", "98.5", "99.0", "99.5"};
    QTest::newRow("steps of two") << 0.0 << 1000.0 << 5 << true << "kHz"
                                  << QStringList{"0.0", "0.2", "0.4", "0.6", "0.8", "1.0"};
    QTest::newRow("kilohertz") << 10e3 << 20e3 << 2 << true << "kHz" << QStringList{"10", "15", "20"};
    QTest::newRow("hertz") << -50.0 << 50.0 << 2 << true << "Hz" << QStringList{"-50", "0", "50"};
    QTest::newRow("gigahertz, narrow")
        << 2.4e9 << 2.4e9 + 200 << 2 << true << "GHz" << QStringList{"2.4000000", "2.4000001", "2.4000002"};
    QTest::newRow("terahertz") << 0.0 << 4e12 << 2 << true << "THz" << QStringList{"0", "2", "4"};
    QTest::newRow("levels") << -20.0 << 80.0 << 5 << false << "Hz"
                            << QStringList{"-20", "0", "20", "40", "60", "80"};
    QTest::newRow("fine levels") << 1.0 << 2.0 << 2 << false << "Hz" << QStringList{"1.0", "1.5", "2.0"};
    QTest::newRow("levels take no prefix")
        << 0.0 << 2000.0 << 2 << false << "Hz" << QStringList{"0", "1000", "2000"};
    QTest::newRow("turned over") << 80.0 << -20.0 << 2 << false << "Hz" << QStringList{"0", "50"};
    QTest::newRow("across zero, never minus zero")
        << -0.3 << 0.3 << 6 << false << "Hz"
        << QStringList{"-0.3", "-0.2", "-0.1", "0.0", "0.1", "0.2", "0.3"};
}

void TestAxisTicks::marksRoundSteps()
{
    QFETCH(double, start);
    QFETCH(double, stop);
    QFETCH(int, wanted);
    QFETCH(bool, prefixes);
    QFETCH(QString, unit);
    QFETCH(QStringList, expected);
    const AxisTicks ticks = AxisTicks::between(start, stop, wanted, QStringLiteral("Hz"), prefixes);
    QCOMPARE(labels(ticks), expected);
    QCOMPARE(ticks.unit, unit);
}

void TestAxisTicks::staysInsideOfTheRangeAndAscends_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("stop");
    QTest::newRow("odd") << 97.512345e6 << 99.4871e6;
    QTest::newRow("narrow and high") << 40e9 << 40e9 + 1;
    QTest::newRow("very wide") << -1e15 << 3e15;
    QTest::newRow("negative") << -7e6 << -6.9e6;
    QTest::newRow("small") << 1e-6 << 3e-6;
    QTest::newRow("huge") << 1e290 << 1e300;
}

void TestAxisTicks::staysInsideOfTheRangeAndAscends()
{
    QFETCH(double, start);
    QFETCH(double, stop);
    for (int wanted = 1; wanted < 40; ++wanted) {
        const AxisTicks ticks = AxisTicks::between(start, stop, wanted, QStringLiteral("Hz"), true);
        QVERIFY(!ticks.ticks.isEmpty());
        QVERIFY(labels(ticks).size() <= wanted + 1);
        QVERIFY(labels(ticks).removeDuplicates() == 0);
        const double room = (stop - start) * 1e-5;
        double before = -std::numeric_limits<double>::infinity();
        for (const AxisTick& tick : ticks.ticks) {
            QVERIFY(tick.value > before && tick.value >= start - room && tick.value <= stop + room);
            before = tick.value;
        }
    }
}

void TestAxisTicks::marksNothingOfRangesWithoutMeaning_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("stop");
    QTest::addColumn<int>("wanted");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("no width") << 5.0 << 5.0 << 5;
    QTest::newRow("no number") << std::nan("") << 5.0 << 5;
    QTest::newRow("endless") << -infinity << 5.0 << 5;
    QTest::newRow("wider than numbers go") << -1.7e308 << 1.7e308 << 5;
    QTest::newRow("too narrow to tell apart") << 1e9 << std::nextafter(1e9, 2e9) << 5;
    QTest::newRow("smallest numbers") << 0.0 << 5e-324 << 5;
    QTest::newRow("none wanted") << 0.0 << 5.0 << 0;
    QTest::newRow("less than none wanted") << 0.0 << 5.0 << -4;
}

void TestAxisTicks::marksNothingOfRangesWithoutMeaning()
{
    QFETCH(double, start);
    QFETCH(double, stop);
    QFETCH(int, wanted);
    QVERIFY(AxisTicks::between(start, stop, wanted, QStringLiteral("Hz"), true).ticks.isEmpty());
    QVERIFY(AxisTicks::between(0, 1, 2000000000, QStringLiteral("Hz"), true).ticks.size() < 2000);
}

void TestAxisTicks::givesMinorTicksNoLabel()
{
    const AxisTicks ticks = AxisTicks::between(0, 10, 2, QStringLiteral("Hz"), true);
    QCOMPARE(ticks.ticks.size(), 11);  // a step of 5 in fifths
    for (const AxisTick& tick : ticks.ticks)
        QCOMPARE(tick.label.isEmpty(), !tick.major);
    QCOMPARE(AxisTicks::between(0, 4, 2, QStringLiteral("Hz"), true).ticks.size(), 9);  // of 2 in quarters
}

void TestAxisTicks::labelsNeverOverlapAtAnyWidth_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("stop");
    QTest::newRow("usual") << 97.5e6 << 99.5e6;
    QTest::newRow("narrow: long labels") << 2.4123456e9 << 2.4123456e9 + 321;
    QTest::newRow("wide") << 0.0 << 6e9;
    QTest::newRow("negative") << -5e6 << 5e6;
}

void TestAxisTicks::labelsNeverOverlapAtAnyWidth()
{
    QFETCH(double, start);
    QFETCH(double, stop);
    const QFont font = ScanPictures::face();
    const QFontMetricsF metrics(font);
    for (int width = 1; width < 1500; width += 13) {
        const AxisTicks ticks = AxisPainter::frequencyTicks({start, stop}, width, font);
        double behind = -1e9;
        for (const AxisTick& tick : ticks.ticks) {
            if (!tick.major)
                continue;
            const double x = (tick.value - start) / (stop - start) * width;
            const double half = metrics.horizontalAdvance(tick.label) / 2;
            QVERIFY(x - half >= behind + 3);
            behind = x + half;
        }
        if (width > 400)
            QVERIFY(labels(ticks).size() >= 2);
    }
}

void TestAxisTicks::levelLabelsKeepTheirDistance()
{
    const QFont font = ScanPictures::face();
    const double line = QFontMetricsF(font).height();
    for (int height = 1; height < 800; height += 7) {
        for (const int wanted : {0, 4, 50}) {
            const AxisTicks ticks = AxisPainter::levelTicks(-20, 80, height, font, wanted);
            double before = -1e9;
            for (const AxisTick& tick : ticks.ticks) {
                if (!tick.major)
                    continue;
                const double y = (tick.value + 20) / 100 * height;
                QVERIFY(y - before >= line);
                before = y;
            }
        }
    }
    QCOMPARE(AxisPainter::levelTicks(-20, 80, 400, font).unit, QStringLiteral("dBµV"));
}

void TestAxisTicks::paintsAxesOfNoSizeAndOfOnePixel()
{
    QImage image = ScanPictures::canvas(QSize(50, 50), 1);
    QPainter painter(&image);
    const QPalette palette = ScanPictures::lightPalette();
    for (const int size : {0, 1, 5, 30}) {
        AxisPainter::paintFrequency(painter, QRect(10, 10, size, size), {1e6, 2e6}, palette,
                                    ScanPictures::face());
        AxisPainter::paintLevel(painter, QRect(10, 10, size, size), -20, 80, palette, ScanPictures::face());
        AxisPainter::paintFrequency(painter, QRect(10, 10, size, size), {2e6, 1e6}, palette,
                                    ScanPictures::face());
        AxisPainter::paintLevel(painter, QRect(10, 10, size, size), 80, -20, palette, ScanPictures::face());
    }
    painter.end();
    for (int i = 0; i < 50; ++i) {
        QCOMPARE(image.pixelColor(i, 9), QColor(Qt::magenta));
        QCOMPARE(image.pixelColor(9, i), QColor(Qt::magenta));
        QCOMPARE(image.pixelColor(i, 40), QColor(Qt::magenta));
        QCOMPARE(image.pixelColor(40, i), QColor(Qt::magenta));
    }
}

void TestAxisTicks::writesNumbersForPeople_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("resolution");
    QTest::addColumn<QString>("text");
    QTest::newRow("megahertz") << 98.5125e6 << 100.0 << "98.5125 MHz";
    QTest::newRow("coarse") << 98.5125e6 << 1e6 << "99 MHz";
    QTest::newRow("hertz") << 12.0 << 1.0 << "12 Hz";
    QTest::newRow("tenths") << 12.34 << 0.1 << "12.3 Hz";
    QTest::newRow("kilohertz") << 12500.0 << 100.0 << "12.5 kHz";
    QTest::newRow("negative") << -12500.0 << 100.0 << "-12.5 kHz";
    QTest::newRow("rounded up to the next prefix") << 999999.6 << 1.0 << "1.000000 MHz";
    QTest::newRow("no minus zero") << -0.2 << 1.0 << "0 Hz";
    QTest::newRow("unknown resolution") << 1234.0 << 0.0 << "1.234 kHz";
    QTest::newRow("resolution is no number") << 1234.0 << std::nan("") << "1.234 kHz";
    QTest::newRow("no number") << std::nan("") << 1.0 << "---";
    QTest::newRow("endless") << std::numeric_limits<double>::infinity() << 1.0 << "---";
}

void TestAxisTicks::writesNumbersForPeople()
{
    QFETCH(double, value);
    QFETCH(double, resolution);
    QFETCH(QString, text);
    QCOMPARE(siText(value, resolution, QStringLiteral("Hz")), text);
}

void TestAxisTicks::writesTimesAgesAndDifferences()
{
    QCOMPARE(ScanText::level(45.23), QStringLiteral("45.2 dBµV"));
    QCOMPARE(ScanText::level(std::nan("")), QStringLiteral("--- dBµV"));
    QCOMPARE(ScanText::time(1700000002590000), QStringLiteral("22:13:22.5 UTC"));
    QCOMPARE(ScanText::age(3.9), QStringLiteral("3 s"));
    QCOMPARE(ScanText::age(-1), QStringLiteral("0 s"));
    QCOMPARE(ScanText::age(600), QStringLiteral("10 min"));
    QCOMPARE(ScanText::age(7300), QStringLiteral("2 h"));
    QCOMPARE(ScanText::delta(12500, -3.2, 100), QStringLiteral("+12.5 kHz  -3.2 dB"));
    QCOMPARE(ScanText::delta(-12500, 3.2, 100), QStringLiteral("-12.5 kHz  +3.2 dB"));
    QCOMPARE(ScanText::delta(0, std::nan(""), 100), QStringLiteral("+0 Hz  --- dB"));
    QCOMPARE(ScanText::cursor(98.5e6, 1e3, 12, 1700000002590000),
             QStringLiteral("98.500 MHz  12.0 dBµV  22:13:22.5 UTC"));
    const ScanFrame frame = ScanPictures::emptyFrame(10, 7);
    QCOMPARE(ScanText::levelAt(frame, 98e6), 7.0f);
    QVERIFY(std::isnan(ScanText::levelAt(frame, 97.3e6)));
    QVERIFY(std::isnan(ScanText::levelAt(frame, std::nan(""))));
    QVERIFY(std::isnan(ScanText::levelAt(ScanFrame(), 98e6)));
    QVERIFY(std::isnan(ScanText::levelNear(ScanFrame(), 98e6, 1e6)));
    QVERIFY(std::isnan(ScanText::levelNear(frame, 97.3e6, 1e5)));
}

void TestAxisTicks::drawsTheThresholdLowerByTheRatioOfBandwidths()
{
    QCOMPARE(ScanText::thresholdLine(30, 150e3, 1500), 10.0);
    QCOMPARE(ScanText::thresholdLine(30, 1500, 1500), 30.0);
    QCOMPARE(ScanText::thresholdLine(30, 0, 1500), 30.0);
    QCOMPARE(ScanText::thresholdLine(30, 150e3, 0), 30.0);
    QCOMPARE(ScanText::thresholdLine(30, std::nan(""), 1500), 30.0);
}

QTEST_MAIN(TestAxisTicks)
#include "tst_axisticks.moc"
