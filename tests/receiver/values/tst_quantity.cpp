#include <QTest>

#include "receiver/values/quantity.h"

using namespace Receiver;

class TestQuantity : public QObject
{
    Q_OBJECT
private slots:
    void acceptedTextsBecomeNumbers_data();
    void acceptedTextsBecomeNumbers();
    void refusedTextsAreNoNumbers_data();
    void refusedTextsAreNoNumbers();
    void quantitiesAreWrittenWithTheLargestFittingPrefix_data();
    void quantitiesAreWrittenWithTheLargestFittingPrefix();
};

void TestQuantity::acceptedTextsBecomeNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<double>("number");

    QTest::newRow("plain") << "12001.03"
                           << "" << 12001.03;
    QTest::newRow("kilo") << "77.5k"
                          << "" << 77500.0;
    QTest::newRow("capital kilo") << "77.5K"
                                  << "" << 77500.0;
    QTest::newRow("mega") << "98.5M"
                          << "" << 98.5e6;
    QTest::newRow("giga") << "1.09G"
                          << "" << 1.09e9;
    QTest::newRow("exponent") << "5e6"
                              << "" << 5e6;
    QTest::newRow("negative") << "-3"
                              << "" << -3.0;
    QTest::newRow("unit") << "2.4kHz"
                          << "Hz" << 2400.0;
    QTest::newRow("unit after a blank") << "98.5 MHz"
                                        << "Hz" << 98.5e6;
    QTest::newRow("blanks around") << "  1 M "
                                   << "" << 1e6;
    QTest::newRow("zero") << "0"
                          << "Hz" << 0.0;
}

void TestQuantity::acceptedTextsBecomeNumbers()
{
    QFETCH(QString, text);
    QFETCH(QString, unit);
    QFETCH(double, number);
    const std::optional<double> parsed = parseQuantity(text, unit);
    QVERIFY(parsed.has_value());
    QCOMPARE(*parsed, number);
}

void TestQuantity::refusedTextsAreNoNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("blank") << " ";
    QTest::newRow("word") << "fast";
    QTest::newRow("prefix alone") << "k";
    QTest::newRow("two prefixes") << "1kM";
    QTest::newRow("milli is no prefix here") << "5m";
    QTest::newRow("two points") << "1.2.3";
    QTest::newRow("comma") << "1,5";
    QTest::newRow("not a number") << "nan";
    QTest::newRow("infinite") << "inf";
    QTest::newRow("beyond a double") << "1e999";
    QTest::newRow("beyond a double by its prefix") << "1e305G";
    QTest::newRow("another unit") << "5 dB";
}

void TestQuantity::refusedTextsAreNoNumbers()
{
    QFETCH(QString, text);
    QVERIFY(!parseQuantity(text, QStringLiteral("Hz")).has_value());
}

void TestQuantity::quantitiesAreWrittenWithTheLargestFittingPrefix_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("text");
    QTest::newRow("hertz") << 150.0 << "Hz"
                           << "150 Hz";
    QTest::newRow("kilohertz") << 2400.0 << "Hz"
                               << "2.4 kHz";
    QTest::newRow("megahertz") << 98.5e6 << "Hz"
                               << "98.5 MHz";
    QTest::newRow("negative") << -24000.0 << "Hz"
                              << "-24 kHz";
    QTest::newRow("gigahertz to the hertz") << 1090000001.0 << "Hz"
                                            << "1.090000001 GHz";
    QTest::newRow("levels stay plain") << 1200.0 << "dBµV"
                                       << "1200 dBµV";
    QTest::newRow("no unit") << 0.5 << ""
                             << "0.5";
    QTest::newRow("zero") << 0.0 << "Hz"
                          << "0 Hz";
}

void TestQuantity::quantitiesAreWrittenWithTheLargestFittingPrefix()
{
    QFETCH(double, value);
    QFETCH(QString, unit);
    QFETCH(QString, text);
    QCOMPARE(quantityText(value, unit), text);
    QCOMPARE(clampedText(value, unit), QStringLiteral("clamped to ") + text);
}

QTEST_APPLESS_MAIN(TestQuantity)
#include "tst_quantity.moc"
