#include <QSet>
#include <QTest>

#include "receiver/values/catalogue.h"

using namespace Receiver;
using Link::Content;
using Link::Description;
using Link::ValueKind;
using Link::ValueStatus;

namespace {

enum Trait
{
    Plain = 0,
    ReadOnly = 1,
    Event = 2,
    NotAvailable = 4
};

struct Expected
{
    const char* suffix;
    ValueKind kind;
    const char* unit;
    int traits;
    const char* items;  // "key text, key text"; empty where only their number matters
};

// The tables that the other side of the link is written against.
const Expected deviceValues[] = {
    {"/DEVICE_CAPTION", ValueKind::Text, "", ReadOnly, ""},
    {"/FREQUENCY", ValueKind::Float, "Hz", Plain, ""},
    {"/IFPANSPAN", ValueKind::Selection, "Hz", Plain, ""},
    {"/IFMAPPING", ValueKind::Selection, "", Plain, "0 Peak, 1 Average, 2 Sample"},
    {"/DRVCOMMANDS", ValueKind::Selection, "", Plain, "0 Stop, 1 FFM, 2 DF, 3 Replay, 14 Switching"},
    {"/DDF/DF_ENABLED", ValueKind::Selection, "", Plain, "0 OFF, 1 ON"},
    {"/DDF/DFMODE", ValueKind::Selection, "", Plain, "0 Normal, 1 Continuous, 2 Gated"},
    {"/DDF/DFBANDWIDTHS", ValueKind::Selection, "Hz", Plain, ""},
    {"/DDF/DFMEASTIME", ValueKind::Selection, "s", Plain, ""},
    {"/DDF/QUALITYTHRESHOLD", ValueKind::Float, "%", Plain, ""},
    {"/DDF/DFFIELDSTRENGTHAVAILABLE", ValueKind::Bool, "", ReadOnly, ""},
    {"/COMPASS/COMPASSVALUE", ValueKind::Float, "°", Plain, ""},
    {"/SOURCE/State", ValueKind::Text, "", ReadOnly, ""},
    {"/SOURCE/Gain", ValueKind::Float, "dB", ReadOnly | NotAvailable, ""},
    {"/SOURCE/SampleRate", ValueKind::Float, "S/s", ReadOnly, ""},
    {"/SOURCE/Overflows", ValueKind::Integer, "", ReadOnly, ""},
    {"/RECORDER/Available", ValueKind::Bool, "", ReadOnly, ""},
    {"/RECORDREPLAY/MODE", ValueKind::Selection, "", Plain, "0 Stop, 1 Record, 2 Replay, 3 Pause"},
    {"/RECORDREPLAY/SOURCE", ValueKind::Selection, "", Plain, "0 IF, 1 Audio, 2 IF + Audio"},
    {"/AUDIO/AUDIOMODE", ValueKind::Selection, "S/s", Plain,
     "0 None, 1 8 kS/s, 2 16 kS/s, 3 32 kS/s, 4 48 kS/s"},
    {"/AUDIO/CHANNELMUTE", ValueKind::Selection, "", Plain, "0 On, 1 Off"},
    {"/AUDIO/AUDRECORDVALID", ValueKind::Bool, "", Plain, ""},
};

const Expected channelValues[] = {
    {"/Frequency", ValueKind::Float, "Hz", Plain, ""},
    {"/FREQUENCY", ValueKind::Float, "Hz", ReadOnly, ""},
    {"/Demodulation", ValueKind::Selection, "", Plain, "0 AM, 1 FM, 2 USB, 3 LSB, 4 CW, 5 IQ"},
    {"/Bandwidth", ValueKind::Selection, "Hz", Plain, ""},
    {"/LevelValue", ValueKind::Float, "dBµV", ReadOnly | NotAvailable, ""},
    {"/SquelchState", ValueKind::Bool, "", Plain, ""},
    {"/SquelchValue", ValueKind::Float, "dBµV", Plain, ""},
    {"/SquelchOpen", ValueKind::Bool, "", ReadOnly | Event, ""},
    {"/FrequencyCoupled", ValueKind::Bool, "", Plain, ""},
    {"/DemodulationCoupled", ValueKind::Bool, "", Plain, ""},
    {"/AudioMute", ValueKind::Bool, "", Plain, ""},
    {"/AudioMode", ValueKind::Bool, "", Plain, ""},
    {"/AudioBalance", ValueKind::Float, "", Plain, ""},
    {"/AudioRecording", ValueKind::Selection, "", Plain, "0 On, 1 Off"},
    {"/IfRecording", ValueKind::Selection, "", Plain, "0 On, 1 Off"},
    {"/ChannelRecording", ValueKind::Selection, "", NotAvailable, "0 On, 1 Off"},
    {"/RecorderAvailable", ValueKind::Bool, "", ReadOnly, ""},
    {"/COB/WriteDB", ValueKind::Selection, "", Plain, "0 Off, 1 On"},
    {"/ConnectedClient", ValueKind::Text, "", Plain, ""},
    {"/ConnectMapView", ValueKind::Bool, "", Plain, ""},
    {"/BEARINGRESULT", ValueKind::Bearing, "", ReadOnly | Event | NotAvailable, ""},
};

const Expected pulseValues[] = {
    {"/DDCMode", ValueKind::Selection, "", Plain, "0 Off, 1 Pulse analysis"},
    {"/PDWPath", ValueKind::Text, "", Plain, ""},
    {"/HandoverPath", ValueKind::Text, "", Plain, ""},
};

ReceiverSetup sceneSetup()
{
    ReceiverSetup setup;
    setup.source = {5e6, 98e6, 98e6, 98e6};
    setup.starts.insert("DDC1", {98.5e6, Demodulation::fm, 150e3});
    return setup;
}

// A store with the catalogue in it, all writes accepted that fit.
struct Offered
{
    explicit Offered(const ReceiverSetup& setup = sceneSetup())
    {
        defineCatalogue(store, setup, [](const QString&, const QString&) { return ValueStore::Authority(); });
    }
    const Description& at(const QString& path) const { return store.description(store.find(path)); }
    QVector<double> numbers(const QString& path) const
    {
        QVector<double> found;
        for (const Link::Item& item : at(path).items)
            found << item.number;
        return found;
    }
    ValueStore store;
};

QString itemsText(const Description& description)
{
    QStringList texts;
    for (const Link::Item& item : description.items)
        texts << QString("%1 %2").arg(item.key).arg(item.text);
    return texts.join(", ");
}

}  // namespace

class TestCatalogue : public QObject
{
    Q_OBJECT
private slots:
    void everyPathOfTheTableExistsWithItsType_data();
    void everyPathOfTheTableExistsWithItsType();
    void nothingElseIsOffered();
    void onlyAPulseAnalysisChannelHasItsValues();
    void theDevicePathStandsInFrontOfAll();
    void aChannelsPathIsTheDevicesPlusDdcPlusItsName();
    void theTwoFrequenciesOfAChannelAreDifferentValues();
    void selectionsStandOnOneOfTheirItems();
    void numbersStandWithinTheirLimits();
    void channelsStartAsTheSetupSays();
    void aChannelWithoutAStartStandsAtTheCenter();
    void bandwidthsEndAtTheRateOfTheSource_data();
    void bandwidthsEndAtTheRateOfTheSource();
    void bandwidthKeysAreTheSameForEverySource();
    void spansAreWhatTheSourceCanGive_data();
    void spansAreWhatTheSourceCanGive();
    void frequenciesReachHalfTheRateAroundTheCenter();
    void devicePaths_data();
    void devicePaths();
};

void TestCatalogue::everyPathOfTheTableExistsWithItsType_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<int>("traits");
    QTest::addColumn<QString>("items");
    const auto add = [](const QString& root, const Expected& expected) {
        const QString path = root + expected.suffix;
        QTest::newRow(qPrintable(path)) << path << int(expected.kind) << QString::fromUtf8(expected.unit)
                                        << expected.traits << QString::fromUtf8(expected.items);
    };
    for (const Expected& expected : deviceValues)
        add("/RX1", expected);
    for (const char* channel : {"DDC1", "DDC2", "DDC3", "DDC4", "MAIN"}) {
        for (const Expected& expected : channelValues)
            add(QString("/RX1/DDC/") + channel, expected);
    }
    for (const Expected& expected : pulseValues)
        add("/RX1/DDC/DDC4", expected);
}

void TestCatalogue::everyPathOfTheTableExistsWithItsType()
{
    QFETCH(QString, path);
    QFETCH(int, kind);
    QFETCH(QString, unit);
    QFETCH(int, traits);
    QFETCH(QString, items);
    const Offered offered;
    const ValueId id = offered.store.find(path);
    QVERIFY(id != 0);
    const Description& description = offered.store.description(id);
    QCOMPARE(int(description.kind), kind);
    QCOMPARE(description.unit, unit);
    QCOMPARE(description.writable, !(traits & ReadOnly));
    QCOMPARE(description.event, bool(traits & Event));
    QCOMPARE(offered.store.status(id) == ValueStatus::NotAvailable, bool(traits & NotAvailable));
    if (!items.isEmpty())
        QCOMPARE(itemsText(description), items);
    QCOMPARE(description.items.isEmpty(), description.kind != ValueKind::Selection);
}

void TestCatalogue::nothingElseIsOffered()
{
    const Offered offered;
    const std::size_t expected =
        std::size(deviceValues) + 5 * std::size(channelValues) + std::size(pulseValues);
    QCOMPARE(std::size_t(offered.store.below("/").size()), expected);
}

void TestCatalogue::onlyAPulseAnalysisChannelHasItsValues()
{
    const Offered offered;
    for (const Expected& expected : pulseValues) {
        for (const char* channel : {"DDC1", "DDC2", "DDC3", "MAIN"})
            QCOMPARE(offered.store.find(QString("/RX1/DDC/") + channel + expected.suffix), ValueId(0));
        QVERIFY(offered.store.find(QString("/RX1/DDC/DDC4") + expected.suffix) != 0);
    }
}

void TestCatalogue::theDevicePathStandsInFrontOfAll()
{
    ReceiverSetup setup = sceneSetup();
    setup.devicePath = "/SITE/RX2";
    const Offered offered(setup);
    QCOMPARE(offered.store.below("/SITE/RX2").size(), offered.store.below("/").size());
}

void TestCatalogue::aChannelsPathIsTheDevicesPlusDdcPlusItsName()
{
    const Paths paths("/D");
    QCOMPARE(paths.channel("X"), QString("/D/DDC/X"));
    QCOMPARE(paths.channel("X", "/Frequency"), QString("/D/DDC/X/Frequency"));
    QCOMPARE(paths.device("/FREQUENCY"), QString("/D/FREQUENCY"));
}

void TestCatalogue::theTwoFrequenciesOfAChannelAreDifferentValues()
{
    Offered offered;
    const ValueId setting = offered.store.find("/RX1/DDC/DDC1/Frequency");
    const ValueId followed = offered.store.find("/RX1/DDC/DDC1/FREQUENCY");
    QVERIFY(setting != 0 && followed != 0 && setting != followed);
    QCOMPARE(offered.store.number(followed), offered.store.number(setting));
}

void TestCatalogue::selectionsStandOnOneOfTheirItems()
{
    const Offered offered;
    int selections = 0;
    for (const ValueId id : offered.store.below("/")) {
        const Description& description = offered.store.description(id);
        if (description.kind != ValueKind::Selection)
            continue;
        ++selections;
        QVERIFY2(!offered.store.text(id).isEmpty(), qPrintable(description.path));
        QSet<qint64> keys;
        for (const Link::Item& item : description.items)
            keys << item.key;
        QCOMPARE(keys.size(), description.items.size());
    }
    QVERIFY(selections > 0);
}

void TestCatalogue::numbersStandWithinTheirLimits()
{
    const Offered offered;
    int limited = 0;
    for (const ValueId id : offered.store.below("/")) {
        const Description& description = offered.store.description(id);
        if (!description.hasLimits)
            continue;
        ++limited;
        const double number = offered.store.number(id);
        QVERIFY2(description.minimum <= number && number <= description.maximum,
                 qPrintable(description.path));
    }
    QVERIFY(limited > 0);
}

void TestCatalogue::channelsStartAsTheSetupSays()
{
    const Offered offered;
    const ValueStore& store = offered.store;
    QCOMPARE(store.number(store.find("/RX1/DDC/DDC1/Frequency")), 98.5e6);
    QCOMPARE(store.text(store.find("/RX1/DDC/DDC1/Demodulation")), QString("FM"));
    QCOMPARE(store.number(store.find("/RX1/DDC/DDC1/Bandwidth")), 150e3);
    QCOMPARE(store.text(store.find("/RX1/DDC/DDC1/Bandwidth")), QString("150 kHz"));
    QCOMPARE(store.text(store.find("/RX1/DEVICE_CAPTION")), QString("RX1"));
    QCOMPARE(store.number(store.find("/RX1/SOURCE/SampleRate")), 5e6);
    QCOMPARE(store.text(store.find("/RX1/DRVCOMMANDS")), QString("FFM"));
}

void TestCatalogue::aChannelWithoutAStartStandsAtTheCenter()
{
    ReceiverSetup setup;
    setup.source = {12001.03, 77500, 77500, 77500};
    setup.starts.insert("DDC2", {98.5e6, Demodulation::fm, 150e3});
    const Offered offered(setup);
    QCOMPARE(offered.store.number(offered.store.find("/RX1/DDC/DDC1/Frequency")), 77500.0);
    QCOMPARE(offered.store.number(offered.store.find("/RX1/DDC/DDC1/Bandwidth")), 9e3);
    // A start that the source cannot give is moved to what it can.
    QCOMPARE(offered.store.number(offered.store.find("/RX1/DDC/DDC2/Frequency")), 77500 + 12001.03 / 2);
    QCOMPARE(offered.store.number(offered.store.find("/RX1/DDC/DDC2/Bandwidth")), 12e3);
}

void TestCatalogue::bandwidthsEndAtTheRateOfTheSource_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("largest");
    QTest::newRow("scene") << 5e6 << 5e6;
    QTest::newRow("time signal") << 12001.03 << 12e3;
    QTest::newRow("satellite") << 48e3 << 30e3;
    QTest::newRow("transponders") << 2e6 << 2e6;
    QTest::newRow("below the smallest") << 100.0 << 150.0;
}

void TestCatalogue::bandwidthsEndAtTheRateOfTheSource()
{
    QFETCH(double, rate);
    QFETCH(double, largest);
    const QVector<Link::Item> items = bandwidthItems(rate);
    QVERIFY(!items.isEmpty());
    QCOMPARE(items.first().number, 150.0);
    QCOMPARE(items.last().number, largest);
    for (int i = 1; i < items.size(); ++i)
        QVERIFY(items[i].number > items[i - 1].number);
}

void TestCatalogue::bandwidthKeysAreTheSameForEverySource()
{
    const QVector<Link::Item> wide = bandwidthItems(5e6);
    const QVector<Link::Item> narrow = bandwidthItems(48e3);
    for (int i = 0; i < narrow.size(); ++i) {
        QCOMPARE(narrow[i].key, wide[i].key);
        QCOMPARE(narrow[i].number, wide[i].number);
    }
}

void TestCatalogue::spansAreWhatTheSourceCanGive_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<QVector<double>>("spans");
    QTest::newRow("scene") << 5e6 << QVector<double>{4e6,  2e6,  1e6,  500e3, 200e3, 100e3,
                                                     50e3, 20e3, 10e3, 5e3,   2e3,   1e3};
    QTest::newRow("time signal") << 12001.03 << QVector<double>{9600, 5000, 2000, 1000};
    QTest::newRow("satellite") << 48e3 << QVector<double>{38400, 20e3, 10e3, 5e3, 2e3, 1e3};
    QTest::newRow("below the smallest") << 500.0 << QVector<double>{400};
}

void TestCatalogue::spansAreWhatTheSourceCanGive()
{
    QFETCH(double, rate);
    QFETCH(QVector<double>, spans);
    ReceiverSetup setup;
    setup.source = {rate, 0, 0, 0};
    QCOMPARE(Offered(setup).numbers("/RX1/IFPANSPAN"), spans);
}

void TestCatalogue::frequenciesReachHalfTheRateAroundTheCenter()
{
    const Offered offered;
    const Description& channel = offered.at("/RX1/DDC/DDC2/Frequency");
    QVERIFY(channel.hasLimits);
    QCOMPARE(channel.minimum, 95.5e6);
    QCOMPARE(channel.maximum, 100.5e6);
    const Description& center = offered.at("/RX1/FREQUENCY");
    QVERIFY(center.hasLimits);
    QCOMPARE(center.minimum, 98e6);
    QCOMPARE(center.maximum, 98e6);
}

void TestCatalogue::devicePaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("good");
    QTest::newRow("default") << "/RX1" << true;
    QTest::newRow("two levels") << "/SITE/RX-2.b_1" << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("root") << "/" << false;
    QTest::newRow("no slash") << "RX1" << false;
    QTest::newRow("slash at the end") << "/RX1/" << false;
    QTest::newRow("empty name") << "/A//B" << false;
    QTest::newRow("blank") << "/RX 1" << false;
    QTest::newRow("line end") << "/RX1\n" << false;
    QTest::newRow("too long") << "/" + QString(300, 'x') << false;
}

void TestCatalogue::devicePaths()
{
    QFETCH(QString, path);
    QFETCH(bool, good);
    QCOMPARE(Paths::isDevicePath(path), good);
}

QTEST_APPLESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
