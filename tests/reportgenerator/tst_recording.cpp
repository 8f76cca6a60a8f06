#include <QMap>
#include <QTest>
#include <QXmlStreamReader>
#include <limits>
#include <memory>

#include "reportgenerator/recording.h"

namespace {

using REPORTGENERATOR::Recording;

// What a reader of the XML finds: element paths with their texts, attributes as PATH@NAME.
QMap<QString, QString> ReadBack(const QString& xml, QString* error)
{
    QMap<QString, QString> found;
    QStringList path;
    QXmlStreamReader reader(xml.toUtf8());
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                path.append(reader.name().toString());
                found.insert(path.join(QLatin1Char('/')), QString());
                for (const QXmlStreamAttribute& attribute : reader.attributes())
                    found.insert(path.join(QLatin1Char('/')) + QLatin1Char('@') + attribute.name().toString(),
                                 attribute.value().toString());
                break;
            case QXmlStreamReader::Characters:
                if (!reader.isWhitespace())
                    found[path.join(QLatin1Char('/'))] += reader.text().toString();
                break;
            case QXmlStreamReader::EndElement:
                path.removeLast();
                break;
            default:
                break;
        }
    }
    *error = reader.errorString();
    return found;
}

}  // namespace

class TestRecording : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFullDescriptionReadsBack()
    {
        Recording recording;
        const QDateTime start(QDate(2024, 5, 1), QTime(12, 34, 56, 789), Qt::UTC);
        recording.GetMetadata()->SetStartTime(start);
        recording.GetMetadata()->SetStopTime(start.addMSecs(1500));
        recording.GetMetadata()->GetDetail()->SetRecordData(QStringLiteral("PDW"));
        recording.GetMetadata()->GetDetail()->SetStartFrequency(98400000);
        recording.GetMetadata()->GetDetail()->SetStopFrequency(98600000);
        recording.SetURL(QStringLiteral("/data/pulses.pdw"));
        QString error;
        const QMap<QString, QString> found = ReadBack(recording.GetXmlString(), &error);
        QCOMPARE(error, QString());
        const QMap<QString, QString> expected{
            {"Recording", ""},
            {"Recording@version", "1"},
            {"Recording/Metadata", ""},
            {"Recording/Metadata/StartTime", "2024-05-01T12:34:56.789Z"},
            {"Recording/Metadata/StopTime", "2024-05-01T12:34:58.289Z"},
            {"Recording/Metadata/Detail", ""},
            {"Recording/Metadata/Detail/RecordData", "PDW"},
            {"Recording/Metadata/Detail/StartFrequency", "98400000"},
            {"Recording/Metadata/Detail/StartFrequency@unit", "Hz"},
            {"Recording/Metadata/Detail/StopFrequency", "98600000"},
            {"Recording/Metadata/Detail/StopFrequency@unit", "Hz"},
            {"Recording/URL", "/data/pulses.pdw"},
        };
        QCOMPARE(found, expected);
    }

    void theTextSaysThatItIsUtf8()
    {
        QVERIFY(Recording().GetXmlString().startsWith(
            QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>")));
    }

    void whatWasNotToldIsNotWritten()
    {
        QString error;
        const QMap<QString, QString> found = ReadBack(Recording().GetXmlString(), &error);
        QCOMPARE(error, QString());
        QCOMPARE(found.keys(), QStringList({"Recording", "Recording/Metadata", "Recording/Metadata/Detail",
                                            "Recording/URL", "Recording@version"}));
    }

    void timesOfAnyZoneAreWrittenInUtc()
    {
        Recording recording;
        recording.GetMetadata()->SetStartTime(
            QDateTime(QDate(2024, 5, 1), QTime(1, 30), Qt::OffsetFromUTC, 7200));
        QString error;
        const QMap<QString, QString> found = ReadBack(recording.GetXmlString(), &error);
        QCOMPARE(found.value("Recording/Metadata/StartTime"), QStringLiteral("2024-04-30T23:30:00.000Z"));
    }

    void frequenciesKeepTheirFullPrecision_data()
    {
        QTest::addColumn<double>("frequency");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0.0 << "0";
        QTest::newRow("negative") << -12500.0 << "-12500";
        QTest::newRow("a thousandth of a hertz") << 98500000.001 << "98500000.001";
        QTest::newRow("gigahertz") << 40e9 << "40000000000";
        QTest::newRow("a third") << 1e8 / 3 << "33333333.333333332";
        QTest::newRow("tiny") << 1e-7 << "0.0000001";
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << "-";
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << "-";
    }

    void frequenciesKeepTheirFullPrecision()
    {
        QFETCH(double, frequency);
        QFETCH(QString, text);
        Recording recording;
        recording.GetMetadata()->GetDetail()->SetStartFrequency(frequency);
        QString error;
        const QMap<QString, QString> found = ReadBack(recording.GetXmlString(), &error);
        QCOMPARE(error, QString());
        QCOMPARE(found.value("Recording/Metadata/Detail/StartFrequency", "-"), text);
        if (text != QLatin1String("-"))
            QCOMPARE(text.toDouble(), frequency);
    }

    void nastyCharactersReadBack_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("kind");
        QTest::newRow("markup") << "<a b=\"c\" d='e'>&amp;</a>]]>"
                                << "<a b=\"c\" d='e'>&amp;</a>]]>"
                                << "<a b=\"c\" d='e'>&amp;</a>]]>";
        QTest::newRow("a comment") << "<!-- --><?x?>"
                                   << "<!-- --><?x?>"
                                   << "<!-- --><?x?>";
        QTest::newRow("percent") << "file:///a%20b?x=1&y=2#z"
                                 << "file:///a%20b?x=1&y=2#z"
                                 << "file:///a%20b?x=1&y=2#z";
        QTest::newRow("blanks at the ends") << "  a  "
                                            << "  a  "
                                            << "  a  ";
        QTest::newRow("any script") << "Peilung/受信/📡/é"
                                    << "Peilung/受信/📡/é"
                                    << "Peilung/受信/📡/é";
        QTest::newRow("line ends") << "a\nb\rc\td"
                                   << "a%0Ab%0Dc%09d"
                                   << "a\nb\uFFFDc\td";
        QTest::newRow("control characters") << QString("a") + QChar(0) + QChar(0x1b) + QChar(0x7f) + "b"
                                            << "a%00%1B%7Fb" << QString("a\uFFFD\uFFFD") + QChar(0x7f) + "b";
        QTest::newRow("half a character") << QString("a") + QChar(0xD83D) + "b"
                                          << "a\uFFFDb"
                                          << "a\uFFFDb";
        QTest::newRow("no character") << QString("a") + QChar(0xFFFE) + QChar(0xFFFF) + "b"
                                      << "a\uFFFD\uFFFDb"
                                      << "a\uFFFD\uFFFDb";
    }

    void nastyCharactersReadBack()
    {
        QFETCH(QString, text);
        QFETCH(QString, url);
        QFETCH(QString, kind);
        Recording recording;
        recording.SetURL(text);
        recording.GetMetadata()->GetDetail()->SetRecordData(text);
        QString error;
        const QMap<QString, QString> found = ReadBack(recording.GetXmlString(), &error);
        QCOMPARE(error, QString());
        QCOMPARE(found.value("Recording/URL"), url);
        QCOMPARE(found.value("Recording/Metadata/Detail/RecordData"), kind);
    }

    void theObjectIsReachedThroughItsBase()
    {
        const std::unique_ptr<REPORTGENERATOR::IRGObject> object(new Recording);
        QVERIFY(object->GetXmlString().contains(QStringLiteral("<Recording version=\"1\">")));
    }

    void thePartsBelongToTheirRecording()
    {
        Recording recording;
        QCOMPARE(recording.GetMetadata(), recording.GetMetadata());
        QCOMPARE(recording.GetMetadata()->GetDetail(), recording.GetMetadata()->GetDetail());
    }
};

QTEST_GUILESS_MAIN(TestRecording)
#include "tst_recording.moc"
