#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>

#include "driverprocess.h"

// The program as the shell sees it: output, exit codes, signals.
class TestRxDriver : public QObject
{
    Q_OBJECT
private slots:
    void theFirstLineNamesThePortAndAClientCanConnect();
    void badUseIsOneLineAndExitCodeTwo_data();
    void badUseIsOneLineAndExitCodeTwo();
    void aBadRecordingIsOneLineAndExitCodeTwo_data();
    void aBadRecordingIsOneLineAndExitCodeTwo();
    void aPortInUseIsOneLineAndExitCodeTwo();
    void helpAndVersionEndWithZero_data();
    void helpAndVersionEndWithZero();
    void askedToEndItEndsCleanly_data();
    void askedToEndItEndsCleanly();
    void aRecordingPlayedOnceLeavesTheDriverRunning();

private:
    QString file(const QString& name, const QByteArray& content);
    void verifyOneLineAndExitCodeTwo(DriverProcess& driver, const QString& named);

    QTemporaryDir m_folder;
};

QString TestRxDriver::file(const QString& name, const QByteArray& content)
{
    QFile file(m_folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

void TestRxDriver::verifyOneLineAndExitCodeTwo(DriverProcess& driver, const QString& named)
{
    QVERIFY(driver.waitForEnd());
    QVERIFY(driver.endedByItself());
    const QString errors = driver.errors();
    QCOMPARE(driver.exitCode(), 2);
    QVERIFY2(errors.contains(named), qPrintable(errors));
    QVERIFY2(errors.startsWith("rxdriver: "), qPrintable(errors));
    QCOMPARE(errors.count('\n'), 1);
    QVERIFY(errors.endsWith('\n'));
    QCOMPARE(driver.moreOutput(), QString());
}

void TestRxDriver::theFirstLineNamesThePortAndAClientCanConnect()
{
    DriverProcess driver({"--scene", "1"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    const QRegularExpression form("\\Arxdriver: listening on 127\\.0\\.0\\.1:\\d+\\z");
    QVERIFY2(form.match(driver.firstLine()).hasMatch(), qPrintable(driver.firstLine()));
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", driver.port());
    QVERIFY(socket.waitForConnected(DriverProcess::patienceMs));
}

void TestRxDriver::badUseIsOneLineAndExitCodeTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");
    QTest::newRow("unknown option") << QStringList{"--fast"} << "fast";
    QTest::newRow("missing value") << QStringList{"--iq"} << "--iq";
    QTest::newRow("listen") << QStringList{"--listen", "here"} << "--listen here";
    QTest::newRow("scene and recording") << QStringList{"--scene", "1", "--iq", "x"} << "--scene";
    QTest::newRow("address of another machine")
        << QStringList{"--listen", "192.0.2.1:4600"} << "192.0.2.1:4600";
}

void TestRxDriver::badUseIsOneLineAndExitCodeTwo()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    DriverProcess driver(arguments);
    verifyOneLineAndExitCodeTwo(driver, named);
}

void TestRxDriver::aBadRecordingIsOneLineAndExitCodeTwo_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("options");
    const QStringList raw = {"--rate", "1M", "--format", "s16"};
    QTest::newRow("missing") << "missing.wav" << QByteArray() << QStringList();
    QTest::newRow("empty wav") << "empty.wav" << QByteArray("") << QStringList();
    QTest::newRow("empty raw") << "empty.cs16" << QByteArray("") << raw;
    QTest::newRow("less than a sample") << "short.cs16" << QByteArray("abc") << raw;
    QTest::newRow("cut in its header")
        << "cut.wav" << QByteArray("RIFF\x24\0\0\0WAVEfmt ", 16) << QStringList();
    QTest::newRow("no sound at all") << "text.wav" << QByteArray("this is a text, nothing else\n")
                                     << QStringList();
    QTest::newRow("description that is no JSON") << "bad.sigmf-meta" << QByteArray("{") << QStringList();
    QTest::newRow("folder") << "." << QByteArray() << QStringList();
}

void TestRxDriver::aBadRecordingIsOneLineAndExitCodeTwo()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, options);
    QString path = m_folder.filePath(name);
    if (!content.isNull())
        path = file(name, content);
    DriverProcess driver(QStringList({"--iq", path}) + options);
    verifyOneLineAndExitCodeTwo(driver, QString(name).section('.', 0, 0));
}

void TestRxDriver::aPortInUseIsOneLineAndExitCodeTwo()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    const QString address = QString("127.0.0.1:%1").arg(other.serverPort());
    DriverProcess driver({"--listen", address});
    verifyOneLineAndExitCodeTwo(driver, address);
}

void TestRxDriver::helpAndVersionEndWithZero_data()
{
    QTest::addColumn<QString>("option");
    QTest::newRow("help") << "--help";
    QTest::newRow("version") << "--version";
}

void TestRxDriver::helpAndVersionEndWithZero()
{
    QFETCH(QString, option);
    DriverProcess driver({option});
    QVERIFY(driver.waitForEnd());
    QCOMPARE(driver.exitCode(), 0);
    QVERIFY(!driver.moreOutput().isEmpty());
    QCOMPARE(driver.errors(), QString());
}

void TestRxDriver::askedToEndItEndsCleanly_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestRxDriver::askedToEndItEndsCleanly()
{
    QFETCH(int, signal);
    DriverProcess driver({"--scene", "1"});
    QVERIFY(driver.waitForPort());
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", driver.port());
    QVERIFY(socket.waitForConnected(DriverProcess::patienceMs));
    driver.send(signal);
    QVERIFY(driver.waitForEnd());
    QVERIFY(driver.endedByItself());
    QCOMPARE(driver.exitCode(), 0);
    QCOMPARE(driver.moreOutput(), QString());
}

void TestRxDriver::aRecordingPlayedOnceLeavesTheDriverRunning()
{
    // A tenth of a second of silence: over long before the second connection is there.
    const QString path = file("silence.cs16", QByteArray(4 * 4800, '\0'));
    DriverProcess driver({"--iq", path, "--rate", "48k", "--center", "7.1M", "--once"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    for (int i = 0; i < 2; ++i) {
        QTcpSocket socket;
        socket.connectToHost("127.0.0.1", driver.port());
        QVERIFY(socket.waitForConnected(DriverProcess::patienceMs));
    }
    driver.send(SIGTERM);
    QVERIFY(driver.waitForEnd());
    QCOMPARE(driver.exitCode(), 0);
}

QTEST_GUILESS_MAIN(TestRxDriver)
#include "tst_rxdriver.moc"
