#include <QTest>

#include "receiver/values/authority.h"

using namespace Receiver;
using Link::AnswerKind;
using Link::Content;
using Link::ValueStatus;

Q_DECLARE_METATYPE(Link::Content)

namespace {

constexpr ClientId north = 1;
constexpr ClientId south = 2;

// A receiver that can be tuned from 50 to 150 MHz and gives 5 MS/s, at 98 MHz.
class Bench
{
public:
    Bench() : authority(store, setup()) {}

    static ReceiverSetup setup()
    {
        ReceiverSetup setup;
        setup.source = {5e6, 98e6, 50e6, 150e6};
        setup.starts.insert("MAIN", {97e6, Demodulation::fm, 120e3});
        return setup;
    }

    ValueId id(const QString& path) const { return store.find("/RX1" + path); }
    WriteResult write(const QString& path, const Content& content, ClientId client = north)
    {
        return store.write(id(path), content, client);
    }
    double number(const QString& path) const { return store.number(id(path)); }
    QString text(const QString& path) const { return store.text(id(path)); }
    qint64 key(const QString& path) const { return store.key(id(path)); }

    ValueStore store;
    Authority authority;
};

qint64 bandwidthKey(double hertz)
{
    for (const Link::Item& item : bandwidthItems(5e6)) {
        if (item.number == hertz)
            return item.key;
    }
    return -1;
}

}  // namespace

class TestAuthority : public QObject
{
    Q_OBJECT
private slots:
    void settingsComeBackAsTheyWereWritten_data();
    void settingsComeBackAsTheyWereWritten();
    void whatCannotBeDoneIsRefusedWithItsReason_data();
    void whatCannotBeDoneIsRefusedWithItsReason();
    void whatTheDriverMeasuresCannotBeWritten_data();
    void whatTheDriverMeasuresCannotBeWritten();

    void theCenterIsClampedToTheLimitsOfTheSource();
    void aChannelIsClampedToTheBandAroundTheCenter();
    void theBandOfTheChannelsMovesWithTheCenter();
    void theMainChannelStaysInsideTheBandWhenTheCenterMoves();
    void theOtherFrequencyOfAChannelFollowsTheSetting();

    void aCoupledFrequencyTakesOverTheMainReceiversAtOnce();
    void aCoupledFrequencyFollowsEveryChangeOfMain();
    void aCoupledFrequencyRefusesASettingOfItsOwn();
    void coupledDemodulationFollowsModeAndBandwidth();
    void coupledDemodulationRefusesModeAndBandwidthOnly();
    void uncouplingKeepsWhatStands();
    void theMainChannelCannotBeCoupledToItself();
    void coupledChannelsFollowMainWhenTheCenterMovesIt();

    void aFreeChannelIsClaimedByTheFirstWriter();
    void theHolderMayWriteItsClaimAgain();
    void anothersClaimIsRefusedAndNamesTheHolder();
    void anothersClearIsRefusedAndNamesTheHolder();
    void theSameNameFromAnotherConnectionIsAnotherClient();
    void theHolderFreesItsChannel();
    void clearingAFreeChannelIsAccepted();
    void aClientThatIsGoneFreesAllItsChannelsAndOnlyThose();
    void namesThatArePrintableAreAcceptedAsClaims_data();
    void namesThatArePrintableAreAcceptedAsClaims();
    void namesThatAreNotPrintableAreRefused_data();
    void namesThatAreNotPrintableAreRefused();

    void channelRecordingIsAvailableOnceClaimedAndRecorderThere();
    void channelRecordingGoesAwayWithTheClaim();
    void aRecorderThatGoesAwayEndsWhatItRecorded();
    void anAuthorityThatEndedRefusesAndLeavesTheStoreUsable();
};

void TestAuthority::settingsComeBackAsTheyWereWritten_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Content>("content");
    const auto row = [](const char* path, const Content& content) {
        QTest::newRow(qPrintable(QString("%1 #%2").arg(path).arg(content.index()))) << path << content;
    };
    row("/FREQUENCY", 99.5e6);
    row("/IFPANSPAN", qint64(2));
    row("/IFMAPPING", qint64(1));
    row("/DRVCOMMANDS", DriverCommand::stop);
    row("/DDF/DF_ENABLED", DirectionFindingSwitch::off);
    row("/DDF/DFMODE", qint64(1));
    row("/DDF/DFBANDWIDTHS", qint64(2));
    row("/DDF/DFMEASTIME", qint64(4));
    row("/DDF/QUALITYTHRESHOLD", 75.0);
    row("/COMPASS/COMPASSVALUE", 359.9);
    row("/RECORDREPLAY/MODE", RecordReplayMode::stop);
    row("/RECORDREPLAY/SOURCE", qint64(2));
    row("/AUDIO/AUDIOMODE", qint64(3));
    row("/AUDIO/CHANNELMUTE", qint64(0));
    row("/AUDIO/AUDRECORDVALID", true);
    for (const QString channel : {"/DDC/DDC1", "/DDC/MAIN"}) {
        const auto channelRow = [&](const char* suffix, const Content& content) {
            row(qPrintable(channel + suffix), content);
        };
        channelRow("/Frequency", 98.5e6);
        channelRow("/Demodulation", Demodulation::usb);
        channelRow("/Bandwidth", qint64(3));
        channelRow("/SquelchState", true);
        channelRow("/SquelchValue", 33.5);
        channelRow("/AudioMute", true);
        channelRow("/AudioMode", true);
        channelRow("/AudioBalance", -0.25);
        channelRow("/AudioRecording", RecordSwitch::off);
        channelRow("/IfRecording", RecordSwitch::off);
        channelRow("/COB/WriteDB", ActivityLogSwitch::off);
        channelRow("/ConnectedClient", QString("north"));
        channelRow("/ConnectMapView", true);
    }
    row("/DDC/DDC1/FrequencyCoupled", true);
    row("/DDC/DDC1/DemodulationCoupled", true);
    row("/DDC/DDC4/DDCMode", qint64(1));
    row("/DDC/DDC4/PDWPath", QString("/data/pulses.pdw"));
    row("/DDC/DDC4/HandoverPath", QString("<Recording/>"));
}

void TestAuthority::settingsComeBackAsTheyWereWritten()
{
    QFETCH(QString, path);
    QFETCH(Content, content);
    Bench bench;
    QVERIFY(bench.id(path) != 0);
    const WriteResult result = bench.write(path, content);
    QCOMPARE(result.reason, QString());
    QCOMPARE(result.kind, AnswerKind::Accepted);
    QVERIFY(bench.store.content(bench.id(path)) == content);
}

void TestAuthority::whatCannotBeDoneIsRefusedWithItsReason_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Content>("content");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const QString& path, const Content& content,
                        const QString& reason) { QTest::newRow(name) << path << content << reason; };
    const QString noRecorder = "no recorder is available";
    const QString noDirectionFinding = "direction finding is not available with this source";
    row("direction finding on", "/DDF/DF_ENABLED", DirectionFindingSwitch::on, noDirectionFinding);
    row("direction finding mode", "/DRVCOMMANDS", DriverCommand::directionFinding, noDirectionFinding);
    row("replay mode", "/DRVCOMMANDS", DriverCommand::replay, noRecorder);
    row("switching", "/DRVCOMMANDS", DriverCommand::switching, "is announced by the driver, not asked for");
    row("record", "/RECORDREPLAY/MODE", RecordReplayMode::record, noRecorder);
    row("replay", "/RECORDREPLAY/MODE", RecordReplayMode::replay, noRecorder);
    row("pause", "/RECORDREPLAY/MODE", RecordReplayMode::pause, noRecorder);
    row("audio recording", "/DDC/DDC1/AudioRecording", RecordSwitch::on, noRecorder);
    row("IF recording", "/DDC/DDC1/IfRecording", RecordSwitch::on, noRecorder);
    row("channel recording", "/DDC/DDC1/ChannelRecording", RecordSwitch::on, noRecorder);
    row("audio recording of main", "/DDC/MAIN/AudioRecording", RecordSwitch::on, noRecorder);
    row("activity log", "/DDC/DDC1/COB/WriteDB", ActivityLogSwitch::on, "no activity log is configured");
}

void TestAuthority::whatCannotBeDoneIsRefusedWithItsReason()
{
    QFETCH(QString, path);
    QFETCH(Content, content);
    QFETCH(QString, reason);
    Bench bench;
    const Content before = bench.store.content(bench.id(path));
    const WriteResult result = bench.write(path, content);
    QCOMPARE(result.kind, AnswerKind::Refused);
    QCOMPARE(result.reason, reason);
    QVERIFY(bench.store.content(bench.id(path)) == before);
}

void TestAuthority::whatTheDriverMeasuresCannotBeWritten_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Content>("content");
    QTest::newRow("level") << "/DDC/DDC1/LevelValue" << Content(1.0);
    QTest::newRow("squelch open") << "/DDC/DDC1/SquelchOpen" << Content(false);
    QTest::newRow("followed frequency") << "/DDC/DDC1/FREQUENCY" << Content(98e6);
    QTest::newRow("bearing") << "/DDC/DDC1/BEARINGRESULT" << Content(QByteArray("x"));
    QTest::newRow("recorder") << "/RECORDER/Available" << Content(true);
    QTest::newRow("channel's recorder") << "/DDC/DDC1/RecorderAvailable" << Content(true);
    QTest::newRow("source's state") << "/SOURCE/State" << Content(QString("running"));
    QTest::newRow("gain without hardware") << "/SOURCE/Gain" << Content(1.0);
    QTest::newRow("sample rate") << "/SOURCE/SampleRate" << Content(1.0);
}

void TestAuthority::whatTheDriverMeasuresCannotBeWritten()
{
    QFETCH(QString, path);
    QFETCH(Content, content);
    Bench bench;
    const WriteResult result = bench.write(path, content);
    QCOMPARE(result.kind, AnswerKind::Refused);
    QCOMPARE(result.reason, QString("can be read only"));
}

void TestAuthority::theCenterIsClampedToTheLimitsOfTheSource()
{
    Bench bench;
    const WriteResult result = bench.write("/FREQUENCY", 1e9);
    QCOMPARE(result.kind, AnswerKind::Clamped);
    QCOMPARE(result.reason, QString("clamped to 150 MHz"));
    QCOMPARE(bench.number("/FREQUENCY"), 150e6);
}

void TestAuthority::aChannelIsClampedToTheBandAroundTheCenter()
{
    Bench bench;
    QCOMPARE(bench.write("/DDC/DDC1/Frequency", 100.5e6).kind, AnswerKind::Accepted);
    const WriteResult above = bench.write("/DDC/DDC1/Frequency", 100.6e6);
    QCOMPARE(above.kind, AnswerKind::Clamped);
    QCOMPARE(above.reason, QString("clamped to 100.5 MHz"));
    QCOMPARE(bench.write("/DDC/DDC1/Frequency", -1.0).reason, QString("clamped to 95.5 MHz"));
    QCOMPARE(bench.number("/DDC/DDC1/Frequency"), 95.5e6);
}

void TestAuthority::theBandOfTheChannelsMovesWithTheCenter()
{
    Bench bench;
    bench.write("/DDC/DDC1/Frequency", 96e6);
    QCOMPARE(bench.write("/FREQUENCY", 120e6).kind, AnswerKind::Accepted);
    for (const QString& channel : bench.authority.channels()) {
        const Link::Description& description =
            bench.store.description(bench.id("/DDC/" + channel + "/Frequency"));
        QCOMPARE(description.minimum, 117.5e6);
        QCOMPARE(description.maximum, 122.5e6);
    }
    // The operator's frequency is not lost.
    QCOMPARE(bench.number("/DDC/DDC1/Frequency"), 96e6);
}

void TestAuthority::theMainChannelStaysInsideTheBandWhenTheCenterMoves()
{
    Bench bench;
    bench.write("/FREQUENCY", 98.5e6);
    QCOMPARE(bench.number("/DDC/MAIN/Frequency"), 97e6);
    bench.write("/FREQUENCY", 120e6);
    QCOMPARE(bench.number("/DDC/MAIN/Frequency"), 117.5e6);
    bench.write("/FREQUENCY", 100e6);
    QCOMPARE(bench.number("/DDC/MAIN/Frequency"), 102.5e6);
}

void TestAuthority::theOtherFrequencyOfAChannelFollowsTheSetting()
{
    Bench bench;
    bench.write("/DDC/DDC2/Frequency", 96.3e6);
    QCOMPARE(bench.number("/DDC/DDC2/FREQUENCY"), 96.3e6);
    bench.write("/DDC/DDC2/Frequency", 1e12);
    QCOMPARE(bench.number("/DDC/DDC2/FREQUENCY"), 100.5e6);
}

void TestAuthority::aCoupledFrequencyTakesOverTheMainReceiversAtOnce()
{
    Bench bench;
    bench.write("/DDC/DDC1/FrequencyCoupled", true);
    QCOMPARE(bench.number("/DDC/DDC1/Frequency"), 97e6);
    QCOMPARE(bench.number("/DDC/DDC1/FREQUENCY"), 97e6);
    QCOMPARE(bench.number("/DDC/DDC2/Frequency"), 98e6);
}

void TestAuthority::aCoupledFrequencyFollowsEveryChangeOfMain()
{
    Bench bench;
    bench.write("/DDC/DDC1/FrequencyCoupled", true);
    bench.write("/DDC/DDC3/FrequencyCoupled", true);
    for (const double hertz : {98.7e6, 96.1e6}) {
        bench.write("/DDC/MAIN/Frequency", hertz);
        QCOMPARE(bench.number("/DDC/DDC1/Frequency"), hertz);
        QCOMPARE(bench.number("/DDC/DDC3/Frequency"), hertz);
        QCOMPARE(bench.number("/DDC/DDC3/FREQUENCY"), hertz);
        QCOMPARE(bench.number("/DDC/DDC2/Frequency"), 98e6);
    }
}

void TestAuthority::aCoupledFrequencyRefusesASettingOfItsOwn()
{
    Bench bench;
    bench.write("/DDC/DDC1/FrequencyCoupled", true);
    const WriteResult result = bench.write("/DDC/DDC1/Frequency", 98.5e6);
    QCOMPARE(result.kind, AnswerKind::Refused);
    QCOMPARE(result.reason, QString("coupled to the main receiver"));
    QCOMPARE(bench.number("/DDC/DDC1/Frequency"), 97e6);
    QCOMPARE(bench.write("/DDC/DDC1/Bandwidth", qint64(2)).kind, AnswerKind::Accepted);
    QCOMPARE(bench.write("/DDC/DDC1/Demodulation", Demodulation::cw).kind, AnswerKind::Accepted);
}

void TestAuthority::coupledDemodulationFollowsModeAndBandwidth()
{
    Bench bench;
    bench.write("/DDC/DDC1/DemodulationCoupled", true);
    QCOMPARE(bench.text("/DDC/DDC1/Demodulation"), QString("FM"));
    QCOMPARE(bench.number("/DDC/DDC1/Bandwidth"), 120e3);
    bench.write("/DDC/MAIN/Demodulation", Demodulation::usb);
    bench.write("/DDC/MAIN/Bandwidth", bandwidthKey(2.4e3));
    QCOMPARE(bench.text("/DDC/DDC1/Demodulation"), QString("USB"));
    QCOMPARE(bench.number("/DDC/DDC1/Bandwidth"), 2.4e3);
    QCOMPARE(bench.number("/DDC/DDC1/Frequency"), 98e6);
}

void TestAuthority::coupledDemodulationRefusesModeAndBandwidthOnly()
{
    Bench bench;
    bench.write("/DDC/DDC1/DemodulationCoupled", true);
    for (const char* path : {"/DDC/DDC1/Demodulation", "/DDC/DDC1/Bandwidth"}) {
        const WriteResult result = bench.write(path, qint64(0));
        QCOMPARE(result.kind, AnswerKind::Refused);
        QCOMPARE(result.reason, QString("coupled to the main receiver"));
    }
    QCOMPARE(bench.write("/DDC/DDC1/Frequency", 98.5e6).kind, AnswerKind::Accepted);
}

void TestAuthority::uncouplingKeepsWhatStands()
{
    Bench bench;
    bench.write("/DDC/DDC1/FrequencyCoupled", true);
    bench.write("/DDC/DDC1/DemodulationCoupled", true);
    bench.write("/DDC/MAIN/Frequency", 99e6);
    bench.write("/DDC/DDC1/FrequencyCoupled", false);
    bench.write("/DDC/DDC1/DemodulationCoupled", false);
    QCOMPARE(bench.number("/DDC/DDC1/Frequency"), 99e6);
    QCOMPARE(bench.number("/DDC/DDC1/Bandwidth"), 120e3);

    bench.write("/DDC/MAIN/Frequency", 96e6);
    bench.write("/DDC/MAIN/Demodulation", Demodulation::am);
    QCOMPARE(bench.number("/DDC/DDC1/Frequency"), 99e6);
    QCOMPARE(bench.text("/DDC/DDC1/Demodulation"), QString("FM"));
    QCOMPARE(bench.write("/DDC/DDC1/Frequency", 98.5e6).kind, AnswerKind::Accepted);
}

void TestAuthority::theMainChannelCannotBeCoupledToItself()
{
    Bench bench;
    for (const char* path : {"/DDC/MAIN/FrequencyCoupled", "/DDC/MAIN/DemodulationCoupled"}) {
        QCOMPARE(bench.write(path, true).reason, QString("MAIN is the main receiver itself"));
        QCOMPARE(bench.write(path, false).kind, AnswerKind::Accepted);
    }
    QCOMPARE(bench.write("/DDC/MAIN/Frequency", 98.5e6).kind, AnswerKind::Accepted);
}

void TestAuthority::coupledChannelsFollowMainWhenTheCenterMovesIt()
{
    Bench bench;
    bench.write("/DDC/DDC1/FrequencyCoupled", true);
    bench.write("/FREQUENCY", 120e6);
    QCOMPARE(bench.number("/DDC/DDC1/Frequency"), 117.5e6);
    QCOMPARE(bench.number("/DDC/DDC1/FREQUENCY"), 117.5e6);
}

void TestAuthority::aFreeChannelIsClaimedByTheFirstWriter()
{
    Bench bench;
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString());
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", QString("north")).kind, AnswerKind::Accepted);
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString("north"));
}

void TestAuthority::theHolderMayWriteItsClaimAgain()
{
    Bench bench;
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", QString("north 2")).kind, AnswerKind::Accepted);
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString("north 2"));
}

void TestAuthority::anothersClaimIsRefusedAndNamesTheHolder()
{
    Bench bench;
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    const WriteResult result = bench.write("/DDC/DDC1/ConnectedClient", QString("south"), south);
    QCOMPARE(result.kind, AnswerKind::Refused);
    QCOMPARE(result.reason, QString("DDC1 is in use by \"north\""));
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString("north"));
    QCOMPARE(bench.write("/DDC/DDC2/ConnectedClient", QString("south"), south).kind, AnswerKind::Accepted);
}

void TestAuthority::anothersClearIsRefusedAndNamesTheHolder()
{
    Bench bench;
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    const WriteResult result = bench.write("/DDC/DDC1/ConnectedClient", QString(), south);
    QCOMPARE(result.kind, AnswerKind::Refused);
    QCOMPARE(result.reason, QString("DDC1 is in use by \"north\""));
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString("north"));
}

void TestAuthority::theSameNameFromAnotherConnectionIsAnotherClient()
{
    Bench bench;
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", QString("north"), south).kind, AnswerKind::Refused);
    bench.store.clientGone(south);
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString("north"));
}

void TestAuthority::theHolderFreesItsChannel()
{
    Bench bench;
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", QString()).kind, AnswerKind::Accepted);
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString());
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", QString("south"), south).kind, AnswerKind::Accepted);
}

void TestAuthority::clearingAFreeChannelIsAccepted()
{
    Bench bench;
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", QString()).kind, AnswerKind::Accepted);
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString());
}

void TestAuthority::aClientThatIsGoneFreesAllItsChannelsAndOnlyThose()
{
    Bench bench;
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    bench.write("/DDC/MAIN/ConnectedClient", QString("north"));
    bench.write("/DDC/DDC2/ConnectedClient", QString("south"), south);
    bench.store.clientGone(north);
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString());
    QCOMPARE(bench.text("/DDC/MAIN/ConnectedClient"), QString());
    QCOMPARE(bench.text("/DDC/DDC2/ConnectedClient"), QString("south"));
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", QString("south"), south).kind, AnswerKind::Accepted);
}

void TestAuthority::namesThatArePrintableAreAcceptedAsClaims_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("host") << "station-7.example";
    QTest::newRow("umlaut") << QString::fromUtf8("Höhe 3");
    QTest::newRow("longest") << QString(253, 'x');
}

void TestAuthority::namesThatArePrintableAreAcceptedAsClaims()
{
    QFETCH(QString, name);
    Bench bench;
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", name).kind, AnswerKind::Accepted);
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), name);
}

void TestAuthority::namesThatAreNotPrintableAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blank") << " ";
    QTest::newRow("line end") << "north\n";
    QTest::newRow("too long") << QString(254, 'x');
}

void TestAuthority::namesThatAreNotPrintableAreRefused()
{
    QFETCH(QString, name);
    Bench bench;
    const WriteResult result = bench.write("/DDC/DDC1/ConnectedClient", name);
    QCOMPARE(result.kind, AnswerKind::Refused);
    QVERIFY(result.reason.contains("printable"));
    QCOMPARE(bench.text("/DDC/DDC1/ConnectedClient"), QString());
    QCOMPARE(bench.write("/DDC/DDC1/ConnectedClient", QString("south"), south).kind, AnswerKind::Accepted);
}

void TestAuthority::channelRecordingIsAvailableOnceClaimedAndRecorderThere()
{
    Bench bench;
    const ValueId recording = bench.id("/DDC/DDC1/ChannelRecording");
    QCOMPARE(bench.store.status(recording), ValueStatus::NotAvailable);
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    QCOMPARE(bench.store.status(recording), ValueStatus::NotAvailable);

    bench.store.set(bench.id("/RECORDER/Available"), true);
    QCOMPARE(bench.store.status(recording), ValueStatus::Usable);
    QVERIFY(bench.store.flag(bench.id("/DDC/DDC1/RecorderAvailable")));
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC2/ChannelRecording")), ValueStatus::NotAvailable);
    QCOMPARE(bench.write("/DDC/DDC1/ChannelRecording", RecordSwitch::on).kind, AnswerKind::Accepted);
    QCOMPARE(bench.write("/DDC/DDC2/ChannelRecording", RecordSwitch::on).reason,
             QString("the channel is not in use by a client"));
}

void TestAuthority::channelRecordingGoesAwayWithTheClaim()
{
    Bench bench;
    const ValueId recording = bench.id("/DDC/DDC1/ChannelRecording");
    bench.store.set(bench.id("/RECORDER/Available"), true);
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    QCOMPARE(bench.store.status(recording), ValueStatus::Usable);
    bench.store.clientGone(north);
    QCOMPARE(bench.store.status(recording), ValueStatus::NotAvailable);
}

void TestAuthority::aRecorderThatGoesAwayEndsWhatItRecorded()
{
    Bench bench;
    bench.store.set(bench.id("/RECORDER/Available"), true);
    bench.write("/DDC/DDC1/ConnectedClient", QString("north"));
    for (const char* path :
         {"/DDC/DDC1/AudioRecording", "/DDC/DDC1/IfRecording", "/DDC/DDC1/ChannelRecording"})
        QCOMPARE(bench.write(path, RecordSwitch::on).kind, AnswerKind::Accepted);
    bench.store.set(bench.id("/RECORDER/Available"), false);
    for (const char* path :
         {"/DDC/DDC1/AudioRecording", "/DDC/DDC1/IfRecording", "/DDC/DDC1/ChannelRecording"})
        QCOMPARE(bench.key(path), RecordSwitch::off);
    QVERIFY(!bench.store.flag(bench.id("/DDC/DDC1/RecorderAvailable")));
}

void TestAuthority::anAuthorityThatEndedRefusesAndLeavesTheStoreUsable()
{
    ValueStore store;
    {
        Authority authority(store, Bench::setup());
    }
    const ValueId claim = store.find("/RX1/DDC/DDC1/ConnectedClient");
    QCOMPARE(store.write(claim, QString("north"), north).reason, QString("the driver is ending"));
    store.clientGone(north);
    store.set(store.find("/RX1/FREQUENCY"), 100e6);
    QCOMPARE(store.number(store.find("/RX1/FREQUENCY")), 100e6);
}

QTEST_APPLESS_MAIN(TestAuthority)
#include "tst_authority.moc"
