#include <QtTest>

#include "tools/valuetext.h"

using namespace Link;

namespace {

Description described(ValueKind kind, const QString& unit = QString())
{
    Description description;
    description.path = "/A";
    description.kind = kind;
    description.unit = unit;
    if (kind == ValueKind::Selection)
        description.items = {{0, "AM", 0}, {1, "FM", 0}, {2, "15 kHz", 15000}, {7, "2", 0}};
    return description;
}

}  // namespace

class TestValueText : public QObject
{
    Q_OBJECT
private slots:
    void acceptedTexts_data();
    void acceptedTexts();
    void refusedTexts_data();
    void refusedTexts();
    void contentsReadAsPeopleWriteThem_data();
    void contentsReadAsPeopleWriteThem();
    void whatIsPrintedReadsBackTheSame_data();
    void whatIsPrintedReadsBackTheSame();
    void timesHaveMicroseconds();
};

void TestValueText::acceptedTexts_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("content");
    const auto row = [](ValueKind kind, const char* unit, const char* text, const QVariant& content) {
        QTest::addRow("%d %s", int(kind), text) << int(kind) << QString(unit) << QString(text) << content;
    };
    row(ValueKind::Float, "Hz", "98500000", 98.5e6);
    row(ValueKind::Float, "Hz", "98.5M", 98.5e6);
    row(ValueKind::Float, "Hz", "98.5 MHz", 98.5e6);
    row(ValueKind::Float, "Hz", " 98.5MHz ", 98.5e6);
    row(ValueKind::Float, "Hz", "12k", 12e3);
    row(ValueKind::Float, "Hz", "12 K", 12e3);
    row(ValueKind::Float, "Hz", "1.5G", 1.5e9);
    row(ValueKind::Float, "Hz", "1e6", 1e6);
    row(ValueKind::Float, "Hz", "5 Hz", 5.0);
    row(ValueKind::Float, "Hz", ".5", 0.5);
    row(ValueKind::Float, "dBµV", "-20 dBµV", -20.0);
    row(ValueKind::Float, "%", "+7.25%", 7.25);
    row(ValueKind::Float, "", "-0.5", -0.5);
    row(ValueKind::Integer, "", "-7", qint64(-7));
    row(ValueKind::Integer, "", "9007199254740993", qint64(9007199254740993));
    row(ValueKind::Integer, "", "2.5k", qint64(2500));
    row(ValueKind::Bool, "", "on", true);
    row(ValueKind::Bool, "", "Off", false);
    row(ValueKind::Bool, "", "TRUE", true);
    row(ValueKind::Bool, "", "0", false);
    row(ValueKind::Bool, "", "yes", true);
    row(ValueKind::Selection, "", "FM", qint64(1));
    row(ValueKind::Selection, "", "fm", qint64(1));
    row(ValueKind::Selection, "", "15 kHz", qint64(2));
    row(ValueKind::Selection, "", "15k", qint64(2));
    row(ValueKind::Selection, "", "15000", qint64(2));
    row(ValueKind::Selection, "", "0", qint64(0));
    row(ValueKind::Selection, "", "2", qint64(7));  // the text wins over the key
    row(ValueKind::Text, "", "", QString());
    row(ValueKind::Text, "", "Köln", QString("Köln"));
}

void TestValueText::acceptedTexts()
{
    QFETCH(int, kind);
    QFETCH(QString, unit);
    QFETCH(QString, text);
    QFETCH(QVariant, content);
    Content parsed;
    QString error;
    QVERIFY2(ValueText::parse(described(ValueKind(kind), unit), text, &parsed, &error), qPrintable(error));
    const QVariant result = std::visit(
        [](const auto& what) -> QVariant {
            if constexpr (std::is_same_v<std::decay_t<decltype(what)>, std::monostate>)
                return QVariant();
            else
                return QVariant::fromValue(what);
        },
        parsed);
    QCOMPARE(result, content);
}

void TestValueText::refusedTexts_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reason");
    const auto row = [](ValueKind kind, const char* text, const char* reason) {
        QTest::addRow("%d \"%s\"", int(kind), text) << int(kind) << QString(text) << QString(reason);
    };
    for (const char* text :
         {"", "abc", "nan", "inf", "98.5X", "98.5 MX", "1,5", "0x10", "1e999", "--5", "5 5", "M"})
        row(ValueKind::Float, text, "expects a number, like 98.5M in Hz");
    for (const char* text : {"", "1.5", "x", "99999999999999999999"})
        row(ValueKind::Integer, text, "expects a whole number");
    for (const char* text : {"", "2", "maybe"})
        row(ValueKind::Bool, text, "expects on or off");
    for (const char* text : {"", "USB", "99", "16k"})
        row(ValueKind::Selection, text, "expects one of \"AM\", \"FM\", \"15 kHz\", \"2\"");
    row(ValueKind::Bearing, "0", "cannot be written");
}

void TestValueText::refusedTexts()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(QString, reason);
    Content parsed;
    QString error;
    QVERIFY(!ValueText::parse(described(ValueKind(kind), "Hz"), text, &parsed, &error));
    QVERIFY2(error.contains(reason), qPrintable(error));
}

void TestValueText::contentsReadAsPeopleWriteThem_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QVariant>("content");
    QTest::addColumn<QString>("text");
    QTest::newRow("frequency") << int(ValueKind::Float) << QVariant(98.5e6) << "98500000 Hz";
    QTest::newRow("fraction") << int(ValueKind::Float) << QVariant(0.1) << "0.1 Hz";
    QTest::newRow("negative") << int(ValueKind::Float) << QVariant(-20.25) << "-20.25 Hz";
    QTest::newRow("integer") << int(ValueKind::Integer) << QVariant(qint64(5)) << "5 Hz";
    QTest::newRow("on") << int(ValueKind::Bool) << QVariant(true) << "On";
    QTest::newRow("item") << int(ValueKind::Selection) << QVariant(qint64(1)) << "FM";
    QTest::newRow("unknown key") << int(ValueKind::Selection) << QVariant(qint64(55)) << "55";
    QTest::newRow("text") << int(ValueKind::Text) << QVariant(QString("a b")) << "a b";
    QTest::newRow("bytes") << int(ValueKind::Bearing) << QVariant(QByteArray("\x01\xff")) << "01ff";
}

static Content contentOf(const QVariant& variant)
{
    switch (variant.typeId()) {
        case QMetaType::Double:
            return variant.toDouble();
        case QMetaType::Bool:
            return variant.toBool();
        case QMetaType::QString:
            return variant.toString();
        case QMetaType::QByteArray:
            return variant.toByteArray();
        default:
            return variant.toLongLong();
    }
}

void TestValueText::contentsReadAsPeopleWriteThem()
{
    QFETCH(int, kind);
    QFETCH(QVariant, content);
    QFETCH(QString, text);
    QCOMPARE(ValueText::text(described(ValueKind(kind), "Hz"), contentOf(content)), text);
}

void TestValueText::whatIsPrintedReadsBackTheSame_data()
{
    QTest::addColumn<double>("number");
    for (const double number : {0.0, 1e-9, 1.0 / 3, 98.5e6, -123456.789, 1e14, 1e15, 1e300, 5e-324})
        QTest::addRow("%g", number) << number;
}

void TestValueText::whatIsPrintedReadsBackTheSame()
{
    QFETCH(double, number);
    const Description description = described(ValueKind::Float, "Hz");
    Content back;
    QString error;
    QVERIFY2(ValueText::parse(description, ValueText::text(description, number), &back, &error),
             qPrintable(error));
    QVERIFY(back == Content(number));
}

void TestValueText::timesHaveMicroseconds()
{
    QCOMPARE(ValueText::time(1777777777000042), QString("2026-05-03T03:09:37.000042Z"));
    QCOMPARE(ValueText::time(-1), QString("1969-12-31T23:59:59.999999Z"));
    QCOMPARE(ValueText::time(0), QString());
}

QTEST_GUILESS_MAIN(TestValueText)
#include "tst_valuetext.moc"
