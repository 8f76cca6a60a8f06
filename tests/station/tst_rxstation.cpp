#include <signal.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTest>
#include <memory>

#include "station.h"

using namespace RxTest;

// The launcher with the real driver and the real windows.
class RxStationTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void endsByItselfAfterTheSecondsGivenAndLeavesPictures();
    void startsADriverThatDiedAgainOnTheSamePort();
    void endsEverythingWhenTheLastWindowCloses();
    void leavesNothingBehindWhenItIsKilled();
    void endsInOrderWhenItIsToldTo();
    void refusesABadRecordingWithTheDriversOwnLine();
    void refusesAnUnknownConfiguration();
    void usesARunningDriverAndLeavesItRunning();
    void showsSeveralWindowsOnOneDriver();
    void showsItselfToViewersOfThisMachineOnly();

private:
    // A launcher with one window that a test can drive.
    struct Run
    {
        Station station;
        Program launcher{station.marker(), station.environment()};
        Pilot pilot{station.folder() + "/pilot"};

        bool start(const QStringList& arguments)
        {
            const QString file = station.writeConfiguration({}, station.folder() + "/pilot");
            const QStringList own{"--config",       file,        "--headless", "--state",
                                  station.folder(), "--plugins", RX_PILOT_DIR};
            return launcher.start("rxstation", own + arguments);
        }
        bool startAndShow(const QStringList& arguments = {})
        {
            return start(arguments) && pilot.reach(patienceMs) &&
                   until([this] { return !pilot.window("DdcGuiMain").isEmpty(); });
        }
        qint64 processOf(const QString& name) const
        {
            for (const QString& process : processesWith(station.marker())) {
                if (process.contains("/" + name + " ")) {
                    return process.section(' ', 0, 0).toLongLong();
                }
            }
            return 0;
        }
        bool nothingRuns() const { return processesWith(station.marker()).isEmpty(); }
    };
};

void RxStationTest::endsByItselfAfterTheSecondsGivenAndLeavesPictures()
{
    Run run;
    const QString pictures = run.station.folder() + "/pictures";
    QVERIFY(run.start({"--seconds", "8", "--shots", pictures}));
    QVERIFY(run.launcher.waitForEnd());
    QCOMPARE(run.launcher.fault(), QString());
    QVERIFY2(run.nothingRuns(), qPrintable(processesWith(run.station.marker()).join('\n')));
    const QStringList files = QDir(pictures).entryList({"*.png"});
    QVERIFY2(!files.filter("ddc1").isEmpty(), qPrintable(files.join(' ') + run.launcher.output()));
    QVERIFY2(!files.filter("-end").isEmpty(), qPrintable(files.join(' ')));
}

void RxStationTest::startsADriverThatDiedAgainOnTheSamePort()
{
    Run run;
    QVERIFY2(run.startAndShow(), qPrintable(run.launcher.output()));
    const qint64 first = run.processOf("rxdriver");
    QVERIFY(first > 0);
    QCOMPARE(::kill(static_cast<pid_t>(first), SIGKILL), 0);

    QTRY_VERIFY_WITH_TIMEOUT(run.launcher.output().contains("the driver is back on"), patienceMs);
    const QRegularExpression port("listens on 127\\.0\\.0\\.1:(\\d+)");
    const QString listened = port.match(run.launcher.output()).captured(1);
    QVERIFY(!listened.isEmpty());
    QVERIFY2(run.launcher.output().contains("back on 127.0.0.1:" + listened),
             qPrintable(run.launcher.output()));
    QVERIFY(run.processOf("rxdriver") != first);
    QTRY_COMPARE_WITH_TIMEOUT(run.pilot.valueState("/RX1/DDC/DDC1/Frequency"), 0, patienceMs);

    run.launcher.terminate();
    QVERIFY(run.launcher.waitForEnd());
    QCOMPARE(run.launcher.fault(), QString());
}

void RxStationTest::endsEverythingWhenTheLastWindowCloses()
{
    Run run;
    QVERIFY2(run.startAndShow(), qPrintable(run.launcher.output()));
    QCOMPARE(run.pilot.close({{"class", "DdcGuiMain"}}), QString());
    QVERIFY(run.launcher.waitForEnd());
    QCOMPARE(run.launcher.fault(), QString());
    QVERIFY(run.nothingRuns());
}

void RxStationTest::leavesNothingBehindWhenItIsKilled()
{
    Run run;
    QVERIFY2(run.startAndShow(), qPrintable(run.launcher.output()));
    run.launcher.kill();
    QTRY_VERIFY_WITH_TIMEOUT(run.nothingRuns(), patienceMs);
}

void RxStationTest::endsInOrderWhenItIsToldTo()
{
    Run run;
    QVERIFY2(run.startAndShow(), qPrintable(run.launcher.output()));
    run.launcher.terminate();
    QVERIFY(run.launcher.waitForEnd());
    QCOMPARE(run.launcher.fault(), QString());
    QVERIFY(run.nothingRuns());
}

void RxStationTest::refusesABadRecordingWithTheDriversOwnLine()
{
    Run run;
    const QString file = run.station.folder() + "/empty.wav";
    QFile empty(file);
    QVERIFY(empty.open(QIODevice::WriteOnly));
    empty.close();
    run.launcher.expectExitCode(2);
    QVERIFY(run.start({"--iq", file}));
    QVERIFY(run.launcher.waitForEnd());
    QCOMPARE(run.launcher.fault(), QString());
    QVERIFY2(run.launcher.output().contains("empty.wav"), qPrintable(run.launcher.output()));
    QVERIFY(run.nothingRuns());
}

void RxStationTest::refusesAnUnknownConfiguration()
{
    Station station;
    Program launcher(station.marker(), station.environment());
    launcher.expectExitCode(2);
    QVERIFY(launcher.start("rxstation", {"--config", "NoSuch", "--headless"}));
    QVERIFY(launcher.waitForEnd());
    QCOMPARE(launcher.fault(), QString());
    QVERIFY2(launcher.output().contains("NoSuch"), qPrintable(launcher.output()));
}

void RxStationTest::usesARunningDriverAndLeavesItRunning()
{
    Run run;
    QVERIFY(run.station.startDriver());
    QVERIFY2(run.startAndShow({"--driver", run.station.driverAddress()}), qPrintable(run.launcher.output()));
    run.launcher.terminate();
    QVERIFY(run.launcher.waitForEnd());
    QCOMPARE(run.launcher.fault(), QString());
    QVERIFY(run.station.driver().isRunning());
    QCOMPARE(run.station.finish(), QString());
}

void RxStationTest::showsSeveralWindowsOnOneDriver()
{
    Run run;
    WindowSetup forDdc2;
    forDdc2.ddc = "DDC2";
    const QString second = run.station.writeConfiguration(forDdc2, run.station.folder() + "/pilot2");
    QVERIFY(run.start({"--config", second}));
    Pilot other(run.station.folder() + "/pilot2");
    QVERIFY2(run.pilot.reach(patienceMs) && other.reach(patienceMs), qPrintable(run.launcher.output()));
    QTRY_VERIFY_WITH_TIMEOUT(run.pilot.window("DdcGuiMain")["title"].toString().contains("DDC1"), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(other.window("DdcGuiMain")["title"].toString().contains("DDC2"), patienceMs);
    QCOMPARE(processesWith(run.station.marker()).filter("/rxdriver ").size(), 1);

    QCOMPARE(other.close({{"class", "DdcGuiMain"}}), QString());
    QTRY_COMPARE_WITH_TIMEOUT(processesWith(run.station.marker()).filter("/rxworkbench ").size(), 1,
                              patienceMs);
    QVERIFY(run.launcher.isRunning());
    QCOMPARE(run.pilot.close({{"class", "DdcGuiMain"}}), QString());
    QVERIFY(run.launcher.waitForEnd());
    QCOMPARE(run.launcher.fault(), QString());
}

// Addresses that listen on a port, as the kernel lists them.
static QStringList listenersOn(int port)
{
    QStringList found;
    for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        QFile file(table);
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray& line : lines) {
            const QList<QByteArray> fields = line.simplified().split(' ');
            const QByteArray listening = "0A";
            if (fields.size() > 3 && fields.at(3) == listening &&
                fields.at(1).endsWith(':' + QByteArray::number(port, 16).rightJustified(4, '0').toUpper())) {
                found << QString::fromLatin1(fields.at(1).split(':').first());
            }
        }
    }
    return found;
}

void RxStationTest::showsItselfToViewersOfThisMachineOnly()
{
    Run run;
    QTcpServer trial;
    QVERIFY(trial.listen(QHostAddress::LocalHost));
    const int port = trial.serverPort();
    trial.close();

    const QString file = run.station.writeConfiguration({}, run.station.folder() + "/pilot");
    QVERIFY(run.launcher.start("rxstation", {"--config", file, "--vnc", QString::number(port), "--state",
                                             run.station.folder(), "--plugins", RX_PILOT_DIR}));
    QVERIFY2(run.pilot.reach(patienceMs), qPrintable(run.launcher.output()));
    QTRY_VERIFY_WITH_TIMEOUT(!run.pilot.window("DdcGuiMain").isEmpty(), patienceMs);
    const QString loopback = "0100007F";
    QCOMPARE(listenersOn(port), QStringList{loopback});

    run.launcher.terminate();
    QVERIFY(run.launcher.waitForEnd());
    QCOMPARE(run.launcher.fault(), QString());
    QTRY_VERIFY_WITH_TIMEOUT(run.nothingRuns(), patienceMs);
}

QTEST_GUILESS_MAIN(RxStationTest)
#include "tst_rxstation.moc"
