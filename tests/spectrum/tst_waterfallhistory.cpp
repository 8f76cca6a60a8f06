#include <QtTest>
#include <limits>

#include "scanpictures.h"
#include "spectrum/waterfallhistory.h"

namespace {

const ScanRange wholeView{97.5e6, 99.5e6};

// The colour of a level between -20 and 80 dB.
QRgb colorOf(float level, const ScanPalette& palette = ScanPalette())
{
    return palette.color(static_cast<int>(std::min(255.0f, (level + 20) / 100 * 256)));
}

QImage drawn(WaterfallHistory& history, const QSize& size, double scale = 1)
{
    QImage image = ScanPictures::canvas(size, scale);
    QPainter painter(&image);
    history.draw(painter, QRect(QPoint(0, 0), size));
    return image;
}

// Every pixel of two histories with the same rows, one of them painted at once.
void comparePictures(WaterfallHistory& history, const QSize& size)
{
    WaterfallHistory fresh(history.rows());
    for (int i = history.filled() - 1; i >= 0; --i)
        fresh.add(*history.row(i));
    fresh.setView(wholeView);
    const QImage picture = drawn(history, size);
    const QImage expected = drawn(fresh, size);
    QCOMPARE(picture, expected);
}

}  // namespace

class TestWaterfallHistory : public QObject
{
    Q_OBJECT
private slots:
    void putsTheNewestRowOnTop();
    void goesRoundWithoutLosingItsOrder();
    void paintsOneLineForANewRow();
    void recoloursTheHistoryWhenTheLevelsChange();
    void recoloursTheHistoryWhenTheViewChanges();
    void recoloursTheHistoryWhenThePaletteChangesOrGoesGrey();
    void neverLosesAOneBinSignal();
    void keepsTheHighestOfWideRowsAndTheirPlace();
    void staysWithinItsMemory();
    void keepsTheNewestWhenItShrinksAndAllWhenItGrows();
    void leavesEmptyBinsAndBadRowsEmpty();
    void placesRowsOfOtherBinsWhereTheyWere();
    void ignoresLevelRangesWithoutMeaning_data();
    void ignoresLevelRangesWithoutMeaning();
    void drawsOneRowInOneDevicePixel_data();
    void drawsOneRowInOneDevicePixel();
    void isEmptyAfterClearing();
    void survivesSizesOfNothing();
};

void TestWaterfallHistory::putsTheNewestRowOnTop()
{
    WaterfallHistory history(10);
    history.setView(wholeView);
    for (int i = 0; i < 3; ++i)
        history.add(ScanPictures::emptyFrame(100, static_cast<float>(i * 20)));
    const QImage image = drawn(history, QSize(50, 10));
    QCOMPARE(image.pixel(20, 0), colorOf(40));
    QCOMPARE(image.pixel(20, 1), colorOf(20));
    QCOMPARE(image.pixel(20, 2), colorOf(0));
    QCOMPARE(image.pixel(20, 3), qRgb(0, 0, 0));
    QCOMPARE(history.row(0)->levels.first(), 40.0f);
    QCOMPARE(history.row(2)->levels.first(), 0.0f);
    QVERIFY(!history.row(3));
    QVERIFY(!history.row(-1));
}

void TestWaterfallHistory::goesRoundWithoutLosingItsOrder()
{
    WaterfallHistory history(7);
    history.setView(wholeView);
    for (int i = 0; i < 40; ++i) {
        history.add(ScanPictures::emptyFrame(100, static_cast<float>(i)));
        const QImage image = drawn(history, QSize(20, 7));
        for (int y = 0; y < 7; ++y)
            QCOMPARE(image.pixel(10, y), y <= i ? colorOf(static_cast<float>(i - y)) : qRgb(0, 0, 0));
    }
    // A picture lower than the ring shows the newest.
    const QImage low = drawn(history, QSize(20, 3));
    QCOMPARE(low.pixel(10, 2), colorOf(37));
}

void TestWaterfallHistory::paintsOneLineForANewRow()
{
    WaterfallHistory history(100);
    history.setView(wholeView);
    drawn(history, QSize(300, 100));
    for (unsigned i = 0; i < 250; ++i) {
        history.takePaintedLines();
        history.add(ScanPictures::noisyFrame(500, i));
        drawn(history, QSize(300, 100));
        QCOMPARE(history.takePaintedLines(), 1);
    }
    drawn(history, QSize(300, 100));
    history.setView(wholeView);
    history.setLevels(-20, 80);
    drawn(history, QSize(300, 100));
    QCOMPARE(history.takePaintedLines(), 0);
}

void TestWaterfallHistory::recoloursTheHistoryWhenTheLevelsChange()
{
    WaterfallHistory history(20);
    history.setView(wholeView);
    for (int i = 0; i < 30; ++i)
        history.add(ScanPictures::emptyFrame(100, static_cast<float>(i)));
    drawn(history, QSize(50, 20));
    history.setLevels(10, 30);
    const QImage image = drawn(history, QSize(50, 20));
    const ScanPalette palette;
    for (int y = 0; y < 20; ++y) {
        const int index = std::clamp(static_cast<int>((29 - y - 10) / 20.0f * 256), 0, 255);
        QCOMPARE(image.pixel(25, y), palette.color(index));
    }
}

void TestWaterfallHistory::recoloursTheHistoryWhenTheViewChanges()
{
    ScanFrame frame = ScanPictures::emptyFrame(1000, 0);
    frame.levels[250] = 60;
    WaterfallHistory history(5);
    history.setView(wholeView);
    for (int i = 0; i < 8; ++i)
        history.add(frame);
    QImage image = drawn(history, QSize(100, 5));
    for (int y = 0; y < 5; ++y)
        QCOMPARE(image.pixel(25, y), colorOf(60));
    // 97.9 to 98.1 MHz: the bin is twenty pixels wide and in the middle.
    history.setView({97.9e6, 98.1e6});
    image = drawn(history, QSize(100, 5));
    for (int y = 0; y < 5; ++y) {
        QCOMPARE(image.pixel(50, y), colorOf(60));
        QCOMPARE(image.pixel(45, y), colorOf(0));
        QCOMPARE(image.pixel(55, y), colorOf(0));
    }
}

void TestWaterfallHistory::recoloursTheHistoryWhenThePaletteChangesOrGoesGrey()
{
    WaterfallHistory history(5);
    history.setView(wholeView);
    for (int i = 0; i < 5; ++i)
        history.add(ScanPictures::emptyFrame(100, 42));
    drawn(history, QSize(50, 5));
    history.setPalette(ScanPalette(ScanPalette::Ocean));
    const QRgb ocean = colorOf(42, ScanPalette(ScanPalette::Ocean));
    QCOMPARE(drawn(history, QSize(50, 5)).pixel(10, 4), ocean);
    history.setGreyed(true);
    QCOMPARE(drawn(history, QSize(50, 5)).pixel(10, 4), qRgb(qGray(ocean), qGray(ocean), qGray(ocean)));
    history.setGreyed(false);
    QCOMPARE(drawn(history, QSize(50, 5)).pixel(10, 4), ocean);
}

void TestWaterfallHistory::neverLosesAOneBinSignal()
{
    WaterfallHistory history(1);
    history.setView(wholeView);
    for (const int bins : {1000, 4096, 65536, 1000000}) {
        for (const int part : {0, 1, 333, 500, 998, 999}) {
            ScanFrame frame = ScanPictures::emptyFrame(bins, 0);
            const int bin = static_cast<int>(static_cast<qint64>(bins - 1) * part / 999);
            frame.levels[bin] = 70;
            history.add(frame);
            const QImage image = drawn(history, QSize(400, 1));
            int first = -1;
            for (int x = 399; x >= 0; --x)
                first = image.pixel(x, 0) == colorOf(70) ? x : first;
            QVERIFY(first >= 0);
            QVERIFY(std::abs(first - (bin + 0.5) * 400 / bins) <= 1.5);
        }
    }
}

void TestWaterfallHistory::keepsTheHighestOfWideRowsAndTheirPlace()
{
    WaterfallHistory history(3);
    ScanFrame frame = ScanPictures::emptyFrame(100003, -5);
    frame.levels[77777] = 50;
    frame.levels[100002] = 51;
    frame.levels[5] = std::numeric_limits<float>::infinity();
    history.add(frame);
    const ScanFrame& row = *history.row(0);
    QVERIFY(row.levels.size() <= WaterfallHistory::mostLevels);
    QVERIFY(row.isValid());
    const int at = static_cast<int>(row.levels.indexOf(50.0f));
    QVERIFY(std::abs(row.start + at * row.step - (frame.start + 77777 * frame.step)) <= row.step / 2);
    QCOMPARE(row.levels.last(), 51.0f);
    QCOMPARE(row.levels.first(), -5.0f);
    QVERIFY(std::abs(row.start - row.step / 2 - (frame.start - frame.step / 2)) < frame.step * 1e-3);
}

void TestWaterfallHistory::staysWithinItsMemory()
{
    WaterfallHistory history(8000);
    history.setView(wholeView);
    for (unsigned i = 0; i < 3000; ++i) {
        ScanFrame frame = ScanPictures::emptyFrame(i % 2 == 0 ? 8192 : 20000, 1);
        frame.sequence = i;
        history.add(frame);
        QVERIFY(history.bytes() <= WaterfallHistory::mostBytes);
    }
    QVERIFY(history.filled() > 1000);
    QCOMPARE(history.row(0)->sequence, quint64(2999));
    QCOMPARE(history.row(history.filled() - 1)->sequence, quint64(3000 - history.filled()));
    qint64 bytes = 0;
    for (int i = 0; i < history.filled(); ++i)
        bytes += history.row(i)->levels.size() * 4;
    QCOMPARE(history.bytes(), bytes);
    history.setRows(10);
    QVERIFY(history.bytes() <= qint64(10) * 8192 * 4);
    history.clear();
    QCOMPARE(history.bytes(), 0);
}

void TestWaterfallHistory::keepsTheNewestWhenItShrinksAndAllWhenItGrows()
{
    WaterfallHistory history(10);
    history.setView(wholeView);
    for (int i = 0; i < 25; ++i)
        history.add(ScanPictures::emptyFrame(100, static_cast<float>(i)));
    drawn(history, QSize(30, 10));
    history.setRows(4);
    QCOMPARE(history.filled(), 4);
    QCOMPARE(history.row(3)->levels.first(), 21.0f);
    comparePictures(history, QSize(30, 6));
    history.setRows(9);
    QCOMPARE(history.filled(), 4);
    for (int i = 25; i < 40; ++i) {
        history.add(ScanPictures::emptyFrame(100, static_cast<float>(i)));
        comparePictures(history, QSize(30, 9));
    }
    QCOMPARE(history.row(8)->levels.first(), 31.0f);
    history.setRows(0);
    QCOMPARE(history.rows(), 1);
    QCOMPARE(history.row(0)->levels.first(), 39.0f);
}

void TestWaterfallHistory::leavesEmptyBinsAndBadRowsEmpty()
{
    WaterfallHistory history(5);
    history.setView(wholeView);
    ScanFrame frame = ScanPictures::emptyFrame(100, 40);
    for (int i = 20; i < 40; ++i)
        frame.levels[i] =
            i % 2 == 0 ? std::numeric_limits<float>::quiet_NaN() : std::numeric_limits<float>::infinity();
    history.add(frame);
    ScanFrame bad = ScanPictures::emptyFrame(100, 40);
    bad.step = -1;
    history.add(bad);
    history.add(ScanFrame());
    const QImage image = drawn(history, QSize(100, 5));
    QCOMPARE(image.pixel(10, 2), colorOf(40));
    QCOMPARE(image.pixel(30, 2), qRgb(0, 0, 0));
    QCOMPARE(image.pixel(10, 0), qRgb(0, 0, 0));
    QCOMPARE(image.pixel(10, 1), qRgb(0, 0, 0));
}

void TestWaterfallHistory::placesRowsOfOtherBinsWhereTheyWere()
{
    WaterfallHistory history(5);
    history.setView(wholeView);
    ScanFrame wide = ScanPictures::emptyFrame(200, 0);
    wide.levels[100] = 60;
    ScanFrame narrow = ScanPictures::emptyFrame(500, 0);
    narrow.step /= 4;
    narrow.start = 98.25e6 + narrow.step / 2;
    narrow.levels[250] = 60;
    history.add(wide);
    history.add(narrow);
    const QImage image = drawn(history, QSize(200, 5));
    QCOMPARE(image.pixel(100, 0), colorOf(60));
    QCOMPARE(image.pixel(100, 1), colorOf(60));
    QCOMPARE(image.pixel(10, 0), qRgb(0, 0, 0));
    QCOMPARE(image.pixel(10, 1), colorOf(0));
}

void TestWaterfallHistory::ignoresLevelRangesWithoutMeaning_data()
{
    QTest::addColumn<float>("minimum");
    QTest::addColumn<float>("maximum");
    const float infinite = std::numeric_limits<float>::infinity();
    QTest::newRow("turned over") << 80.0f << -20.0f;
    QTest::newRow("alike") << 5.0f << 5.0f;
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << 5.0f;
    QTest::newRow("endless") << -20.0f << infinite;
}

void TestWaterfallHistory::ignoresLevelRangesWithoutMeaning()
{
    QFETCH(float, minimum);
    QFETCH(float, maximum);
    WaterfallHistory history(2);
    history.setView(wholeView);
    history.add(ScanPictures::emptyFrame(100, 42));
    history.setLevels(minimum, maximum);
    QCOMPARE(drawn(history, QSize(10, 2)).pixel(5, 0), colorOf(42));
}

void TestWaterfallHistory::drawsOneRowInOneDevicePixel_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("1") << 1.0;
    QTest::newRow("1.5") << 1.5;
    QTest::newRow("2") << 2.0;
}

void TestWaterfallHistory::drawsOneRowInOneDevicePixel()
{
    QFETCH(double, scale);
    WaterfallHistory history(100);
    history.setView(wholeView);
    for (int i = 0; i < 100; ++i) {
        ScanFrame frame = ScanPictures::emptyFrame(1000, static_cast<float>(i % 2 * 60));
        frame.levels[500] = 79;
        history.add(frame);
    }
    const QSize size(60, 30);
    const QImage image = drawn(history, size, scale);
    int bright = 0;
    for (int x = 0; x < image.width(); ++x)
        bright += image.pixel(x, 1) == colorOf(79) ? 1 : 0;
    QCOMPARE(bright, 1);
    for (int y = 0; y < image.height(); ++y)
        QCOMPARE(image.pixel(3, y), colorOf(y % 2 == 0 ? 60.0f : 0.0f));
    QCOMPARE(history.rowAt(2), history.row(2));
}

void TestWaterfallHistory::isEmptyAfterClearing()
{
    WaterfallHistory history(5);
    history.setView(wholeView);
    for (int i = 0; i < 8; ++i)
        history.add(ScanPictures::emptyFrame(100, 42));
    drawn(history, QSize(10, 5));
    history.clear();
    QCOMPARE(history.filled(), 0);
    QCOMPARE(drawn(history, QSize(10, 5)).pixel(5, 0), qRgb(0, 0, 0));
    history.add(ScanPictures::emptyFrame(100, 10));
    const QImage image = drawn(history, QSize(10, 5));
    QCOMPARE(image.pixel(5, 0), colorOf(10));
    QCOMPARE(image.pixel(5, 1), qRgb(0, 0, 0));
}

void TestWaterfallHistory::survivesSizesOfNothing()
{
    WaterfallHistory history(-7);
    QCOMPARE(history.rows(), 1);
    QImage image = ScanPictures::canvas(QSize(10, 10), 1);
    QPainter painter(&image);
    history.draw(painter, QRect(0, 0, 0, 10));
    history.draw(painter, QRect(0, 0, 10, 0));
    history.draw(painter, QRect(2, 2, 5, 5));
    history.add(ScanPictures::emptyFrame(10, 1));
    history.draw(painter, QRect(2, 2, 5, 5));
    painter.end();
    QCOMPARE(image.pixelColor(1, 1), QColor(Qt::magenta));
    QCOMPARE(image.pixelColor(7, 7), QColor(Qt::magenta));
    QCOMPARE(image.pixelColor(3, 3), QColor(Qt::black));
}

QTEST_MAIN(TestWaterfallHistory)
#include "tst_waterfallhistory.moc"
