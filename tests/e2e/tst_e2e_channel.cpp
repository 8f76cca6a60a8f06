#include <QDir>
#include <QFile>
#include <QHostInfo>
#include <QJsonArray>
#include <QTest>
#include <cmath>
#include <memory>

#include "station.h"

using namespace RxTest;

namespace {

const QString channel = "/RX1/DDC/DDC1";

// Of the built-in scene, for every seed.
constexpr double carrierFrequency = 97.3e6;
constexpr double carrierLevel = 80 - 40;  // dBµV; 0 dBFS is 80 dBµV
constexpr double broadcastFrequency = 98.5e6;
constexpr double broadcastLevel = 80 - 24;
constexpr int answerRefused = 3;

}  // namespace

// One channel in its window, from the first look to the last, with the real programs.
class ChannelTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void showsEveryControlOfTheChannel();
    void claimsTheChannelUnderThisMachinesName();
    void startsMuted();
    void tunesToWhatIsTyped();
    void revertsWhatWasTypedOnEscape();
    void refusesAnEntryThatIsNoFrequency_data();
    void refusesAnEntryThatIsNoFrequency();
    void showsTheLevelOfAKnownEmitterWithinADecibel_data();
    void showsTheLevelOfAKnownEmitterWithinADecibel();
    void followsTheMainReceiverWhileCoupled();
    void passesItsSettingsThroughTheDriver();
    void leavesValuesAloneWhenAWheelPassesOverThem();
    void asksBeforeItRecordsAMutedChannel_data();
    void asksBeforeItRecordsAMutedChannel();
    void recordsAnUnmutedChannelWithoutAQuestion();
    void freesTheChannelWhenItsWindowIsClosed();
    void freesTheChannelWhenItIsKilled();
    void writesFromTheCommandLineAsAnOperatorWould();
    void journalsWhatItsOperatorWrites();

private:
    QString ctl(const QString& suffix) { return m_station->ctl({"get", channel + suffix}); }
    bool comesTo(const QString& suffix, const QString& text)
    {
        return until([this, suffix, text] { return pilot().valueText(channel + suffix) == text; });
    }
    Pilot& pilot() { return m_window->pilot; }

    std::unique_ptr<Station> m_station;
    Window* m_window = nullptr;
};

void ChannelTest::init()
{
    m_station = std::make_unique<Station>();
    QVERIFY2(m_station->startDriver(), qPrintable(m_station->driver().output()));
    m_window = m_station->openChannel();
    if (m_window == nullptr) {
        QFAIL(qPrintable("the window does not come up: " + m_station->finish()));
    }
}

void ChannelTest::cleanup()
{
    const QString faults = m_station->finish();
    m_station.reset();
    QVERIFY2(faults.isEmpty(), qPrintable(faults));
}

void ChannelTest::showsEveryControlOfTheChannel()
{
    const QString title = pilot().window("DdcGuiMain")["title"].toString();
    QVERIFY2(title.contains("T&K") && title.contains("DDC1"), qPrintable(title));
    const char* const names[] = {
        "Valid Range",         "Current Mode", "Frequency",      "Level",        "Couple Frequency",
        "Couple Demodulation", "Demodulation", "Bandwidth",      "SquelchState", "SquelchValue",
        "AudioState",          "AudioBalance", "AudioRecording", "IFRecording",  "DDCActivityGenerationBtn"};
    for (const char* name : names) {
        const QJsonObject widget = pilot().widget(At::named(name));
        QVERIFY2(widget["visible"].toBool(), name);
    }
    QVERIFY(!pilot().isVisible(At::named("AudioVolume")));
    QVERIFY(!pilot().isVisible(At::named("ChannelRecording")));
    QVERIFY(!pilot().isVisible(At::named("StatusBanner")));
}

void ChannelTest::claimsTheChannelUnderThisMachinesName()
{
    QTRY_COMPARE_WITH_TIMEOUT(ctl("/ConnectedClient"), QHostInfo::localHostName(), patienceMs);
}

void ChannelTest::startsMuted()
{
    QVERIFY(comesTo("/AudioMute", "On"));
    QTRY_VERIFY_WITH_TIMEOUT(pilot().isChecked(At::named("AudioState")), patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(ctl("/AudioMute"), QString("On"), patienceMs);
}

void ChannelTest::tunesToWhatIsTyped()
{
    QCOMPARE(pilot().type(At::named("Frequency"), "97.3M", {"Return"}), QString());
    QVERIFY(comesTo("/Frequency", "97300000"));
    QTRY_VERIFY_WITH_TIMEOUT(ctl("/Frequency").startsWith("97300000"), patienceMs);
    QCOMPARE(pilot().type(At::named("Frequency"), "98.5M", {"Return"}), QString());
    QTRY_VERIFY_WITH_TIMEOUT(ctl("/Frequency").startsWith("98500000"), patienceMs);
}

void ChannelTest::revertsWhatWasTypedOnEscape()
{
    const QString before = pilot().valueText(channel + "/Frequency");
    const QString shown = pilot().text(At::named("Frequency"));
    QCOMPARE(pilot().type(At::named("Frequency"), "97.1M", {}), QString());
    QTRY_VERIFY_WITH_TIMEOUT(pilot().text(At::named("Frequency")) != shown, patienceMs);
    QCOMPARE(pilot().type(At::named("Frequency"), "", {"Escape"}), QString());
    QTRY_COMPARE_WITH_TIMEOUT(pilot().text(At::named("Frequency")), shown, patienceMs);
    QCOMPARE(pilot().valueText(channel + "/Frequency"), before);
}

void ChannelTest::refusesAnEntryThatIsNoFrequency_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << "abc";
    QTest::newRow("not a number") << "nan";
    QTest::newRow("endless") << "inf";
    QTest::newRow("two points") << "98..5M";
    QTest::newRow("unknown prefix") << "98.5X";
}

void ChannelTest::refusesAnEntryThatIsNoFrequency()
{
    QFETCH(QString, text);
    const QString before = pilot().valueText(channel + "/Frequency");
    QCOMPARE(pilot().type(At::named("Frequency"), text, {"Return"}), QString());
    // A good entry afterwards shows that the bad one was dealt with, and did nothing.
    QCOMPARE(pilot().valueText(channel + "/Frequency"), before);
    QCOMPARE(pilot().type(At::named("Frequency"), "", {"Escape"}), QString());
    QCOMPARE(pilot().type(At::named("Frequency"), "97.3M", {"Return"}), QString());
    QVERIFY(comesTo("/Frequency", "97300000"));
}

void ChannelTest::showsTheLevelOfAKnownEmitterWithinADecibel_data()
{
    QTest::addColumn<QString>("frequency");
    QTest::addColumn<double>("atLeast");  // bandwidth, Hz
    QTest::addColumn<double>("level");    // dBµV
    QTest::newRow("carrier") << QString::number(carrierFrequency, 'f', 0) << 500.0 << carrierLevel;
    QTest::newRow("broadcast") << QString::number(broadcastFrequency, 'f', 0) << 180e3 << broadcastLevel;
}

void ChannelTest::showsTheLevelOfAKnownEmitterWithinADecibel()
{
    QFETCH(QString, frequency);
    QFETCH(double, atLeast);
    QFETCH(double, level);
    QCOMPARE(pilot().type(At::named("Frequency"), frequency, {"Return"}), QString());
    QVERIFY(comesTo("/Frequency", frequency));
    // The narrowest bandwidth that holds the emitter, chosen from what the list offers.
    QString chosen;
    double narrowest = 1e12;
    for (const QJsonValue& item : pilot().widget(At::named("Bandwidth"))["items"].toArray()) {
        const QStringList parts = item.toString().split(' ');
        const double unit = parts.value(1).startsWith('k') ? 1e3 : parts.value(1).startsWith('M') ? 1e6 : 1;
        const double bandwidth = parts.value(0).toDouble() * unit;
        if (bandwidth >= atLeast && bandwidth < narrowest) {
            narrowest = bandwidth;
            chosen = item.toString();
        }
    }
    QVERIFY2(!chosen.isEmpty(), "the list offers no bandwidth that holds the emitter");
    QCOMPARE(pilot().choose(At::named("Bandwidth"), chosen), QString());
    const auto shown = [this] { return pilot().value(channel + "/LevelValue")["number"].toDouble(); };
    QVERIFY2(until([&] { return std::abs(shown() - level) < 1.0; }),
             qPrintable(QString("level %1 dBµV instead of %2").arg(shown()).arg(level)));
}

void ChannelTest::followsTheMainReceiverWhileCoupled()
{
    QCOMPARE(pilot().click(At::named("Couple Frequency")), QString());
    QVERIFY(comesTo("/FrequencyCoupled", "On"));
    QVERIFY(!m_station->ctl({"set", "/RX1/DDC/MAIN/Frequency", "97.9M"}).isEmpty());
    QVERIFY(comesTo("/Frequency", "97900000"));

    QCOMPARE(pilot().type(At::named("Frequency"), "97.3M", {"Return"}), QString());
    QTRY_COMPARE_WITH_TIMEOUT(pilot().value(channel + "/Frequency")["answer"].toInt(), answerRefused,
                              patienceMs);
    QVERIFY(!pilot().value(channel + "/Frequency")["reason"].toString().isEmpty());
    QVERIFY(comesTo("/Frequency", "97900000"));

    QCOMPARE(pilot().click(At::named("Couple Frequency")), QString());
    QVERIFY(comesTo("/FrequencyCoupled", "Off"));
    QCOMPARE(pilot().type(At::named("Frequency"), "97.3M", {"Return"}), QString());
    QVERIFY(comesTo("/Frequency", "97300000"));
}

void ChannelTest::passesItsSettingsThroughTheDriver()
{
    const bool squelched = pilot().isChecked(At::named("SquelchState"));
    QCOMPARE(pilot().click(At::named("SquelchState")), QString());
    QVERIFY(comesTo("/SquelchState", squelched ? "Off" : "On"));
    QTRY_VERIFY_WITH_TIMEOUT(ctl("/SquelchState").compare(squelched ? "Off" : "On", Qt::CaseInsensitive) == 0,
                             patienceMs);

    QCOMPARE(pilot().choose(At::named("Demodulation"), "AM"), QString());
    QTRY_COMPARE_WITH_TIMEOUT(ctl("/Demodulation"), QString("AM"), patienceMs);

    // The other way round: another station's change reaches the controls.
    QVERIFY(!m_station->ctl({"set", channel + "/Demodulation", "USB"}).isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(pilot().text(At::named("Demodulation")), QString("USB"), patienceMs);
    QVERIFY(!m_station->ctl({"set", channel + "/AudioMute", "Off"}).isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(!pilot().isChecked(At::named("AudioState")), patienceMs);
    QVERIFY(!m_station->ctl({"set", channel + "/AudioBalance", "-0.5"}).isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(pilot().value(channel + "/AudioBalance")["number"].toDouble(), -0.5,
                              patienceMs);
}

void ChannelTest::leavesValuesAloneWhenAWheelPassesOverThem()
{
    const char* const names[] = {"Demodulation", "Bandwidth", "SquelchValue", "AudioBalance"};
    const char* const suffixes[] = {"/Demodulation", "/Bandwidth", "/SquelchValue", "/AudioBalance"};
    QCOMPARE(pilot().type(At::named("Frequency"), "97.3M", {"Return"}), QString());
    for (size_t i = 0; i < std::size(names); ++i) {
        const QString before = pilot().valueText(channel + suffixes[i]);
        QVERIFY2(!pilot().widget(At::named(names[i]))["focus"].toBool(), names[i]);
        QCOMPARE(pilot().wheel(At::named(names[i]), 3), QString());
        QCOMPARE(pilot().valueText(channel + suffixes[i]), before);
    }
}

void ChannelTest::asksBeforeItRecordsAMutedChannel_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("muted");
    QTest::newRow("yes") << "Yes" << false;
    QTest::newRow("no") << "No" << true;
    QTest::newRow("put away") << "" << true;
}

void ChannelTest::asksBeforeItRecordsAMutedChannel()
{
    QFETCH(QString, answer);
    QFETCH(bool, muted);
    QVERIFY(comesTo("/AudioMute", "On"));
    QCOMPARE(pilot().click(At::named("AudioRecording")), QString());
    QTRY_COMPARE_WITH_TIMEOUT(pilot().box()["title"].toString(), QString("Record Confirmation"), patienceMs);
    QCOMPARE(pilot().box()["text"].toString(),
             QString("Record not possible. Audio MUTE is on.\n"
                     "Would you like to turn it off and proceed with the recording?"));
    if (answer.isEmpty()) {
        QVERIFY(pilot().ask({{"cmd", "type"}, {"keys", QJsonArray{"Escape"}}})["ok"].toBool());
    } else {
        QCOMPARE(pilot().press(answer), QString());
    }
    QTRY_VERIFY_WITH_TIMEOUT(pilot().box().isEmpty(), patienceMs);
    QVERIFY(comesTo("/AudioMute", muted ? "On" : "Off"));
    if (!muted) {
        QVERIFY(comesTo("/AudioMode", "On"));
    }
    // This driver has no recorder: whatever was answered, nothing records.
    QVERIFY(comesTo("/AudioRecording", "Off"));
    QTRY_COMPARE_WITH_TIMEOUT(ctl("/AudioRecording"), QString("Off"), patienceMs);
}

void ChannelTest::recordsAnUnmutedChannelWithoutAQuestion()
{
    QVERIFY(comesTo("/AudioMute", "On"));
    QCOMPARE(pilot().click(At::named("AudioState")), QString());
    QVERIFY(comesTo("/AudioMute", "Off"));
    QCOMPARE(pilot().click(At::named("AudioRecording")), QString());
    QTRY_COMPARE_WITH_TIMEOUT(pilot().value(channel + "/AudioRecording")["answer"].toInt(), answerRefused,
                              patienceMs);
    QVERIFY(!pilot().value(channel + "/AudioRecording")["reason"].toString().isEmpty());
    QVERIFY(pilot().box().isEmpty());
}

void ChannelTest::freesTheChannelWhenItsWindowIsClosed()
{
    QTRY_VERIFY_WITH_TIMEOUT(!ctl("/ConnectedClient").isEmpty(), patienceMs);
    QCOMPARE(pilot().close({{"class", "DdcGuiMain"}}), QString());
    QVERIFY(m_window->program.waitForEnd());
    QCOMPARE(m_window->program.fault(), QString());
    QCOMPARE(ctl("/ConnectedClient"), QString());
}

void ChannelTest::freesTheChannelWhenItIsKilled()
{
    QTRY_VERIFY_WITH_TIMEOUT(!ctl("/ConnectedClient").isEmpty(), patienceMs);
    m_window->program.kill();
    QTRY_COMPARE_WITH_TIMEOUT(ctl("/ConnectedClient"), QString(), patienceMs);
}

void ChannelTest::writesFromTheCommandLineAsAnOperatorWould()
{
    WindowSetup setup;
    setup.ddc = "DDC2";
    setup.arguments =
        QStringList{"--set", "/RX1/DDC/DDC2/Frequency=97.3M", "--set", "/RX1/DDC/DDC2/Demodulation=CW"};
    Window* second = m_station->openChannel(setup);
    QVERIFY(second != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(m_station->ctl({"get", "/RX1/DDC/DDC2/Frequency"}).startsWith("97300000"),
                             patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(m_station->ctl({"get", "/RX1/DDC/DDC2/Demodulation"}), QString("CW"),
                              patienceMs);
}

void ChannelTest::journalsWhatItsOperatorWrites()
{
    QCOMPARE(pilot().type(At::named("Frequency"), "97.3M", {"Return"}), QString());
    QVERIFY(comesTo("/Frequency", "97300000"));
    const auto journalled = [this] {
        for (const QString& name : QDir(m_window->state).entryList({"*journal*"}, QDir::Files)) {
            QFile file(m_window->state + "/" + name);
            if (file.open(QIODevice::ReadOnly) && file.readAll().contains("/RX1/DDC/DDC1/Frequency")) {
                return true;
            }
        }
        return false;
    };
    QTRY_VERIFY_WITH_TIMEOUT(journalled(), patienceMs);
}

QTEST_GUILESS_MAIN(ChannelTest)
#include "tst_e2e_channel.moc"
