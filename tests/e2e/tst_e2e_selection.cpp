#include <QHostInfo>
#include <QTest>
#include <memory>

#include "station.h"

using namespace RxTest;

namespace {

const Target dialog{{"class", "DdcSelectionDlg"}};

Target row(const QString& name)
{
    return {{"class", "QRadioButton"}, {"text", name}};
}

}  // namespace

// The choice of the channel, with the real programs.
class SelectionTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void offersTheListWhenTheConfiguredChannelIsTaken();
    void refusesATakenChannelAndTakesAFreeOne();
    void refusesAChannelThatWasTakenMeanwhile();
    void asksWhenNoChannelIsConfigured();
    void endsWhenTheChoiceIsPutAway_data();
    void endsWhenTheChoiceIsPutAway();

private:
    Window* openDialog(const QString& ddc)
    {
        WindowSetup setup;
        setup.ddc = ddc;
        Window* window = m_station->openWindow(setup);
        const bool shown = window != nullptr &&
                           until([window] { return !window->pilot.window("DdcSelectionDlg").isEmpty(); });
        return shown ? window : nullptr;
    }

    std::unique_ptr<Station> m_station;
};

void SelectionTest::init()
{
    m_station = std::make_unique<Station>();
    QVERIFY2(m_station->startDriver(), qPrintable(m_station->driver().output()));
}

void SelectionTest::cleanup()
{
    const QString faults = m_station->finish();
    m_station.reset();
    QVERIFY2(faults.isEmpty(), qPrintable(faults));
}

void SelectionTest::offersTheListWhenTheConfiguredChannelIsTaken()
{
    QVERIFY(m_station->openChannel() != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!m_station->ctl({"get", "/RX1/DDC/DDC1/ConnectedClient"}).isEmpty(), patienceMs);
    Window* window = openDialog("DDC1");
    QVERIFY(window != nullptr);
    QVERIFY(window->pilot.window("DdcGuiMain").isEmpty());
    for (const char* name : {"DDC1", "DDC2", "DDC3", "DDC4"}) {
        QVERIFY2(window->pilot.isVisible(row(name)), name);
    }
    // The main receiver's own channel is none to choose.
    QVERIFY(window->pilot.widget(row("MAIN")).isEmpty());
    const QString holder = QHostInfo::localHostName();
    QVERIFY(window->pilot.isVisible({{"window", "DdcSelectionDlg"}, {"class", "QLabel"}, {"text", holder}}));
    QVERIFY(window->pilot.isVisible({{"window", "DdcSelectionDlg"}, {"class", "QLabel"}, {"text", "FREE"}}));
}

void SelectionTest::refusesATakenChannelAndTakesAFreeOne()
{
    QVERIFY(m_station->openChannel() != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!m_station->ctl({"get", "/RX1/DDC/DDC1/ConnectedClient"}).isEmpty(), patienceMs);
    Window* window = openDialog("DDC1");
    QVERIFY(window != nullptr);
    QCOMPARE(window->pilot.click(row("DDC1")), QString());
    QTRY_VERIFY_WITH_TIMEOUT(window->pilot.isChecked(row("DDC1")), patienceMs);
    QCOMPARE(window->pilot.press("OK"), QString());
    QVERIFY(window->pilot.isVisible(dialog));

    QCOMPARE(window->pilot.click(row("DDC2")), QString());
    QTRY_VERIFY_WITH_TIMEOUT(window->pilot.isChecked(row("DDC2")), patienceMs);
    QCOMPARE(window->pilot.press("OK"), QString());
    QTRY_VERIFY_WITH_TIMEOUT(window->pilot.window("DdcGuiMain")["title"].toString().contains("DDC2"),
                             patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(m_station->ctl({"get", "/RX1/DDC/DDC2/ConnectedClient"}),
                              QHostInfo::localHostName(), patienceMs);
}

void SelectionTest::refusesAChannelThatWasTakenMeanwhile()
{
    Window* window = openDialog("");
    QVERIFY(window != nullptr);
    QCOMPARE(window->pilot.click(row("DDC3")), QString());
    WindowSetup other;
    other.ddc = "DDC3";
    QVERIFY(m_station->openChannel(other) != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!window->pilot.valueText("/RX1/DDC/DDC3/ConnectedClient").isEmpty(), patienceMs);
    QVERIFY(window->pilot.isChecked(row("DDC3")));
    QCOMPARE(window->pilot.press("OK"), QString());
    QVERIFY(window->pilot.isVisible(dialog));

    QCOMPARE(window->pilot.click(row("DDC2")), QString());
    QCOMPARE(window->pilot.press("OK"), QString());
    QTRY_VERIFY_WITH_TIMEOUT(window->pilot.window("DdcGuiMain")["title"].toString().contains("DDC2"),
                             patienceMs);
}

void SelectionTest::asksWhenNoChannelIsConfigured()
{
    Window* window = openDialog("");
    QVERIFY(window != nullptr);
    QCOMPARE(window->pilot.click(row("DDC4")), QString());
    QCOMPARE(window->pilot.press("OK"), QString());
    QTRY_VERIFY_WITH_TIMEOUT(window->pilot.window("DdcGuiMain")["title"].toString().contains("DDC4"),
                             patienceMs);
}

void SelectionTest::endsWhenTheChoiceIsPutAway_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("cancel") << "cancel";
    QTest::newRow("close button") << "close";
    QTest::newRow("escape") << "escape";
}

void SelectionTest::endsWhenTheChoiceIsPutAway()
{
    QFETCH(QString, how);
    Window* window = openDialog("");
    QVERIFY(window != nullptr);
    if (how == "cancel") {
        QCOMPARE(window->pilot.press("Cancel"), QString());
    } else if (how == "close") {
        QCOMPARE(window->pilot.close(dialog), QString());
    } else {
        QVERIFY(window->pilot.ask({{"cmd", "type"}, {"keys", QJsonArray{"Escape"}}})["ok"].toBool());
    }
    QVERIFY2(window->program.waitForEnd(), qPrintable(window->program.output()));
    QCOMPARE(window->program.fault(), QString());
}

QTEST_GUILESS_MAIN(SelectionTest)
#include "tst_e2e_selection.moc"
