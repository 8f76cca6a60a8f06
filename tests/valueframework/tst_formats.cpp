#include <QTest>
#include <cmath>

#include "valueframework/value.h"

// How values are written for people, and what is read back.
class tst_formats : public QObject
{
    Q_OBJECT
private slots:
    void numbersAreRead_data();
    void numbersAreRead();
    void numbersThatAreNoneAreRefused_data();
    void numbersThatAreNoneAreRefused();
    void numbersAreWrittenSoThatTheyReadBackTheSame_data();
    void numbersAreWrittenSoThatTheyReadBackTheSame();
    void integersAreRead_data();
    void integersAreRead();
    void integersThatAreNoneAreRefused_data();
    void integersThatAreNoneAreRefused();
    void switchesAreRead_data();
    void switchesAreRead();
    void switchesThatAreNoneAreRefused_data();
    void switchesThatAreNoneAreRefused();
    void switchesAreWritten();
    void textIsItself();
};

void tst_formats::numbersAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("number");
    const struct
    {
        const char* text;
        double number;
    } rows[] = {
        {"0", 0},
        {"98.5M", 98.5e6},
        {"98.5 M", 98.5e6},
        {"98.5 MHz", 98.5e6},
        {"98.5MHz", 98.5e6},
        {"98.5 mhz", 98.5e6},
        {"12 kHz", 12e3},
        {"12k", 12e3},
        {"12K", 12e3},
        {"2.4G", 2.4e9},
        {"2.4 ghz", 2.4e9},
        {"1e6", 1e6},
        {"1E6", 1e6},
        {"1.5e-3", 1.5e-3},
        {"-20", -20},
        {"+3", 3},
        {".5", 0.5},
        {"5.", 5},
        {"  7  ", 7},
        {"007", 7},
        {"98 500 000", 98.5e6},
        {"98 500 000 Hz", 98.5e6},
        {"98 500.5 k", 98500500},
        {"98\xC2\xA0"
         "500",
         98500},
        {"98\xE2\x80\xAF"
         "500\xE2\x80\xAF"
         "000",
         98.5e6},
        {"50 %", 50},
        {"50%", 50},
        {"-3 dB", -3},
        {"40 dBuV", 40},
        {"40 dB\xC2\xB5V", 40},
        {"40 dB\xCE\xBCV/m", 40},
        {"180 \xC2\xB0", 180},
        {"123456789012", 123456789012.0},
    };
    for (const auto& row : rows) {
        QTest::newRow(row.text) << QString::fromUtf8(row.text) << row.number;
    }
}

void tst_formats::numbersAreRead()
{
    QFETCH(QString, text);
    QFETCH(double, number);
    double value = -1;
    QVERIFY(FormatFloat<double>::FromText(text, &value));
    QCOMPARE(value, number);
}

void tst_formats::numbersThatAreNoneAreRefused_data()
{
    QTest::addColumn<QString>("text");
    const char* rows[] = {
        "",          " ",         "abc",      "k",     "MHz",      "98,5",      "98,500",        "98,500.0",
        "1.000.000", "1.2.3",     "12 34",    "1 00",  "1234 567", "98 500 00", "nan",           "NaN",
        "inf",       "-inf",      "Infinity", "1e999", "-1e400",   "1e308k",    "0x10",          "1e",
        "1e+",       "--5",       "+-5",      "5-",    "5 5 MHz",  "5 M M",     "5 MHz 3",       "5 mHz",
        "5 T",       "5 bananas", "5kk",      "1_000", "1'000",    "\xD9\xA1",  "5 \xE2\x82\xAC"};
    for (const char* row : rows) {
        QTest::newRow(row) << QString::fromUtf8(row);
    }
    QTest::newRow("very long") << QString(100000, '9');
    QTest::newRow("very long with groups") << QString("1") + QString(" 000").repeated(50000);
}

void tst_formats::numbersThatAreNoneAreRefused()
{
    QFETCH(QString, text);
    double value = -1;
    QVERIFY(!FormatFloat<double>::FromText(text, &value));
    QCOMPARE(value, -1.0);
}

void tst_formats::numbersAreWrittenSoThatTheyReadBackTheSame_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("minus zero") << -0.0 << "0";
    QTest::newRow("frequency") << 98.5e6 << "98500000";
    QTest::newRow("frequency with a fraction") << 98500000.5 << "98500000.5";
    QTest::newRow("tenth") << 0.1 << "0.1";
    QTest::newRow("third") << 1.0 / 3 << "0.3333333333333333";
    QTest::newRow("negative") << -12.25 << "-12.25";
    QTest::newRow("large") << 1e20 << "1e+20";
    QTest::newRow("small") << 1e-9 << "1e-09";
    QTest::newRow("largest") << 1.7976931348623157e308 << "1.7976931348623157e+308";
}

void tst_formats::numbersAreWrittenSoThatTheyReadBackTheSame()
{
    QFETCH(double, number);
    QFETCH(QString, text);
    QCOMPARE(FormatFloat<double>::ToText(number), text);
    double again = -1;
    QVERIFY(FormatFloat<double>::FromText(text, &again));
    QVERIFY(again == number);
}

void tst_formats::integersAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number");
    QTest::newRow("plain") << "12" << 12;
    QTest::newRow("negative") << "-12" << -12;
    QTest::newRow("prefix") << "12k" << 12000;
    QTest::newRow("prefix makes it whole") << "1.5k" << 1500;
    QTest::newRow("whole fraction") << "3.0" << 3;
    QTest::newRow("largest") << "2147483647" << 2147483647;
    QTest::newRow("smallest") << "-2147483648" << int(-2147483648LL);
}

void tst_formats::integersAreRead()
{
    QFETCH(QString, text);
    QFETCH(int, number);
    int value = -1;
    QVERIFY(FormatInt<int>::FromText(text, &value));
    QCOMPARE(value, number);
}

void tst_formats::integersThatAreNoneAreRefused_data()
{
    QTest::addColumn<QString>("text");
    for (const char* row : {"", "1.5", "2147483648", "-2147483649", "3G", "x", "1,5", "nan", "1e99"}) {
        QTest::newRow(row) << QString(row);
    }
}

void tst_formats::integersThatAreNoneAreRefused()
{
    QFETCH(QString, text);
    int value = -1;
    QVERIFY(!FormatInt<int>::FromText(text, &value));
    QCOMPARE(value, -1);
}

void tst_formats::switchesAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("state");
    for (const char* row : {"On", "on", "ON", "true", "True", "1", "yes", " Yes "}) {
        QTest::newRow(row) << QString(row) << true;
    }
    for (const char* row : {"Off", "off", "OFF", "false", "FALSE", "0", "no", "No"}) {
        QTest::newRow(row) << QString(row) << false;
    }
}

void tst_formats::switchesAreRead()
{
    QFETCH(QString, text);
    QFETCH(bool, state);
    bool value = !state;
    QVERIFY(FormatBool<bool>::FromText(text, &value));
    QCOMPARE(value, state);
}

void tst_formats::switchesThatAreNoneAreRefused_data()
{
    QTest::addColumn<QString>("text");
    for (const char* row : {"", "2", "onn", "o", "maybe", "-1", "10", "true false"}) {
        QTest::newRow(row) << QString(row);
    }
}

void tst_formats::switchesThatAreNoneAreRefused()
{
    QFETCH(QString, text);
    for (bool before : {false, true}) {
        bool value = before;
        QVERIFY(!FormatBool<bool>::FromText(text, &value));
        QCOMPARE(value, before);
    }
}

void tst_formats::switchesAreWritten()
{
    QCOMPARE(FormatBool<bool>::ToText(true), QString("On"));
    QCOMPARE(FormatBool<bool>::ToText(false), QString("Off"));
}

void tst_formats::textIsItself()
{
    QString value;
    for (const QString& text : {QString(), QString(" a b "), QString::fromUtf8("dBµV")}) {
        QVERIFY(FormatString<QString>::FromText(text, &value));
        QCOMPARE(value, text);
        QCOMPARE(FormatString<QString>::ToText(value), text);
    }
}

QTEST_GUILESS_MAIN(tst_formats)
#include "tst_formats.moc"
