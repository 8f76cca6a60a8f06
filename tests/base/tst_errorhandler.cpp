#include <QStringList>
#include <QTest>
#include <QThread>
#include <memory>

#include "base/basehost.h"
#include "base/errorhandler.h"

namespace {

struct Record
{
    QtMsgType type;
    QString category;
    QString text;
    int line;
};

QList<Record> records;

void KeepRecord(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    records.append({type, QString::fromLatin1(context.category), text, context.line});
}

// Takes Qt's messages for as long as it lives.
class MessageTrap
{
public:
    MessageTrap() : m_Former(qInstallMessageHandler(KeepRecord)) { records.clear(); }
    ~MessageTrap() { qInstallMessageHandler(m_Former); }

private:
    QtMessageHandler m_Former;
};

}  // namespace

class TestErrorHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        BaseHost::SetErrorListener(nullptr);
        BaseHost::SetTraceMask(0x20);
    }

    void thereIsOneErrorHandler()
    {
        QVERIFY(ErrorHandler::Instance());
        QCOMPARE(ErrorHandler::Instance(), ErrorHandler::Instance());
    }

    void deviceControlPluginsTraceUntilToldOtherwise()
    {
        QCOMPARE(ErrorHandler::Instance()->GetTraceMask(), 0x20u);
    }

    void theMaskIsWhatTheApplicationSet()
    {
        BaseHost::SetTraceMask(0xFFFFFFFFu);
        QCOMPARE(ErrorHandler::Instance()->GetTraceMask(), 0xFFFFFFFFu);
        BaseHost::SetTraceMask(0);
        QCOMPARE(ErrorHandler::Instance()->GetTraceMask(), 0u);
    }

    void anErrorIsLoggedAndThenToldToTheListener()
    {
        const MessageTrap trap;
        int recordsWhenTold = -1;
        QString told;
        BaseHost::SetErrorListener([&](const QString& message) {
            told = message;
            recordsWhenTold = records.size();
        });
        ErrorHandler::Instance()->ReportError(QStringLiteral("No connection to the driver."));
        QCOMPARE(told, QStringLiteral("No connection to the driver."));
        QCOMPARE(recordsWhenTold, 1);
        QCOMPARE(records.first().category, QStringLiteral("rx.error"));
        QCOMPARE(records.first().type, QtWarningMsg);
        QCOMPARE(records.first().text, QStringLiteral("No connection to the driver."));
    }

    void withoutAListenerAnErrorIsStillLogged()
    {
        const MessageTrap trap;
        ErrorHandler::Instance()->ReportError(QStringLiteral("100 %1 \"quoted\" äöü"));
        QCOMPARE(records.size(), 1);
        QCOMPARE(records.first().text, QStringLiteral("100 %1 \"quoted\" äöü"));
    }

    void aListenerMayReplaceItself()
    {
        const MessageTrap trap;
        QStringList told;
        BaseHost::SetErrorListener([&](const QString& message) {
            told.append(QStringLiteral("first ") + message);
            BaseHost::SetErrorListener(
                [&told](const QString& next) { told.append(QStringLiteral("second ") + next); });
        });
        ErrorHandler::Instance()->ReportError(QStringLiteral("a"));
        ErrorHandler::Instance()->ReportError(QStringLiteral("b"));
        QCOMPARE(told, QStringList({QStringLiteral("first a"), QStringLiteral("second b")}));
    }

    void anErrorOfAnotherThreadReachesTheListenerOnTheGuiThread()
    {
        const MessageTrap trap;
        QThread* listenersThread = nullptr;
        BaseHost::SetErrorListener([&](const QString&) { listenersThread = QThread::currentThread(); });
        const std::unique_ptr<QThread> thread(
            QThread::create([] { ErrorHandler::Instance()->ReportError(QStringLiteral("from a worker")); }));
        thread->start();
        QVERIFY(thread->wait(60000));
        QVERIFY(!listenersThread);  // not from the worker's side
        QTRY_COMPARE_WITH_TIMEOUT(listenersThread, QCoreApplication::instance()->thread(), 60000);
    }

    void aTraceLineHoldsMessageThenSourceThenLine()
    {
        const MessageTrap trap;
        _Q_Trace(QStringLiteral("DDCGUI connected to driver"),
                 QStringLiteral("devicecontrol\\receiver\\common\\ddcgui\\ddcgui"), 134);
        QCOMPARE(records.size(), 1);
        QCOMPARE(records.first().category, QStringLiteral("rx.trace"));
        QCOMPARE(records.first().text,
                 QStringLiteral(
                     "DDCGUI connected to driver [devicecontrol\\receiver\\common\\ddcgui\\ddcgui:134]"));
        QCOMPARE(records.first().line, 134);
    }

    void traceLinesAreWrittenWhereDebugOutputIsOff()
    {
        const MessageTrap trap;
        _Q_Trace(QString(), QString(), 65535);
        QCOMPARE(records.size(), 1);
        QCOMPARE(records.first().type, QtInfoMsg);
        QCOMPARE(records.first().text, QStringLiteral(" [:65535]"));
    }
};

QTEST_GUILESS_MAIN(TestErrorHandler)
#include "tst_errorhandler.moc"
