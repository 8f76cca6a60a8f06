#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "controlbench.h"
#include "valuecontrols/journalfile.h"
#include "valuecontrols/operatorjournal.h"

class JournalBench : public ControlBench
{
public:
    JournalBench() : fileName(m_Folder.filePath("journal.jsonl"))
    {
        QString reason;
        if (!OperatorJournal::Open(fileName, &reason))
            qFatal("%s", qPrintable(reason));
    }
    ~JournalBench() { OperatorJournal::Open(QString(), nullptr); }

    QList<QByteArray> Lines() const
    {
        QFile file(fileName);
        QList<QByteArray> lines;
        if (file.open(QIODevice::ReadOnly))
            lines = file.readAll().split('\n');
        if (!lines.isEmpty())
            lines.removeLast();
        return lines;
    }
    QJsonObject Line(int index) const { return QJsonDocument::fromJson(Lines().value(index)).object(); }

private:
    QTemporaryDir m_Folder;

public:
    const QString fileName;
};

class TestJournal : public QObject
{
    Q_OBJECT

private slots:
    void aLineTellsTimePathOldNewAndAnswer()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        QVERIFY(OperatorJournal::Write(value, 97.3e6, nullptr));
        QCOMPARE(bench.Lines().size(), 1);
        const QJsonObject line = bench.Line(0);
        QCOMPARE(line.keys().size(), 6);
        QVERIFY(QDateTime::fromString(line["time"].toString(), Qt::ISODateWithMs).isValid());
        QCOMPARE(line["path"].toString(), value.GetPathName());
        QCOMPARE(line["old"].toDouble(), 98.5e6);
        QCOMPARE(line["new"].toDouble(), 97.3e6);
        QCOMPARE(line["answer"].toString(), QStringLiteral("accepted"));
        QVERIFY(bench.Lines().at(0).startsWith("{\"time\":"));
    }

    void aLocalValueIsClampedAtOnceAndTheEntryIsKept()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        QVERIFY(OperatorJournal::Write(value, 7e9, nullptr));
        QCOMPARE(ControlBench::NumberOf(value), 6e9);
        QCOMPARE(bench.Line(0)["new"].toDouble(), 7e9);
        QCOMPARE(bench.Line(0)["answer"].toString(), QStringLiteral("clamped"));
        QVERIFY(!bench.Line(0)["reason"].toString().isEmpty());
    }

    void theAnswerOfTheDriverIsWaitedFor()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        Authority driver(value);
        QVERIFY(OperatorJournal::Write(value, 97.3e6, nullptr));
        QVERIFY(bench.Lines().isEmpty());
        driver.Refuse("coupled \"hard\"\n");
        QCOMPARE(bench.Line(0)["answer"].toString(), QStringLiteral("refused"));
        QCOMPARE(bench.Line(0)["reason"].toString(), QStringLiteral("coupled \"hard\"\n"));
        QVERIFY(OperatorJournal::Write(value, 97.4e6, nullptr));
        driver.Accept();
        QCOMPARE(bench.Line(1)["answer"].toString(), QStringLiteral("accepted"));
        QVERIFY(OperatorJournal::Write(value, 9e9, nullptr));
        driver.Clamp(6e9, "highest");
        QCOMPARE(bench.Line(2)["answer"].toString(), QStringLiteral("clamped"));
        QVERIFY(OperatorJournal::Write(value, 1e6, nullptr));
        driver.Stay();
        QCOMPARE(bench.Line(3)["answer"].toString(), QStringLiteral("unanswered"));
    }

    void writesThatOvertakeTheAnswerAllHaveTheirLine()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        Authority driver(value);
        for (int step = 1; step <= 5; ++step)
            QVERIFY(OperatorJournal::Write(value, 97e6 + step, nullptr));
        QCOMPARE(bench.Lines().size(), 4);
        QCOMPARE(bench.Line(0)["answer"].toString(), QStringLiteral("superseded"));
        driver.Accept();
        QCOMPARE(bench.Lines().size(), 5);
        QCOMPARE(bench.Line(4)["new"].toDouble(), 97e6 + 5);
    }

    void aWriteTakenBackBeforeItWasSentHasItsLine()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        Authority driver(value);
        QVERIFY(OperatorJournal::Write(value, 97e6, nullptr));
        QVERIFY(OperatorJournal::Write(value, 98.5e6, nullptr));
        ValueHost::SetStatus(value, WriteStatus());  // as the link says that nothing is to be asked
        QCOMPARE(bench.Lines().size(), 2);
        QCOMPARE(bench.Line(1)["answer"].toString(), QStringLiteral("accepted"));
    }

    void aValueDeletedBeforeTheAnswerHasItsLine()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        Authority driver(value);
        QVERIFY(OperatorJournal::Write(value, 97e6, nullptr));
        Tree::Instance()->DeleteValue(value.GetPathName());
        QCOMPARE(bench.Line(0)["answer"].toString(), QStringLiteral("unanswered"));
        QVERIFY(bench.Line(0)["reason"].toString().contains("deleted"));
    }

    void closingWritesWhatIsOutstanding()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        Authority driver(value);
        QVERIFY(OperatorJournal::Write(value, 97e6, nullptr));
        QVERIFY(OperatorJournal::Open(QString(), nullptr));
        QCOMPARE(bench.Line(0)["answer"].toString(), QStringLiteral("unanswered"));
    }

    void whatCannotBeWrittenIsRefusedAndNoted()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        QVERIFY(!OperatorJournal::Write(value, QStringLiteral("loud"), nullptr));
        ValueHost::SetState(value, VS_STALE);
        QVERIFY(!OperatorJournal::Write(value, 1e6, nullptr));
        ValueHost::SetState(value, VS_USABLE);
        ValueDescription description = ValueHost::Description(value);
        description.writable = false;
        ValueHost::SetDescription(value, description);
        QVERIFY(!OperatorJournal::Write(value, 1e6, nullptr));
        ValueSelection& mode = ControlBench::Demodulation();
        QVERIFY(!OperatorJournal::Write(mode, 77, nullptr));
        QCOMPARE(bench.Lines().size(), 4);
        for (int line = 0; line < 4; ++line) {
            QCOMPARE(bench.Line(line)["answer"].toString(), QStringLiteral("refused"));
            QVERIFY(!bench.Line(line)["reason"].toString().isEmpty());
        }
        QCOMPARE(ControlBench::NumberOf(value), 98.5e6);
    }

    void textIsReadAsTheValueNeedsIt_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("taken");
        QTest::addColumn<QVariant>("content");
        const QString frequency = "/RX1/DDC/DDC1/Frequency";
        const QString mode = "/RX1/DDC/DDC1/Demodulation";
        QTest::newRow("prefix") << frequency << "97.3M" << true << QVariant(97.3e6);
        QTest::newRow("no number") << frequency << "loud" << false << QVariant(98.5e6);
        QTest::newRow("item") << mode << "USB" << true << QVariant(2);
        QTest::newRow("item in small letters") << mode << " usb" << true << QVariant(2);
        QTest::newRow("key") << mode << "4" << true << QVariant(4);
        QTest::newRow("no such item") << mode << "XYZ" << false << QVariant(1);
        QTest::newRow("no such key") << mode << "44" << false << QVariant(1);
        QTest::newRow("item by its quantity") << "/RX1/Bandwidth"
                                              << "15k" << true << QVariant(7);
        QTest::newRow("switch") << "/RX1/Mute"
                                << "on" << true << QVariant(true);
        QTest::newRow("no switch") << "/RX1/Mute"
                                   << "loud" << false << QVariant(false);
        QTest::newRow("text") << "/RX1/Name"
                              << " x " << true << QVariant(" x ");
        QTest::newRow("whole number") << "/RX1/Count"
                                      << "2k" << true << QVariant(2000);
        QTest::newRow("fraction") << "/RX1/Count"
                                  << "2.5" << false << QVariant(3);
        QTest::newRow("beyond whole numbers") << "/RX1/Count"
                                              << "3G" << false << QVariant(3);
    }

    void textIsReadAsTheValueNeedsIt()
    {
        QFETCH(QString, path);
        QFETCH(QString, text);
        QFETCH(bool, taken);
        QFETCH(QVariant, content);
        JournalBench bench;
        ControlBench::Frequency();
        ControlBench::Demodulation();
        ControlBench::Selection("/RX1/Bandwidth", {{3, "6 kHz", 6000}, {7, "15 kHz", 15000}}, 3);
        ControlBench::Bool("/RX1/Mute", false);
        ControlBench::PlainText("/RX1/Name", "y");
        ValueDescription whole;
        whole.type = ValueType::Integer;
        ValueHost::Create("/RX1/Count", whole, 3);
        ValueBase& value = *Tree::Instance()->FindValue(path);
        QCOMPARE(OperatorJournal::WriteText(value, text, nullptr), taken);
        QCOMPARE(ValueHost::Content(value), content);
    }

    void aSelectionIsNotedByItsItems()
    {
        JournalBench bench;
        QVERIFY(OperatorJournal::Write(ControlBench::Demodulation(), 2, nullptr));
        QCOMPARE(bench.Line(0)["old"].toString(), QStringLiteral("FM"));
        QCOMPARE(bench.Line(0)["new"].toString(), QStringLiteral("USB"));
    }

    void theWriterIsNotNotifiedAndOthersAre()
    {
        JournalBench bench;
        ValueBase& value = ControlBench::Frequency();
        WriteCount writer(value);
        WriteCount other(value);
        QVERIFY(OperatorJournal::Write(value, 97e6, &writer));
        QCOMPARE(writer.Count(), 0);
        QCOMPARE(other.Count(), 1);
    }

    void aFileThatCannotBeOpenedIsToldWithItsName()
    {
        QString reason;
        QVERIFY(!OperatorJournal::Open("/no/such/folder/journal", &reason));
        QVERIFY(reason.contains("/no/such/folder/journal"));
    }

    void aLineCutByAKilledProcessDoesNotSpoilTheNext()
    {
        JournalBench bench;
        OperatorJournal::Open(QString(), nullptr);
        QFile file(bench.fileName);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{\"time\":\"2026");
        file.close();
        QVERIFY(OperatorJournal::Open(bench.fileName, nullptr));
        QVERIFY(OperatorJournal::Write(ControlBench::Frequency(), 97e6, nullptr));
        QCOMPARE(bench.Lines().size(), 2);
        QCOMPARE(bench.Line(1)["answer"].toString(), QStringLiteral("accepted"));
    }

    void linesThatADiskRefusesWaitAndTheTroubleIsToldOnce()
    {
        if (!QFile::exists("/dev/full"))
            QSKIP("this system has no device that is always full");
        QTemporaryDir folder;
        JournalFile journal;
        QVERIFY(journal.Open("/dev/full", nullptr));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write the operator journal"));
        QTest::failOnWarning(QRegularExpression(".*"));
        journal.Append("one");
        journal.Append("two");
        QCOMPARE(journal.CountWaiting(), 2);
        QVERIFY(journal.Open(folder.filePath("journal"), nullptr));
        QCOMPARE(journal.CountWaiting(), 0);
        QFile file(folder.filePath("journal"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("one\ntwo\n"));
    }
};

QTEST_MAIN(TestJournal)
#include "tst_journal.moc"
