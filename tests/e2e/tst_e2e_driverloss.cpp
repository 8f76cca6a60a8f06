#include <signal.h>

#include <QHostInfo>
#include <QTest>
#include <memory>

#include "station.h"

using namespace RxTest;

namespace {

const QString channel = "/RX1/DDC/DDC1";
constexpr int usable = 0;
constexpr int stale = 3;

}  // namespace

// The driver goes away at every moment at which it can, with the real programs.
class DriverLossTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void findsADriverThatComesLater();
    void getsOverADriverThatAcceptsAndSaysNothing();
    void keepsTheChoiceOpenWhileTheDriverIsAway();
    void keepsItsWindowAndRecoversItsChannel();
    void saysHowLongTheDriverIsAwayAndWhatItDoes();
    void noticesADriverThatStoppedAnswering();
    void recoversTimeAfterTime();

private:
    void signalDriver(int number) { ::kill(static_cast<pid_t>(m_station->driver().id()), number); }
    static QString bannerText(Pilot& pilot) { return pilot.text({{"name", "DriverLine"}}); }
    static bool bannerShown(Pilot& pilot) { return pilot.isVisible({{"name", "StatusBanner"}}); }

    std::unique_ptr<Station> m_station;
};

void DriverLossTest::init()
{
    m_station = std::make_unique<Station>();
    QVERIFY2(m_station->startDriver(), qPrintable(m_station->driver().output()));
}

void DriverLossTest::cleanup()
{
    const QString faults = m_station->finish();
    m_station.reset();
    QVERIFY2(faults.isEmpty(), qPrintable(faults));
}

void DriverLossTest::findsADriverThatComesLater()
{
    m_station->killDriver();
    Window* window = m_station->openWindow();
    QVERIFY(window != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!window->pilot.windows().isEmpty(), patienceMs);
    QVERIFY(window->pilot.window("DdcGuiMain").isEmpty());
    QVERIFY(m_station->startDriver());
    QTRY_VERIFY_WITH_TIMEOUT(!window->pilot.window("DdcGuiMain").isEmpty(), patienceMs);
}

void DriverLossTest::getsOverADriverThatAcceptsAndSaysNothing()
{
    // Stopped, its connections are accepted by the kernel and answered by nobody.
    signalDriver(SIGSTOP);
    Window* window = m_station->openWindow();
    QVERIFY(window != nullptr);
    QVERIFY(window->pilot.window("DdcGuiMain").isEmpty());
    m_station->killDriver();
    QVERIFY(m_station->startDriver());
    QTRY_VERIFY_WITH_TIMEOUT(!window->pilot.window("DdcGuiMain").isEmpty(), patienceMs);
}

void DriverLossTest::keepsTheChoiceOpenWhileTheDriverIsAway()
{
    WindowSetup setup;
    setup.ddc = "";
    Window* window = m_station->openWindow(setup);
    QVERIFY(window != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!window->pilot.window("DdcSelectionDlg").isEmpty(), patienceMs);
    m_station->killDriver();
    QTRY_COMPARE_WITH_TIMEOUT(window->pilot.valueState(channel + "/Frequency"), stale, patienceMs);
    QVERIFY(!window->pilot.window("DdcSelectionDlg").isEmpty());
    QVERIFY(m_station->startDriver());
    QTRY_COMPARE_WITH_TIMEOUT(window->pilot.valueState(channel + "/Frequency"), usable, patienceMs);
    QCOMPARE(window->pilot.click({{"class", "QRadioButton"}, {"text", "DDC1"}}), QString());
    QCOMPARE(window->pilot.press("OK"), QString());
    QTRY_VERIFY_WITH_TIMEOUT(!window->pilot.window("DdcGuiMain").isEmpty(), patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(m_station->ctl({"get", channel + "/ConnectedClient"}),
                              QHostInfo::localHostName(), patienceMs);
}

void DriverLossTest::keepsItsWindowAndRecoversItsChannel()
{
    Window* window = m_station->openChannel();
    QVERIFY(window != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!m_station->ctl({"get", channel + "/ConnectedClient"}).isEmpty(), patienceMs);
    const QJsonArray place = window->pilot.widget({{"name", "Frequency"}})["rect"].toArray();
    const QString address = m_station->driverAddress();

    m_station->killDriver();
    QTRY_COMPARE_WITH_TIMEOUT(window->pilot.valueState(channel + "/Frequency"), stale, patienceMs);
    QVERIFY(!window->pilot.window("DdcGuiMain").isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(bannerShown(window->pilot), patienceMs);
    QCOMPARE(window->pilot.widget({{"name", "Frequency"}})["rect"].toArray(), place);

    QVERIFY(m_station->startDriver());
    QCOMPARE(m_station->driverAddress(), address);
    QTRY_COMPARE_WITH_TIMEOUT(window->pilot.valueState(channel + "/Frequency"), usable, patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(!bannerShown(window->pilot), patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(m_station->ctl({"get", channel + "/ConnectedClient"}),
                              QHostInfo::localHostName(), patienceMs);
    QCOMPARE(window->pilot.type({{"name", "Frequency"}}, "97.3M", {"Return"}), QString());
    QTRY_VERIFY_WITH_TIMEOUT(m_station->ctl({"get", channel + "/Frequency"}).startsWith("97300000"),
                             patienceMs);
    QVERIFY(!window->pilot.window("DdcGuiMain").isEmpty());
}

void DriverLossTest::saysHowLongTheDriverIsAwayAndWhatItDoes()
{
    Window* window = m_station->openChannel();
    QVERIFY(window != nullptr);
    m_station->killDriver();
    QTRY_VERIFY_WITH_TIMEOUT(bannerText(window->pilot).contains(m_station->driverAddress()), patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(bannerText(window->pilot).contains("attempt"), patienceMs);
    const QString first = bannerText(window->pilot);
    QTRY_VERIFY_WITH_TIMEOUT(bannerText(window->pilot) != first, patienceMs);
    // The module's own report of the loss reaches the operator as well, and stops nobody.
    QTRY_VERIFY_WITH_TIMEOUT(
        window->pilot.text({{"name", "ErrorLine"}}).contains("No connection to the driver."), patienceMs);
    QVERIFY(window->pilot.box().isEmpty());
}

void DriverLossTest::noticesADriverThatStoppedAnswering()
{
    Window* window = m_station->openChannel();
    QVERIFY(window != nullptr);
    signalDriver(SIGSTOP);
    QTRY_COMPARE_WITH_TIMEOUT(window->pilot.valueState(channel + "/Frequency"), stale, patienceMs);
    signalDriver(SIGCONT);
    QTRY_COMPARE_WITH_TIMEOUT(window->pilot.valueState(channel + "/Frequency"), usable, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(m_station->ctl({"get", channel + "/ConnectedClient"}),
                              QHostInfo::localHostName(), patienceMs);
}

void DriverLossTest::recoversTimeAfterTime()
{
    Window* window = m_station->openChannel();
    QVERIFY(window != nullptr);
    constexpr int rounds = 4;
    for (int round = 0; round < rounds; ++round) {
        m_station->killDriver();
        QTRY_COMPARE_WITH_TIMEOUT(window->pilot.valueState(channel + "/LevelValue"), stale, patienceMs);
        QVERIFY(m_station->startDriver());
        QTRY_COMPARE_WITH_TIMEOUT(window->pilot.valueState(channel + "/LevelValue"), usable, patienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(m_station->ctl({"get", channel + "/ConnectedClient"}),
                                  QHostInfo::localHostName(), patienceMs);
    }
}

QTEST_GUILESS_MAIN(DriverLossTest)
#include "tst_e2e_driverloss.moc"
