#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <memory>
#include <vector>

#include "base/basehost.h"
#include "base/errorhandler.h"

namespace {

QStringList lowerHandlerMessages;

void LowerHandler(QtMsgType, const QMessageLogContext&, const QString& text)
{
    lowerHandlerMessages.append(text);
}

QtMessageHandler handlerBelowUpper = nullptr;

void UpperHandler(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (handlerBelowUpper)
        handlerBelowUpper(type, context, text);
}

QStringList LinesOf(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QStringList();
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QString TextOf(const QString& line)
{
    return line.section(QLatin1Char(' '), 3);  // after time, level and category
}

}  // namespace

class TestLogFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_Folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_Folder->isValid());
        m_File = m_Folder->filePath(QStringLiteral("logs/rx.log"));
        lowerHandlerMessages.clear();
        m_Former = qInstallMessageHandler(LowerHandler);
    }

    void cleanup()
    {
        BaseHost::OpenLog(QString(), 0, 0, nullptr);
        qInstallMessageHandler(m_Former);
    }

    void aLineHoldsTimeLevelCategoryAndMessage()
    {
        Open(1000000, 3);
        _Q_Trace(QStringLiteral("tuned"), QStringLiteral("a\\b"), 7);
        const QStringList lines = LinesOf(m_File);
        QCOMPARE(lines.size(), 1);
        const QRegularExpression form(QStringLiteral(
            "^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z info rx\\.trace tuned \\[a\\\\b:7\\]$"));
        QVERIFY2(form.match(lines.first()).hasMatch(), qPrintable(lines.first()));
    }

    void theFormerHandlerGoesOnReceivingEverything()
    {
        Open(1000000, 3);
        qWarning("one");
        qWarning("two");
        QCOMPARE(lowerHandlerMessages, QStringList({QStringLiteral("one"), QStringLiteral("two")}));
        QCOMPARE(LinesOf(m_File).size(), 2);
    }

    void aClosedLogWritesNothingAndRestoresTheFormerHandler()
    {
        Open(1000000, 3);
        qWarning("inside");
        QVERIFY(BaseHost::OpenLog(QString(), 0, 0, nullptr));
        qWarning("outside");
        QCOMPARE(LinesOf(m_File).size(), 1);
        QCOMPARE(lowerHandlerMessages.size(), 2);
        const QtMessageHandler current = qInstallMessageHandler(LowerHandler);
        QVERIFY(current == LowerHandler);
    }

    void aHandlerThatWasPutOverTheLogSurvivesClosingAndReopening()
    {
        Open(1000000, 3);
        handlerBelowUpper = qInstallMessageHandler(UpperHandler);
        BaseHost::OpenLog(QString(), 0, 0, nullptr);
        Open(1000000, 3);
        qWarning("through all");
        QCOMPARE(lowerHandlerMessages, QStringList(QStringLiteral("through all")));
        QCOMPARE(LinesOf(m_File).size(), 1);
        qInstallMessageHandler(handlerBelowUpper);
    }

    void openingAgainAppends()
    {
        Open(1000000, 3);
        qWarning("first run");
        BaseHost::OpenLog(QString(), 0, 0, nullptr);
        Open(1000000, 3);
        qWarning("second run");
        QCOMPARE(LinesOf(m_File).size(), 2);
    }

    void aFullFileIsPutAsideAndTheOldestOnesGo()
    {
        const int maximumBytes = 200;
        Open(maximumBytes, 3);
        for (int i = 0; i < 40; ++i)
            qWarning("record number %d", i);
        QCOMPARE(
            QDir(m_Folder->filePath(QStringLiteral("logs"))).entryList(QDir::Files, QDir::Name),
            QStringList({QStringLiteral("rx.log"), QStringLiteral("rx.log.1"), QStringLiteral("rx.log.2")}));
        for (const QString& name : {m_File, m_File + QStringLiteral(".1"), m_File + QStringLiteral(".2")})
            QVERIFY(QFile(name).size() <= maximumBytes);
        QStringList kept =
            LinesOf(m_File + QStringLiteral(".2")) + LinesOf(m_File + QStringLiteral(".1")) + LinesOf(m_File);
        for (int i = 0; i < kept.size(); ++i)
            QCOMPARE(TextOf(kept.at(i)), QStringLiteral("record number %1").arg(40 - kept.size() + i));
    }

    void oneFileAloneBeginsAnew()
    {
        Open(100, 1);
        for (int i = 0; i < 10; ++i)
            qWarning("record number %d", i);
        QCOMPARE(QDir(m_Folder->filePath(QStringLiteral("logs"))).entryList(QDir::Files),
                 QStringList(QStringLiteral("rx.log")));
        QCOMPARE(TextOf(LinesOf(m_File).last()), QStringLiteral("record number 9"));
    }

    void aRecordLongerThanAFileIsKeptWhole()
    {
        Open(50, 2);
        const QString text(500, QLatin1Char('x'));
        qWarning("%s", qPrintable(text));
        QCOMPARE(TextOf(LinesOf(m_File).last()), text);
    }

    void lineBreaksDoNotBreakARecord()
    {
        Open(100000, 2);
        ErrorHandler::Instance()->ReportError(QStringLiteral("one\ntwo\r\nthree"));
        QCOMPARE(LinesOf(m_File).size(), 1);
        QCOMPARE(TextOf(LinesOf(m_File).first()), QStringLiteral("one\\ntwo\\r\\nthree"));
    }

    void aFileThatCannotBeOpenedSaysWhichAndWhy()
    {
        QString reason;
        QVERIFY(!BaseHost::OpenLog(m_Folder->path(), 1000, 2, &reason));
        QVERIFY2(reason.startsWith(m_Folder->path() + QStringLiteral(": cannot be opened for writing: ")),
                 qPrintable(reason));
        QVERIFY(!BaseHost::OpenLog(QStringLiteral("/proc/none/rx.log"), 1000, 2, &reason));
        QCOMPARE(reason, QStringLiteral("/proc/none/rx.log: cannot make the folder /proc/none"));
        qWarning("still heard");
        QCOMPARE(lowerHandlerMessages, QStringList(QStringLiteral("still heard")));
    }

    void recordsOfManyThreadsStayWhole()
    {
        const int threads = 8;
        const int each = 200;
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        Open(20000, 200);
        std::vector<std::unique_ptr<QThread>> workers;
        for (int t = 0; t < threads; ++t)
            workers.emplace_back(QThread::create([t] {
                for (int i = 0; i < each; ++i)
                    qWarning("worker %d record %d end", t, i);
            }));
        for (const auto& worker : workers)
            worker->start();
        for (const auto& worker : workers)
            QVERIFY(worker->wait(60000));
        QStringList all = LinesOf(m_File);
        for (int number = 1; number < 200; ++number)
            all += LinesOf(m_File + QLatin1Char('.') + QString::number(number));
        QSet<QString> found;
        const QRegularExpression form(QStringLiteral("^worker \\d record \\d+ end$"));
        for (const QString& line : all) {
            QVERIFY2(form.match(TextOf(line)).hasMatch(), qPrintable(line));
            found.insert(TextOf(line));
        }
        QCOMPARE(all.size(), threads * each);
        QCOMPARE(found.size(), threads * each);
    }

private:
    void Open(qint64 maximumBytes, int files)
    {
        QString reason;
        QVERIFY2(BaseHost::OpenLog(m_File, maximumBytes, files, &reason), qPrintable(reason));
    }

    std::unique_ptr<QTemporaryDir> m_Folder;
    QString m_File;
    QtMessageHandler m_Former = nullptr;
};

QTEST_GUILESS_MAIN(TestLogFile)
#include "tst_logfile.moc"
