#include <QTest>
#include <cmath>

#include "driverclient.h"
#include "driverprocess.h"
#include "receiver/sources/emitters.h"
#include "receiver/values/catalogue.h"

using Link::AnswerKind;
using Link::ValueStatus;
using Receiver::SceneEmitter;

Q_DECLARE_METATYPE(Link::Content)

// The values of the real driver, over the real link, in the built-in scene.
class TestRxDriverValues : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void theWholeCatalogueIsServed();
    void theLevelOfAKnownEmitterIsWithinOneDecibel_data();
    void theLevelOfAKnownEmitterIsWithinOneDecibel();
    void levelsComeTwentyTimesASecond();
    void anAnswerTellsWhatStands_data();
    void anAnswerTellsWhatStands();
    void aChannelOutsideTheBandHasNoLevel();
    void aCoupledChannelFollowsAndRefuses();
    void theSquelchOpensAndClosesWithTheThreshold();
    void anothersChannelIsRefusedAndFreeWhenItsClientLeaves();
    void aStoppedDriverHasNoLevels();
    void anotherDevicePathAndNumberOfChannelsAreServed();

private:
    static QString at(const QString& suffix) { return "/RX1" + suffix; }

    std::unique_ptr<DriverProcess> m_driver;
};

namespace {

constexpr quint64 seed = 1;
constexpr double fullScale = 80;  // dBµV of 0 dBFS

SceneEmitter emitterAt(double frequency)
{
    for (const SceneEmitter& emitter : Receiver::sceneEmitters(seed)) {
        if (emitter.frequency == frequency)
            return emitter;
    }
    return {};
}

}  // namespace

void TestRxDriverValues::initTestCase()
{
    m_driver = std::make_unique<DriverProcess>(QStringList{"--scene", QString::number(seed)});
    QVERIFY2(m_driver->waitForPort(), qPrintable(m_driver->errors()));
}

void TestRxDriverValues::cleanupTestCase()
{
    m_driver.reset();
}

void TestRxDriverValues::theWholeCatalogueIsServed()
{
    DriverClient client(m_driver->port());
    QVERIFY(client.hook("/RX1"));

    Receiver::ValueStore expected;
    Receiver::ReceiverSetup setup;
    setup.source = {Receiver::sceneSampleRate, Receiver::sceneCenterDefault, Receiver::sceneCenterMinimum,
                    Receiver::sceneCenterMaximum};
    Receiver::defineCatalogue(
        expected, setup, [](const QString&, const QString&) { return Receiver::ValueStore::Authority(); });
    const auto ids = expected.below("/RX1");
    QVERIFY(ids.size() > 100);
    for (const Receiver::ValueId id : ids) {
        const Link::Description& wanted = expected.description(id);
        QVERIFY2(client.has(wanted.path), qPrintable(wanted.path));
        const Link::Description given = client.description(wanted.path);
        QCOMPARE(int(given.kind), int(wanted.kind));
        QCOMPARE(given.unit, wanted.unit);
        QCOMPARE(given.writable, wanted.writable);
        QCOMPARE(given.event, wanted.event);
        QCOMPARE(given.hasLimits, wanted.hasLimits);
        QCOMPARE(given.minimum, wanted.minimum);
        QCOMPARE(given.maximum, wanted.maximum);
        QCOMPARE(given.items.size(), wanted.items.size());
    }
    QVERIFY(client.waitForText(at("/SOURCE/State"), "running"));
    QCOMPARE(client.text(at("/DEVICE_CAPTION")), QString("RX1"));
    QCOMPARE(client.number(at("/SOURCE/SampleRate")), Receiver::sceneSampleRate);
    QCOMPARE(client.number(at("/DDC/DDC1/Frequency")), 98.5e6);
    QCOMPARE(client.number(at("/DDC/DDC1/Bandwidth")), 150e3);
    QCOMPARE(client.current(at("/DDC/DDC1/ChannelRecording")).status, ValueStatus::NotAvailable);
}

void TestRxDriverValues::theLevelOfAKnownEmitterIsWithinOneDecibel_data()
{
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("bandwidth");
    QTest::newRow("steady carrier in 500 Hz") << 97.3e6 << 500.0;
    QTest::newRow("steady carrier in 15 kHz") << 97.3e6 << 15e3;
    QTest::newRow("steady FM station in 250 kHz") << 98.5e6 << 250e3;
}

void TestRxDriverValues::theLevelOfAKnownEmitterIsWithinOneDecibel()
{
    QFETCH(double, frequency);
    QFETCH(double, bandwidth);
    const double expected = emitterAt(frequency).level + fullScale;
    DriverClient client(m_driver->port());
    QVERIFY(client.hook("/RX1"));
    const QString level = at("/DDC/DDC2/LevelValue");
    QCOMPARE(client.write(at("/DDC/DDC2/Frequency"), frequency).reason, QString());
    QCOMPARE(client.select(at("/DDC/DDC2/Bandwidth"), bandwidth).reason, QString());
    client.watch(level);
    // The report that is being measured may still be of the setting before.
    QTRY_VERIFY_WITH_TIMEOUT(client.heard(level).size() >= 12, DriverClient::patienceMs);
    const QVector<Link::Update> heard = client.heard(level).mid(2);
    for (const Link::Update& update : heard) {
        QCOMPARE(update.status, ValueStatus::Usable);
        const double measured = std::get<double>(update.content);
        QVERIFY2(std::abs(measured - expected) < 1,
                 qPrintable(QString("%1 dBµV instead of %2").arg(measured).arg(expected)));
    }
}

void TestRxDriverValues::levelsComeTwentyTimesASecond()
{
    DriverClient client(m_driver->port());
    QVERIFY(client.hook("/RX1"));
    const QString level = at("/DDC/DDC1/LevelValue");
    client.watch(level);
    QTRY_VERIFY_WITH_TIMEOUT(client.heard(level).size() >= 41, DriverClient::patienceMs);
    // By the times of measurement: a busy machine may merge updates on the way, but every time is
    // a whole number of reports after the one before.
    const QVector<Link::Update>& heard = client.heard(level);
    qint64 shortest = std::numeric_limits<qint64>::max();
    for (int i = 1; i < heard.size(); ++i) {
        QVERIFY(heard[i].time > heard[i - 1].time);
        shortest = std::min(shortest, heard[i].time - heard[i - 1].time);
    }
    QVERIFY2(std::abs(double(shortest) - 50e3) < 1e3, qPrintable(QString::number(shortest)));
}

void TestRxDriverValues::anAnswerTellsWhatStands_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<Link::Content>("content");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<Link::Content>("stands");
    using C = Link::Content;
    QTest::newRow("accepted") << "/DDC/DDC3/SquelchValue" << C(33.0) << int(AnswerKind::Accepted) << ""
                              << C(33.0);
    QTest::newRow("accepted mute") << "/DDC/DDC3/AudioMute" << C(true) << int(AnswerKind::Accepted) << ""
                                   << C(true);
    QTest::newRow("clamped") << "/DDC/DDC3/Frequency" << C(1e9) << int(AnswerKind::Clamped)
                             << "clamped to 100.5 MHz" << C(100.5e6);
    QTest::newRow("no recorder") << "/DDC/DDC3/AudioRecording" << C(qint64(0)) << int(AnswerKind::Refused)
                                 << "no recorder is available" << C(qint64(1));
    QTest::newRow("no activity log") << "/DDC/DDC3/COB/WriteDB" << C(qint64(1)) << int(AnswerKind::Refused)
                                     << "no activity log is configured" << C(qint64(0));
    QTest::newRow("no direction finding")
        << "/DDF/DF_ENABLED" << C(qint64(1)) << int(AnswerKind::Refused)
        << "direction finding is not available with this source" << C(qint64(0));
    QTest::newRow("another type") << "/DDC/DDC3/SquelchValue" << C(QString("loud"))
                                  << int(AnswerKind::Refused) << "expects a number" << C(33.0);
}

void TestRxDriverValues::anAnswerTellsWhatStands()
{
    QFETCH(QString, suffix);
    QFETCH(Link::Content, content);
    QFETCH(int, kind);
    QFETCH(QString, reason);
    QFETCH(Link::Content, stands);
    DriverClient client(m_driver->port());
    QVERIFY(client.hook("/RX1"));
    const Link::Answer answer = client.write(at(suffix), content);
    QCOMPARE(int(answer.kind), kind);
    QCOMPARE(answer.reason, reason);
    QVERIFY(answer.content == stands);
}

void TestRxDriverValues::aChannelOutsideTheBandHasNoLevel()
{
    DriverClient client(m_driver->port());
    QVERIFY(client.hook("/RX1"));
    QCOMPARE(client.write(at("/DDC/DDC3/Frequency"), 96e6).reason, QString());
    QVERIFY(client.waitForStatus(at("/DDC/DDC3/LevelValue"), ValueStatus::Usable));
    QCOMPARE(client.write(at("/FREQUENCY"), 105e6).reason, QString());
    QVERIFY(client.waitForStatus(at("/DDC/DDC3/LevelValue"), ValueStatus::NotAvailable));
    QCOMPARE(client.number(at("/DDC/DDC3/Frequency")), 96e6);
    QCOMPARE(client.description(at("/DDC/DDC3/Frequency")).minimum, 102.5e6);
    QCOMPARE(client.number(at("/DDC/MAIN/Frequency")), 102.5e6);

    QCOMPARE(client.write(at("/FREQUENCY"), 98e6).reason, QString());
    QVERIFY(client.waitForStatus(at("/DDC/DDC3/LevelValue"), ValueStatus::Usable));
}

void TestRxDriverValues::aCoupledChannelFollowsAndRefuses()
{
    DriverClient client(m_driver->port());
    QVERIFY(client.hook("/RX1"));
    QCOMPARE(client.write(at("/DDC/DDC1/FrequencyCoupled"), true).reason, QString());
    QCOMPARE(client.write(at("/DDC/MAIN/Frequency"), 97.3e6).reason, QString());
    QTRY_COMPARE_WITH_TIMEOUT(client.number(at("/DDC/DDC1/Frequency")), 97.3e6, DriverClient::patienceMs);
    QCOMPARE(client.write(at("/DDC/DDC1/Frequency"), 98.5e6).reason, QString("coupled to the main receiver"));
    QCOMPARE(client.write(at("/DDC/DDC1/FrequencyCoupled"), false).reason, QString());
    QCOMPARE(client.write(at("/DDC/DDC1/Frequency"), 98.5e6).reason, QString());
}

void TestRxDriverValues::theSquelchOpensAndClosesWithTheThreshold()
{
    DriverClient client(m_driver->port());
    QVERIFY(client.hook("/RX1"));
    QCOMPARE(client.write(at("/DDC/DDC1/Frequency"), 98.5e6).reason, QString());
    QCOMPARE(client.write(at("/DDC/DDC1/SquelchValue"), 120.0).reason, QString());
    QCOMPARE(client.write(at("/DDC/DDC1/SquelchState"), true).reason, QString());
    QVERIFY(client.waitForFlag(at("/DDC/DDC1/SquelchOpen"), false));
    QCOMPARE(client.write(at("/DDC/DDC1/SquelchValue"), 0.0).reason, QString());
    QVERIFY(client.waitForFlag(at("/DDC/DDC1/SquelchOpen"), true));
    QCOMPARE(client.write(at("/DDC/DDC1/SquelchState"), false).reason, QString());
}

void TestRxDriverValues::anothersChannelIsRefusedAndFreeWhenItsClientLeaves()
{
    const QString claim = at("/DDC/DDC2/ConnectedClient");
    auto north = std::make_unique<DriverClient>(m_driver->port());
    DriverClient south(m_driver->port());
    QVERIFY(north->hook("/RX1"));
    QVERIFY(south.hook("/RX1"));
    QCOMPARE(north->write(claim, QString("north")).reason, QString());
    QVERIFY(south.waitForText(claim, "north"));
    for (const QString text : {"south", ""}) {
        const Link::Answer answer = south.write(claim, text);
        QCOMPARE(answer.kind, AnswerKind::Refused);
        QCOMPARE(answer.reason, QString("DDC2 is in use by \"north\""));
    }
    north.reset();
    QVERIFY(south.waitForText(claim, ""));
    QCOMPARE(south.write(claim, QString("south")).reason, QString());
    QCOMPARE(south.write(claim, QString()).reason, QString());
}

void TestRxDriverValues::aStoppedDriverHasNoLevels()
{
    DriverClient client(m_driver->port());
    QVERIFY(client.hook("/RX1"));
    QVERIFY(client.waitForStatus(at("/DDC/DDC1/LevelValue"), ValueStatus::Usable));
    QCOMPARE(client.write(at("/DRVCOMMANDS"), Receiver::DriverCommand::stop).reason, QString());
    QVERIFY(client.waitForStatus(at("/DDC/DDC1/LevelValue"), ValueStatus::NotAvailable));
    QCOMPARE(client.write(at("/DRVCOMMANDS"), Receiver::DriverCommand::fixedFrequency).reason, QString());
    QVERIFY(client.waitForStatus(at("/DDC/DDC1/LevelValue"), ValueStatus::Usable));
}

void TestRxDriverValues::anotherDevicePathAndNumberOfChannelsAreServed()
{
    DriverProcess driver({"--device", "/SITE/RX2", "--channels", "2", "--caption", "North"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/SITE"));
    QCOMPARE(client.text("/SITE/RX2/DEVICE_CAPTION"), QString("North"));
    QVERIFY(client.has("/SITE/RX2/DDC/DDC2/Frequency"));
    QVERIFY(client.has("/SITE/RX2/DDC/MAIN/Frequency"));
    QVERIFY(!client.has("/SITE/RX2/DDC/DDC3/Frequency"));
}

QTEST_GUILESS_MAIN(TestRxDriverValues)
#include "tst_rxdriver_values.moc"
