#include <QtTest>
#include <limits>

#include "scanpictures.h"
#include "spectrum/axispainter.h"
#include "spectrum/scantext.h"
#include "spectrum/scantheme.h"
#include "spectrum/spectrumpainter.h"
#include "spectrum/waterfallhistory.h"

namespace {

constexpr float none = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

// The picture of a trace alone: no grid in the way, one colour per meaning.
struct Picture
{
    explicit Picture(const QSize& size, double scale = 1)
        : image(ScanPictures::canvas(size, scale)), rect(QPoint(0, 0), size)
    {}

    void paint(const ScanScene& scene, const QPalette& palette = ScanPictures::darkPalette())
    {
        QPainter painter(&image);
        this->painter.paint(painter, rect, scene, palette, ScanPictures::face());
    }

    // Rows of column `x` with this colour.
    QVector<int> rowsOf(int x, const QColor& color) const
    {
        QVector<int> rows;
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixel(x, y) == color.rgb())
                rows.append(y);
        }
        return rows;
    }

    QVector<int> columnsOf(int y, const QColor& color) const
    {
        QVector<int> columns;
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == color.rgb())
                columns.append(x);
        }
        return columns;
    }

    QImage image;
    QRect rect;
    SpectrumPainter painter;
};

ScanTheme dark(bool stale = false)
{
    return ScanTheme::of(ScanPictures::darkPalette(), stale);
}

ScanScene sceneOf(const ScanFrame& frame)
{
    ScanScene scene;
    scene.view = {97.5e6, 99.5e6};
    scene.trace = &frame;
    return scene;
}

void addChannel(ScanScene& scene)
{
    scene.channel.visible = true;
    scene.channel.frequency = 98.5e6;
    scene.channel.center = 98.5e6;
    scene.channel.bandwidth = 150e3;
    scene.channel.color = QColor(0x3f, 0xb9, 0x6b);
    scene.channel.text = QStringLiteral("FM 150 kHz");
    scene.channel.hasThreshold = true;
    scene.channel.thresholdLevel = 45;
    scene.channel.thresholdLine = ScanText::thresholdLine(45, 150e3, scene.trace->resolutionBandwidth);
}

// Everything that a scan shows, axes and waterfall included.
struct Everything
{
    ScanFrame frame = ScanPictures::noisyFrame(4096);
    ScanFrame held = ScanPictures::noisyFrame(4096, 2);
    ScanFrame lowest = ScanPictures::emptyFrame(4096, -8);
    ScanScene scene = sceneOf(frame);
    WaterfallHistory history{400};

    Everything()
    {
        for (float& level : held.levels)
            level += 4;
        addChannel(scene);
        scene.maximumHold = &held;
        scene.minimumHold = &lowest;
        scene.markers = {{98.1e6, 58, QStringLiteral("1"), false},
                         {98.62e6, 42, QStringLiteral("Δ2 +520 kHz  -16.0 dB"), true}};
        scene.selectedMarker = 0;
        scene.cursorVisible = true;
        scene.cursorFrequency = 98.9e6;
        scene.cursorText = QStringLiteral("98.9000 MHz  3.1 dBµV");
        for (unsigned i = 0; i < 60; ++i)
            history.add(ScanPictures::noisyFrame(1024, i + 3));
        history.setLevels(-20, 80);
    }

    QImage picture(const QSize& size, double scale, const QPalette& palette)
    {
        QImage image = ScanPictures::canvas(size, scale);
        image.fill(palette.color(QPalette::Window));
        const QFont font = ScanPictures::face();
        const int left = AxisPainter::levelAxisWidth(font);
        const int below = AxisPainter::frequencyAxisHeight(font);
        const int waterfall = size.height() / 4;
        const QRect trace(left, 0, size.width() - left, size.height() - below - waterfall);
        QPainter painter(&image);
        SpectrumPainter spectrum;
        spectrum.paint(painter, trace, scene, palette, font);
        AxisPainter::paintLevel(painter, QRect(0, 0, left, trace.height()), scene.levelMinimum,
                                scene.levelMaximum, palette, font, scene.levelLabels);
        AxisPainter::paintFrequency(painter, QRect(left, trace.height(), trace.width(), below), scene.view,
                                    palette, font);
        history.setView(scene.view);
        history.setGreyed(scene.stale);
        history.draw(painter, QRect(left, size.height() - waterfall, trace.width(), waterfall));
        return image;
    }
};

}  // namespace

class TestSpectrumPainter : public QObject
{
    Q_OBJECT
private slots:
    void looksLikeItsReference_data();
    void looksLikeItsReference();
    void showsOneStrongBinOfMany();
    void drawsAFlatTraceInTheRowOfItsLevel_data();
    void drawsAFlatTraceInTheRowOfItsLevel();
    void fillsFromTheMeanUpToTheMaximum();
    void leavesEmptyBinsEmpty();
    void showsWhatIsAboveTheRangeInTheFirstRowAndHidesWhatIsBelow();
    void drawsHoldsOverTheTrace();
    void drawsLinesOneDevicePixelWide_data();
    void drawsLinesOneDevicePixelWide();
    void putsThePassbandWhereItIs();
    void widensWhatThePointerIsOn();
    void losesItsColourWhenStale();
    void keepsTheGroundUntilSomethingOfItChanges();
    void meetsTheGridWithTheAxes();
    void survivesScenesWithoutMeaning_data();
    void survivesScenesWithoutMeaning();
    void staysInsideOfItsRectangle();
    void findsWhatLiesUnderThePointer_data();
    void findsWhatLiesUnderThePointer();
    void findsTheNearestMarker();
    void holdsNothingOutsideOfThePicture();
};

void TestSpectrumPainter::looksLikeItsReference_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("isDark");
    QTest::addColumn<QString>("what");
    QTest::newRow("dark-wide") << QSize(1200, 600) << 1.0 << true << QString();
    QTest::newRow("light-wide") << QSize(1200, 600) << 1.0 << false << QString();
    QTest::newRow("dark-narrow") << QSize(300, 320) << 1.0 << true << QString();
    QTest::newRow("light-narrow") << QSize(300, 320) << 1.0 << false << QString();
    QTest::newRow("dark-half-more") << QSize(500, 360) << 1.5 << true << QString();
    QTest::newRow("light-double") << QSize(500, 360) << 2.0 << false << QString();
    QTest::newRow("dark-double") << QSize(500, 360) << 2.0 << true << QString();
    QTest::newRow("dark-stale") << QSize(600, 360) << 1.0 << true << "stale";
    QTest::newRow("light-stale") << QSize(600, 360) << 1.0 << false << "stale";
    QTest::newRow("dark-empty") << QSize(600, 360) << 1.0 << true << "empty";
    QTest::newRow("dark-zoomed") << QSize(800, 400) << 1.0 << true << "zoomed";
    QTest::newRow("light-outside") << QSize(600, 360) << 1.0 << false << "outside";
    QTest::newRow("dark-focused") << QSize(600, 360) << 1.0 << true << "focused";
}

void TestSpectrumPainter::looksLikeItsReference()
{
    QFETCH(QSize, size);
    QFETCH(double, scale);
    QFETCH(bool, isDark);
    QFETCH(QString, what);
    Everything everything;
    ScanScene& scene = everything.scene;
    if (what == QLatin1String("stale")) {
        scene.stale = true;
        scene.cursorVisible = false;
        scene.message = QStringLiteral("No spectrum for 12 s: the driver does not answer. Trying again.");
    } else if (what == QLatin1String("empty")) {
        scene = ScanScene();
        scene.message = QStringLiteral("Waiting for the first spectrum");
        everything.history.clear();
    } else if (what == QLatin1String("zoomed")) {
        scene.view = {98.09e6, 98.11e6};
        scene.noticeText = QStringLiteral("Mean of 0.5 s");
    } else if (what == QLatin1String("outside")) {
        scene.view = {98.6e6, 99.4e6};
        scene.channel.thresholdLine = -60;
        scene.filled = false;
    } else if (what == QLatin1String("focused")) {
        scene.focused = true;
        scene.hovered = ScanHandle::Threshold;
        scene.channel.thresholdLine = 79;
        scene.cursorFrequency = 99.45e6;
    }
    const QImage image =
        everything.picture(size, scale, isDark ? ScanPictures::darkPalette() : ScanPictures::lightPalette());
    const QString fault = ScanPictures::fault(image, QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY2(fault.isEmpty(), qPrintable(fault));
}

void TestSpectrumPainter::showsOneStrongBinOfMany()
{
    ScanFrame frame = ScanPictures::emptyFrame(65536, 0);
    frame.levels[43210] = 60;
    Picture picture(QSize(400, 200));
    picture.paint(sceneOf(frame));
    const int x = 43210 * 400 / 65536;
    const QVector<int> rows = picture.rowsOf(x, dark().maximum);
    QVERIFY(!rows.isEmpty());
    QCOMPARE(rows.first(), 40);  // 20 of 100 dB below the top of 200 rows
}

void TestSpectrumPainter::drawsAFlatTraceInTheRowOfItsLevel_data()
{
    QTest::addColumn<float>("level");
    QTest::addColumn<int>("row");
    QTest::newRow("middle") << 30.0f << 100;
    QTest::newRow("top") << 80.0f << 0;
    QTest::newRow("bottom") << -20.0f << 199;
    QTest::newRow("just under a row") << 29.7f << 100;
    QTest::newRow("a quarter") << 55.0f << 50;
}

void TestSpectrumPainter::drawsAFlatTraceInTheRowOfItsLevel()
{
    QFETCH(float, level);
    QFETCH(int, row);
    const ScanFrame frame = ScanPictures::emptyFrame(777, level);
    Picture picture(QSize(333, 200));
    picture.paint(sceneOf(frame));
    for (int x = 0; x < 333; ++x)
        QCOMPARE(picture.rowsOf(x, dark().trace), QVector<int>{row});
}

void TestSpectrumPainter::fillsFromTheMeanUpToTheMaximum()
{
    ScanFrame frame = ScanPictures::emptyFrame(800, 0);
    for (int i = 0; i < 800; i += 2)
        frame.levels[i] = 40;  // two bins a column: the mean of power is 37 dB
    Picture picture(QSize(400, 200));
    picture.paint(sceneOf(frame));
    const QVector<int> mean = picture.rowsOf(200, dark().trace);
    const QVector<int> above = picture.rowsOf(200, dark().maximum);
    QCOMPARE(mean, QVector<int>{86});
    QCOMPARE(above.first(), 80);
    QCOMPARE(above.last(), 85);
}

void TestSpectrumPainter::leavesEmptyBinsEmpty()
{
    ScanFrame frame = ScanPictures::emptyFrame(400, 20);
    for (int i = 100; i < 300; ++i)
        frame.levels[i] = i % 3 == 0 ? none : (i % 3 == 1 ? infinite : -infinite);
    Picture picture(QSize(400, 200));
    ScanScene scene = sceneOf(frame);
    picture.paint(scene);
    const QImage filled = picture.image;
    const ScanFrame none;
    scene.trace = &none;
    picture.paint(scene);
    for (int x = 100; x < 300; ++x) {
        for (int y = 0; y < 200; ++y)
            QCOMPARE(filled.pixel(x, y), picture.image.pixel(x, y));
    }
    QVERIFY(filled.pixel(50, 120) == dark().trace.rgb());
}

void TestSpectrumPainter::showsWhatIsAboveTheRangeInTheFirstRowAndHidesWhatIsBelow()
{
    Picture picture(QSize(100, 100));
    const ScanFrame high = ScanPictures::emptyFrame(100, 200);
    picture.paint(sceneOf(high));
    QCOMPARE(picture.rowsOf(50, dark().trace), QVector<int>{0});
    const ScanFrame low = ScanPictures::emptyFrame(100, -200);
    picture.paint(sceneOf(low));
    QVERIFY(picture.rowsOf(50, dark().trace).isEmpty());
}

void TestSpectrumPainter::drawsHoldsOverTheTrace()
{
    const ScanFrame frame = ScanPictures::emptyFrame(100, 30);
    const ScanFrame high = ScanPictures::emptyFrame(100, 55);
    const ScanFrame low = ScanPictures::emptyFrame(100, 5);
    ScanScene scene = sceneOf(frame);
    scene.maximumHold = &high;
    scene.minimumHold = &low;
    Picture picture(QSize(100, 200));
    picture.paint(scene);
    QCOMPARE(picture.rowsOf(33, dark().maximumHold), QVector<int>{50});
    QCOMPARE(picture.rowsOf(33, dark().minimumHold), QVector<int>{150});
    QCOMPARE(picture.rowsOf(33, dark().trace), QVector<int>{100});
}

void TestSpectrumPainter::drawsLinesOneDevicePixelWide_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("1") << 1.0;
    QTest::newRow("1.5") << 1.5;
    QTest::newRow("2") << 2.0;
}

void TestSpectrumPainter::drawsLinesOneDevicePixelWide()
{
    QFETCH(double, scale);
    const ScanFrame frame = ScanPictures::emptyFrame(100, -200);
    ScanScene scene = sceneOf(frame);
    scene.channel.visible = true;
    scene.channel.frequency = 98.3e6;
    scene.channel.color = QColor(0xff, 0x00, 0xff);
    Picture picture(QSize(301, 201), scale);
    picture.paint(scene);
    const QColor line = ScanTheme::mixed(scene.channel.color, dark().text, 0.45);
    const int row = picture.image.height() / 2 + 3;
    const QVector<int> columns = picture.columnsOf(row, line);
    QCOMPARE(columns, QVector<int>{static_cast<int>(std::floor(picture.image.width() * 0.4))});
    // The grid: no two columns side by side, none half lit.
    const QVector<int> grid = picture.columnsOf(row, dark().grid);
    QVERIFY(grid.size() >= 2);
    for (int i = 1; i < grid.size(); ++i)
        QVERIFY(grid[i] - grid[i - 1] > 10);
    const QVector<int> background = picture.columnsOf(row, dark().background);
    QCOMPARE(background.size() + grid.size() + columns.size(), picture.image.width());
}

void TestSpectrumPainter::putsThePassbandWhereItIs()
{
    const ScanFrame frame = ScanPictures::emptyFrame(100, -200);
    ScanScene scene = sceneOf(frame);
    scene.channel.visible = true;
    scene.channel.frequency = scene.channel.center = 98.5e6;
    scene.channel.bandwidth = 200e3;
    scene.channel.color = QColor(0x20, 0xc0, 0x40);
    Picture picture(QSize(1000, 200));
    picture.paint(scene);
    const int row = 90;
    const QColor band = ScanTheme::mixed(dark().background, scene.channel.color, 0.24);
    const QVector<int> columns = picture.columnsOf(row, band);
    QCOMPARE(picture.columnsOf(row, scene.channel.color), (QVector<int>{450, 550}));
    QCOMPARE(columns.first(), 451);
    QCOMPARE(columns.last(), 549);

    scene.channel.color = QColor(0xd0, 0x40, 0x40);
    picture.paint(scene);
    QCOMPARE(picture.columnsOf(row, scene.channel.color), (QVector<int>{450, 550}));
}

void TestSpectrumPainter::widensWhatThePointerIsOn()
{
    const ScanFrame frame = ScanPictures::emptyFrame(100, -200);
    ScanScene scene = sceneOf(frame);
    addChannel(scene);
    scene.hovered = ScanHandle::LowerEdge;
    Picture picture(QSize(1000, 200));
    picture.paint(scene);
    QCOMPARE(picture.columnsOf(110, scene.channel.color), (QVector<int>{461, 462, 463, 537}));
}

void TestSpectrumPainter::losesItsColourWhenStale()
{
    const ScanFrame frame = ScanPictures::noisyFrame(1000);
    const ScanFrame held = ScanPictures::noisyFrame(1000, 2);
    ScanScene scene = sceneOf(frame);
    addChannel(scene);
    scene.maximumHold = &held;
    scene.stale = true;
    Picture picture(QSize(400, 200));
    picture.paint(scene);
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 400; ++x) {
            const QColor color = picture.image.pixelColor(x, y);
            QVERIFY(color.hsvSaturation() < 80 || color.value() < 60);
        }
    }
}

void TestSpectrumPainter::keepsTheGroundUntilSomethingOfItChanges()
{
    ScanFrame frame = ScanPictures::noisyFrame(1000);
    ScanScene scene = sceneOf(frame);
    addChannel(scene);
    Picture picture(QSize(400, 200));
    for (unsigned i = 0; i < 5; ++i) {
        frame = ScanPictures::noisyFrame(1000, i);
        scene.cursorVisible = i % 2 == 0;
        picture.paint(scene);
    }
    QCOMPARE(picture.painter.staticPaints(), 1);
    scene.view.start += 1e3;
    picture.paint(scene);
    QCOMPARE(picture.painter.staticPaints(), 2);
    scene.levelMaximum = 60;
    picture.paint(scene);
    QCOMPARE(picture.painter.staticPaints(), 3);
    scene.channel.bandwidth = 50e3;
    picture.paint(scene);
    QCOMPARE(picture.painter.staticPaints(), 4);
    picture.paint(scene, ScanPictures::lightPalette());
    QCOMPARE(picture.painter.staticPaints(), 5);
    picture.rect.setWidth(390);
    picture.paint(scene, ScanPictures::lightPalette());
    QCOMPARE(picture.painter.staticPaints(), 6);
    picture.paint(scene, ScanPictures::lightPalette());
    QCOMPARE(picture.painter.staticPaints(), 6);
}

void TestSpectrumPainter::meetsTheGridWithTheAxes()
{
    const ScanFrame frame;
    const ScanScene scene = sceneOf(frame);
    const QPalette palette = ScanPictures::darkPalette();
    const QFont font = ScanPictures::face();
    QImage image = ScanPictures::canvas(QSize(437, 300), 1.5);
    {
        QPainter painter(&image);
        SpectrumPainter spectrum;
        spectrum.paint(painter, QRect(40, 0, 397, 280), scene, palette, font);
        AxisPainter::paintFrequency(painter, QRect(40, 280, 397, 20), scene.view, palette, font);
    }
    const QColor tick =
        ScanTheme::mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.6);
    int met = 0;
    for (int x = 60; x < image.width(); ++x) {
        if (image.pixel(x, 100) != dark().grid.rgb())
            continue;
        QCOMPARE(image.pixel(x, 420 + 5), tick.rgb());
        ++met;
    }
    QVERIFY(met >= 3);
}

void TestSpectrumPainter::survivesScenesWithoutMeaning_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("stop");
    QTest::addColumn<float>("minimum");
    QTest::addColumn<float>("maximum");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("bandwidth");
    const double infinity = std::numeric_limits<double>::infinity();
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("stop below start") << 2.0 << 1.0 << 0.0f << 1.0f << 1.0 << 1.0;
    QTest::newRow("no width") << 1.0 << 1.0 << 0.0f << 1.0f << 1.0 << 1.0;
    QTest::newRow("endless") << -infinity << infinity << 0.0f << 1.0f << 1.0 << 1.0;
    QTest::newRow("no numbers") << nothing << nothing << none << none << nothing << nothing;
    QTest::newRow("levels turned over") << 1.0 << 2.0 << 80.0f << -20.0f << 1.0 << 1.0;
    QTest::newRow("levels alike") << 1.0 << 2.0 << 5.0f << 5.0f << 1.0 << 1.0;
    QTest::newRow("endless levels") << 1.0 << 2.0 << -infinite << infinite << 1.0 << 1.0;
    QTest::newRow("endless channel") << 97.5e6 << 99.5e6 << 0.0f << 80.0f << infinity << infinity;
    QTest::newRow("channel far away") << 97.5e6 << 99.5e6 << 0.0f << 80.0f << 1e300 << 1.0;
    QTest::newRow("band around everything") << 97.5e6 << 99.5e6 << 0.0f << 80.0f << 98e6 << 1e300;
    QTest::newRow("negative band") << 97.5e6 << 99.5e6 << 0.0f << 80.0f << 98e6 << -1e6;
    QTest::newRow("tiny view") << 98e6 << 98e6 + 1e-7 << 0.0f << 1e-30f << 98e6 << 1.0;
}

void TestSpectrumPainter::survivesScenesWithoutMeaning()
{
    QFETCH(double, start);
    QFETCH(double, stop);
    QFETCH(float, minimum);
    QFETCH(float, maximum);
    QFETCH(double, frequency);
    QFETCH(double, bandwidth);
    const ScanFrame frame = ScanPictures::noisyFrame(500);
    ScanScene scene = sceneOf(frame);
    addChannel(scene);
    scene.view = {start, stop};
    scene.levelMinimum = minimum;
    scene.levelMaximum = maximum;
    scene.channel.frequency = scene.channel.center = frequency;
    scene.channel.bandwidth = bandwidth;
    scene.channel.thresholdLine = frequency;
    scene.cursorVisible = true;
    scene.cursorFrequency = frequency;
    scene.cursorText = QStringLiteral("cursor");
    scene.markers = {{frequency, none, QStringLiteral("1"), true}};
    Picture picture(QSize(120, 90));
    picture.paint(scene);
    for (const QPoint corner : {QPoint(1, 1), QPoint(118, 88)})
        QVERIFY(picture.image.pixelColor(corner) != QColor(Qt::magenta));
    for (int x = -10; x < 140; x += 3)
        SpectrumPainter::hitTest(scene, picture.rect, QPointF(x, 40));
}

void TestSpectrumPainter::staysInsideOfItsRectangle()
{
    Everything everything;
    for (const double scale : {1.0, 1.5, 2.0}) {
        QImage image = ScanPictures::canvas(QSize(200, 120), scale);
        const QRect rect(20, 10, 150, 100);
        {
            QPainter painter(&image);
            SpectrumPainter spectrum;
            everything.scene.message =
                QStringLiteral("A message that is longer than the picture is wide, by far");
            spectrum.paint(painter, rect, everything.scene, ScanPictures::darkPalette(),
                           ScanPictures::face());
        }
        const QRect inside(QPoint(qRound(20 * scale), qRound(10 * scale)),
                           QSize(qRound(150 * scale), qRound(100 * scale)));
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                QCOMPARE(image.pixelColor(x, y) == QColor(Qt::magenta), !inside.contains(x, y));
        }
    }
}

void TestSpectrumPainter::findsWhatLiesUnderThePointer_data()
{
    QTest::addColumn<double>("bandwidth");
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<int>("handle");
    const auto row = [](const char* name, double bandwidth, double x, double y, ScanHandle handle) {
        QTest::newRow(name) << bandwidth << QPointF(x, y) << static_cast<int>(handle);
    };
    // 1000 pixels over 2 MHz: the channel's line at 500, the threshold at row 100 of 200.
    row("the line", 200e3, 501, 30, ScanHandle::Frequency);
    row("inside of the band", 200e3, 470, 30, ScanHandle::Frequency);
    row("lower edge from outside", 200e3, 447, 30, ScanHandle::LowerEdge);
    row("lower edge from inside", 200e3, 453, 30, ScanHandle::LowerEdge);
    row("upper edge from outside", 200e3, 554, 30, ScanHandle::UpperEdge);
    row("upper edge from inside", 200e3, 546, 30, ScanHandle::UpperEdge);
    row("beside the band", 200e3, 440, 30, ScanHandle::None);
    row("threshold", 200e3, 300, 103, ScanHandle::Threshold);
    row("threshold in the band", 200e3, 480, 98, ScanHandle::Threshold);
    row("beside the threshold", 200e3, 300, 106, ScanHandle::None);
    row("edge nearer than threshold", 200e3, 450, 103, ScanHandle::LowerEdge);
    row("threshold nearer than edge", 200e3, 447, 100, ScanHandle::Threshold);
    row("narrow band's line", 8e3, 500, 30, ScanHandle::Frequency);
    row("narrow band's upper edge", 8e3, 504, 30, ScanHandle::UpperEdge);
    row("narrow band's lower edge", 8e3, 496, 30, ScanHandle::LowerEdge);
    row("no band", 0, 503, 30, ScanHandle::Frequency);
    row("beside the line without a band", 0, 507, 30, ScanHandle::None);
    row("marker", 200e3, 250, 15, ScanHandle::Marker);
}

void TestSpectrumPainter::findsWhatLiesUnderThePointer()
{
    QFETCH(double, bandwidth);
    QFETCH(QPointF, position);
    QFETCH(int, handle);
    const ScanFrame frame = ScanPictures::emptyFrame(1000);
    ScanScene scene = sceneOf(frame);
    addChannel(scene);
    scene.channel.bandwidth = bandwidth;
    scene.channel.thresholdLine = 30;
    scene.markers = {{98e6, 70, QStringLiteral("1"), false}};
    QCOMPARE(static_cast<int>(SpectrumPainter::hitTest(scene, QRect(0, 0, 1000, 200), position)), handle);
    // The same where the picture lies elsewhere.
    QCOMPARE(
        static_cast<int>(SpectrumPainter::hitTest(scene, QRect(40, 7, 1000, 200), position + QPointF(40, 7))),
        handle);
}

void TestSpectrumPainter::findsTheNearestMarker()
{
    const ScanFrame frame = ScanPictures::emptyFrame(1000);
    ScanScene scene = sceneOf(frame);
    scene.markers = {{98e6, 30, QStringLiteral("1"), false},
                     {98.01e6, 30, QStringLiteral("2"), false},
                     {98.5e6, none, QStringLiteral("3"), false}};
    const QRect rect(0, 0, 1000, 200);
    QCOMPARE(SpectrumPainter::markerAt(scene, rect, QPointF(249, 95)), 0);
    QCOMPARE(SpectrumPainter::markerAt(scene, rect, QPointF(256, 95)), 1);
    QCOMPARE(SpectrumPainter::markerAt(scene, rect, QPointF(500, 194)), 2);
    QCOMPARE(SpectrumPainter::markerAt(scene, rect, QPointF(700, 100)), -1);
}

void TestSpectrumPainter::holdsNothingOutsideOfThePicture()
{
    const ScanFrame frame = ScanPictures::emptyFrame(1000);
    ScanScene scene = sceneOf(frame);
    addChannel(scene);
    const QRect rect(10, 10, 1000, 200);
    QCOMPARE(SpectrumPainter::hitTest(scene, rect, QPointF(510, 5)), ScanHandle::None);
    QCOMPARE(SpectrumPainter::hitTest(scene, rect, QPointF(510, 215)), ScanHandle::None);
    QCOMPARE(SpectrumPainter::hitTest(scene, QRect(), QPointF(0, 0)), ScanHandle::None);
    scene.channel.visible = false;
    QCOMPARE(SpectrumPainter::hitTest(scene, rect, QPointF(510, 100)), ScanHandle::None);
}

QTEST_MAIN(TestSpectrumPainter)
#include "tst_spectrumpainter.moc"
