#include <QtTest>
#include <limits>

#include "scanpictures.h"
#include "spectrum/peaktable.h"

namespace {

const ScanRange wholeView{97.5e6, 99.5e6};

// A tone at `bin`, also between bins, as wide as a window's main lobe.
void addTone(ScanFrame& frame, double bin, double level, double width = 1.3)
{
    for (int i = 0; i < frame.levels.size(); ++i) {
        const double distance = (i - bin) / width;
        const double tone = level - 3 * distance * distance;
        frame.levels[i] = static_cast<float>(std::max(static_cast<double>(frame.levels[i]), tone));
    }
}

double frequencyOf(const ScanFrame& frame, double bin)
{
    return frame.start + bin * frame.step;
}

}  // namespace

class TestPeakTable : public QObject
{
    Q_OBJECT
private slots:
    void findsATonesFrequencyAndLevelBetweenBins_data();
    void findsATonesFrequencyAndLevelBetweenBins();
    void givesTheStrongestFirstAndNotMoreThanAsked();
    void countsNoRippleAsAPeak();
    void separatesTwoSignalsByTheValleyBetweenThem();
    void keepsTheStrongerOfTwoThatAreTooClose();
    void looksOnlyIntoTheView();
    void countsNoFlankThatRisesOutsideOfTheView();
    void findsSignalsInTheOutermostBins();
    void takesTheMiddleOfAFlatTop();
    void leavesOutWhatIsTooWeak();
    void passesOverEmptyBins();
    void findsNothingWithoutMeaning();
    void takesOnePassOverAStaircase();
};

void TestPeakTable::findsATonesFrequencyAndLevelBetweenBins_data()
{
    QTest::addColumn<double>("bin");
    for (const double bin : {500.0, 500.1, 500.25, 500.49, 500.5, 500.75, 500.9})
        QTest::newRow(qPrintable(QString::number(bin))) << bin;
}

void TestPeakTable::findsATonesFrequencyAndLevelBetweenBins()
{
    QFETCH(double, bin);
    ScanFrame frame = ScanPictures::emptyFrame(1000, -10);
    addTone(frame, bin, 47.3);
    const QVector<ScanPeak> peaks = findPeaks(frame, wholeView);
    QCOMPARE(peaks.size(), 1);
    if (bin != 500.5) {  // two bins of the same level: their middle, their level
        QVERIFY(std::abs(peaks[0].level - 47.3f) < 0.01f);
    }
    QVERIFY(std::abs(peaks[0].frequency - frequencyOf(frame, bin)) < frame.step * 0.01);
    QVERIFY(std::abs(peaks[0].level - 47.3f) < 1);
}

void TestPeakTable::givesTheStrongestFirstAndNotMoreThanAsked()
{
    ScanFrame frame = ScanPictures::emptyFrame(2000, -10);
    for (int i = 0; i < 20; ++i)
        addTone(frame, 50 + i * 90, 20 + (i * 7) % 20);
    PeakSearch search;
    search.count = 5;
    const QVector<ScanPeak> peaks = findPeaks(frame, wholeView, search);
    QCOMPARE(peaks.size(), 5);
    for (int i = 0; i < 5; ++i)
        QVERIFY(std::abs(peaks[i].level - static_cast<float>(39 - i)) < 0.01f);
    search.count = 100;
    QCOMPARE(findPeaks(frame, wholeView, search).size(), 20);
    search.count = 0;
    QVERIFY(findPeaks(frame, wholeView, search).isEmpty());
}

void TestPeakTable::countsNoRippleAsAPeak()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, 0);
    for (int i = 0; i < 1000; ++i)
        frame.levels[i] = static_cast<float>(i % 7) * 0.8f;
    addTone(frame, 300, 30);
    PeakSearch search;
    search.prominence = 6;
    QCOMPARE(findPeaks(frame, wholeView, search).size(), 1);
    search.prominence = 4;
    search.count = 1000;
    QVERIFY(findPeaks(frame, wholeView, search).size() > 100);
    // Flat and rising traces have no peak at all inside.
    QVERIFY(findPeaks(ScanPictures::emptyFrame(1000, 5), wholeView).isEmpty());
}

void TestPeakTable::separatesTwoSignalsByTheValleyBetweenThem()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, 0);
    for (int i = 400; i < 421; ++i)
        frame.levels[i] = 30;
    frame.levels[405] = 40;
    frame.levels[415] = 38;
    PeakSearch search;
    search.prominence = 7;
    QCOMPARE(findPeaks(frame, wholeView, search).size(), 2);
    search.prominence = 9;
    const QVector<ScanPeak> peaks = findPeaks(frame, wholeView, search);
    QCOMPARE(peaks.size(), 1);
    QCOMPARE(peaks[0].bin, 405);
}

void TestPeakTable::keepsTheStrongerOfTwoThatAreTooClose()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, -30);
    addTone(frame, 400, 30);
    addTone(frame, 420, 35);
    addTone(frame, 440, 30);
    PeakSearch search;
    search.minimumDistance = frame.step * 25;
    const QVector<ScanPeak> peaks = findPeaks(frame, wholeView, search);
    QCOMPARE(peaks.size(), 1);
    QCOMPARE(peaks[0].bin, 420);
    search.minimumDistance = frame.step * 15;
    QCOMPARE(findPeaks(frame, wholeView, search).size(), 3);
}

void TestPeakTable::looksOnlyIntoTheView()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, -30);
    addTone(frame, 200, 30);
    addTone(frame, 800, 20);
    const QVector<ScanPeak> peaks = findPeaks(frame, {98.5e6, 99.5e6});
    QCOMPARE(peaks.size(), 1);
    QCOMPARE(peaks[0].bin, 800);
    QVERIFY(findPeaks(frame, {10e6, 20e6}).isEmpty());
}

void TestPeakTable::countsNoFlankThatRisesOutsideOfTheView()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, -30);
    addTone(frame, 500, 50, 10);
    QVERIFY(findPeaks(frame, {97.5e6, frequencyOf(frame, 490)}).isEmpty());
    QVERIFY(findPeaks(frame, {frequencyOf(frame, 510), 99.5e6}).isEmpty());
}

void TestPeakTable::findsSignalsInTheOutermostBins()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, -30);
    frame.levels[0] = 20;
    frame.levels[999] = 30;
    const QVector<ScanPeak> peaks = findPeaks(frame, wholeView);
    QCOMPARE(peaks.size(), 2);
    QCOMPARE(peaks[0].bin, 999);
    QCOMPARE(peaks[1].bin, 0);
    QCOMPARE(peaks[1].frequency, frame.start);
}

void TestPeakTable::takesTheMiddleOfAFlatTop()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, -30);
    for (int i = 500; i <= 510; ++i)
        frame.levels[i] = 20;
    const QVector<ScanPeak> peaks = findPeaks(frame, wholeView);
    QCOMPARE(peaks.size(), 1);
    QCOMPARE(peaks[0].frequency, frequencyOf(frame, 505));
    QCOMPARE(peaks[0].level, 20.0f);
}

void TestPeakTable::leavesOutWhatIsTooWeak()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, -30);
    addTone(frame, 200, 30);
    addTone(frame, 800, 20);
    PeakSearch search;
    search.minimumLevel = 25;
    QCOMPARE(findPeaks(frame, wholeView, search).size(), 1);
    search.minimumLevel = 31;
    QVERIFY(findPeaks(frame, wholeView, search).isEmpty());
}

void TestPeakTable::passesOverEmptyBins()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, -30);
    addTone(frame, 200, 30);
    frame.levels[199] = std::numeric_limits<float>::quiet_NaN();
    frame.levels[700] = std::numeric_limits<float>::infinity();
    const QVector<ScanPeak> peaks = findPeaks(frame, wholeView);
    QVERIFY(!peaks.isEmpty());
    QCOMPARE(peaks[0].bin, 200);
    QCOMPARE(peaks[0].level, 30.0f);
    for (const ScanPeak& peak : peaks)
        QVERIFY(std::isfinite(peak.level) && std::isfinite(peak.frequency));
    frame.levels.fill(std::numeric_limits<float>::quiet_NaN());
    QVERIFY(findPeaks(frame, wholeView).isEmpty());
}

void TestPeakTable::findsNothingWithoutMeaning()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, -30);
    addTone(frame, 200, 30);
    QVERIFY(findPeaks(frame, {2, 1}).isEmpty());
    QVERIFY(findPeaks(frame, {std::nan(""), 1}).isEmpty());
    QVERIFY(findPeaks(ScanFrame(), wholeView).isEmpty());
    frame.step = 0;
    QVERIFY(findPeaks(frame, wholeView).isEmpty());
}

void TestPeakTable::takesOnePassOverAStaircase()
{
    // Every second bin is a peak higher than all before: what costs a search for valleys most.
    ScanFrame frame = ScanPictures::emptyFrame(1000000, 0);
    for (int i = 0; i < frame.levels.size(); ++i)
        frame.levels[i] = static_cast<float>(i) * 1e-4f + (i % 2 == 0 ? 20.0f : 0.0f);
    PeakSearch search;
    search.count = 3;
    const QVector<ScanPeak> peaks = findPeaks(frame, wholeView, search);
    QCOMPARE(peaks.size(), 3);
    QCOMPARE(peaks[0].bin, 999998);
}

QTEST_APPLESS_MAIN(TestPeakTable)
#include "tst_peaktable.moc"
