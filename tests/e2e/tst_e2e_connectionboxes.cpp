#include <QTest>
#include <memory>

#include "station.h"

using namespace RxTest;

// Both questions of the connection logic, answered every way, with the real programs and no driver.
class ConnectionBoxesTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void asksOnceWhetherToWaitLonger();
    void asksWhatToDoWhenTheReceiverIsUnreachable();

private:
    static QString titleOfBox(Window* window) { return window->pilot.box()["title"].toString(); }

    std::unique_ptr<Station> m_station;
};

void ConnectionBoxesTest::init()
{
    // A port that was a driver's a moment ago, and will be again.
    m_station = std::make_unique<Station>();
    QVERIFY2(m_station->startDriver(), qPrintable(m_station->driver().output()));
    m_station->killDriver();
}

void ConnectionBoxesTest::cleanup()
{
    const QString faults = m_station->finish();
    m_station.reset();
    QVERIFY2(faults.isEmpty(), qPrintable(faults));
}

// The question comes after 35 s; three operators wait for it side by side.
void ConnectionBoxesTest::asksOnceWhetherToWaitLonger()
{
    const int questionMs = 35000 + patienceMs;
    constexpr double never = 3600;
    WindowSetup setup;
    setup.connectionTimeout = never;
    setup.ddc = "DDC1";
    Window* saysYes = m_station->openWindow(setup);
    setup.ddc = "DDC2";
    Window* saysNo = m_station->openWindow(setup);
    setup.ddc = "DDC3";
    Window* saysNothing = m_station->openWindow(setup);
    QVERIFY(saysYes != nullptr && saysNo != nullptr && saysNothing != nullptr);

    for (Window* window : {saysYes, saysNo, saysNothing}) {
        QTRY_COMPARE_WITH_TIMEOUT(titleOfBox(window), QString("Connection"), questionMs);
        QCOMPARE(window->pilot.box()["text"].toString(),
                 QString("Could not establish a connection to the driver. Do you want to wait longer?"));
    }
    QCOMPARE(saysNo->pilot.press("No"), QString());
    QVERIFY(saysNo->program.waitForEnd());
    QCOMPARE(saysNo->program.fault(), QString());

    QCOMPARE(saysYes->pilot.press("Yes"), QString());
    QTRY_VERIFY_WITH_TIMEOUT(saysYes->pilot.box().isEmpty(), patienceMs);
    QVERIFY(saysYes->program.isRunning());

    // The driver answers for those who wait: with the box gone, and with it still open.
    QVERIFY(m_station->startDriver());
    for (Window* window : {saysYes, saysNothing}) {
        QTRY_VERIFY_WITH_TIMEOUT(!window->pilot.window("DdcGuiMain").isEmpty(), patienceMs);
        QTRY_VERIFY_WITH_TIMEOUT(window->pilot.box().isEmpty(), patienceMs);
    }
}

void ConnectionBoxesTest::asksWhatToDoWhenTheReceiverIsUnreachable()
{
    WindowSetup setup;
    setup.connectionTimeout = 1.0;
    setup.ddc = "DDC1";
    Window* waits = m_station->openWindow(setup);
    setup.ddc = "DDC2";
    Window* exits = m_station->openWindow(setup);
    setup.ddc = "DDC3";
    Window* simulates = m_station->openWindow(setup);
    QVERIFY(waits != nullptr && exits != nullptr && simulates != nullptr);

    for (Window* window : {waits, exits, simulates}) {
        QTRY_COMPARE_WITH_TIMEOUT(titleOfBox(window), QString("Connection failed"), patienceMs);
        const QJsonObject box = window->pilot.box();
        QCOMPARE(box["text"].toString(), QString("The receiver seems to be unreachable. "));
        QCOMPARE(box["informativeText"].toString(), QString("Do you want to.."));
    }
    QCOMPARE(exits->pilot.press("exit the application"), QString());
    QVERIFY(exits->program.waitForEnd());
    QCOMPARE(exits->program.fault(), QString());

    QCOMPARE(waits->pilot.press("wait longer"), QString());
    QCOMPARE(simulates->pilot.press("connect to the simulation"), QString());
    QVERIFY(m_station->startDriver());
    for (Window* window : {waits, simulates}) {
        QTRY_VERIFY_WITH_TIMEOUT(!window->pilot.window("DdcGuiMain").isEmpty(), patienceMs);
    }
}

QTEST_GUILESS_MAIN(ConnectionBoxesTest)
#include "tst_e2e_connectionboxes.moc"
