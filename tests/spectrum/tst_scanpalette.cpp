#include <QtTest>
#include <cmath>

#include "scanpictures.h"
#include "spectrum/scanpalette.h"
#include "spectrum/scantheme.h"

namespace {

double linear(int channel)
{
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(QRgb color)
{
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

// CIE L*, 0 black to 100 white.
double lightness(QRgb color)
{
    const double y = luminance(color);
    return y > 216.0 / 24389 ? 116 * std::cbrt(y) - 16 : y * 24389 / 27;
}

double contrast(const QColor& a, const QColor& b)
{
    const double first = luminance(a.rgb()) + 0.05;
    const double second = luminance(b.rgb()) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

}  // namespace

class TestScanPalette : public QObject
{
    Q_OBJECT
private slots:
    void risesInLightnessFromEndToEnd_data();
    void risesInLightnessFromEndToEnd();
    void spreadsItsLightnessEvenly_data();
    void spreadsItsLightnessEvenly();
    void isOpaqueAndHasAName_data();
    void isOpaqueAndHasAName();
    void themesStandOutFromTheirBackground_data();
    void themesStandOutFromTheirBackground();
};

void TestScanPalette::risesInLightnessFromEndToEnd_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("Thermal") << int(ScanPalette::Thermal);
    QTest::newRow("Ocean") << int(ScanPalette::Ocean);
    QTest::newRow("Grey") << int(ScanPalette::Grey);
}

void TestScanPalette::risesInLightnessFromEndToEnd()
{
    QFETCH(int, kind);
    const ScanPalette palette(static_cast<ScanPalette::Kind>(kind));
    for (int i = 1; i < 256; ++i) {
        // One rounding of a channel may hold it up, never turn it back visibly.
        QVERIFY2(lightness(palette.color(i)) >= lightness(palette.color(i - 1)) - 0.05,
                 qPrintable(QStringLiteral("colour %1").arg(i)));
    }
    for (int i = 8; i < 256; ++i)
        QVERIFY(lightness(palette.color(i)) > lightness(palette.color(i - 8)) + 0.5);
    QVERIFY(lightness(palette.color(0)) < 5);
    QVERIFY(lightness(palette.color(255)) > 90);
}

void TestScanPalette::spreadsItsLightnessEvenly_data()
{
    risesInLightnessFromEndToEnd_data();
}

void TestScanPalette::spreadsItsLightnessEvenly()
{
    QFETCH(int, kind);
    const ScanPalette palette(static_cast<ScanPalette::Kind>(kind));
    const double from = lightness(palette.color(0));
    const double range = lightness(palette.color(255)) - from;
    for (int i = 0; i < 256; ++i)
        QVERIFY(std::abs(lightness(palette.color(i)) - (from + range * i / 255)) < 6);
}

void TestScanPalette::isOpaqueAndHasAName_data()
{
    risesInLightnessFromEndToEnd_data();
}

void TestScanPalette::isOpaqueAndHasAName()
{
    QFETCH(int, kind);
    const ScanPalette palette(static_cast<ScanPalette::Kind>(kind));
    for (const QRgb color : palette.colors())
        QCOMPARE(qAlpha(color), 255);
    QCOMPARE(ScanPalette::name(palette.kind()), QString::fromLatin1(QTest::currentDataTag()));
}

void TestScanPalette::themesStandOutFromTheirBackground_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::newRow("dark") << true;
    QTest::newRow("light") << false;
}

void TestScanPalette::themesStandOutFromTheirBackground()
{
    QFETCH(bool, isDark);
    const QPalette palette = isDark ? ScanPictures::darkPalette() : ScanPictures::lightPalette();
    const ScanTheme theme = ScanTheme::of(palette, false);
    for (const QColor& color : {theme.trace, theme.maximumHold, theme.minimumHold, theme.threshold})
        QVERIFY(contrast(color, theme.background) >= 4.5);
    QVERIFY(contrast(theme.maximum, theme.background) >= 2);
    QVERIFY(contrast(theme.maximum, theme.trace) >= 2);
    QVERIFY(contrast(theme.grid, theme.background) < 2);
    QVERIFY(contrast(theme.grid, theme.background) > 1.1);
    const ScanTheme stale = ScanTheme::of(palette, true);
    QVERIFY(stale.trace.hsvSaturation() < 40);
    QVERIFY(contrast(stale.trace, stale.background) >= 2);
}

QTEST_APPLESS_MAIN(TestScanPalette)
#include "tst_scanpalette.moc"
