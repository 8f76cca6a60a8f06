#include <QHostInfo>
#include <QLayout>
#include <QToolBar>

#include "tests/ddcgui/panelfixture.h"

namespace {

// The sender and the audio link of the host, which note every call in one list.
class NotingPlugins
{
public:
    explicit NotingPlugins(bool withSender = true)
    {
        if (withSender)
            StartupHost::RegisterFactory("libmessagesender", [this](const QString& argument) {
                sender = new NotingSender(argument, &calls);
                return sender;
            });
        StartupHost::RegisterFactory("libaudiolink", [this](const QString& argument) {
            links.append(argument);
            return new IDllInstance(argument);
        });
    }

    QStringList calls;
    QStringList links;
    NotingSender* sender = nullptr;  // the last one made
};

void Configure(const QString& toml)
{
    QString error;
    QVERIFY2(StartupHost::LoadConfigurationText(toml, "test", &error), qPrintable(error));
}

const char* const stations =
    "Name = 'RxTest'\n"
    "[AdditionalDlls.ReceiverGui]\n"
    "[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]\n"
    "IsReceiver = %1\nSubGroup = 'North'\n"
    "[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]\n"
    "IsReceiver = %2\nSubGroup = 'South'\n";

QString ddc(const char* suffix)
{
    return QString("/RX1/DDC/DDC1") + suffix;
}

}  // namespace

class tst_FfmSender : public QObject
{
    Q_OBJECT
private slots:
    void plainChannelSetsTheSenderUpInThisOrder()
    {
        PanelFixture fixture;
        NotingPlugins plugins;
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        fixture.Make("DDC1");
        QCOMPARE(plugins.calls,
                 QStringList(
                     {"create()", "SetName(DDC1)", "SetServer(127.0.0.1, 4500)",
                      "SetApplication(PELTA_Receiver)", "SetGroup(DDC1)", "SetFlag1(false)", "SetFlag6(true)",
                      "SetFlag2(true)", "SetFlag4(true)", "SetFlag5(false)", "SetFlag3(true)",
                      "SetFrequencyPath(/RX1/DDC/DDC1/Frequency)", "AddValue(FRQ, /RX1/DDC/DDC1/Frequency, )",
                      "AddValue(BW, /RX1/DDC/DDC1/Bandwidth, AdAlgSelectEqualOrBiggerValue)",
                      "AddValue(DEM, /RX1/DDC/DDC1/Demodulation, )", "SetToolBar(bar, true)", "Start()"}));
    }

    void channelWithAModeSetsTheSenderUpInThisOrder()
    {
        PanelFixture fixture;
        NotingPlugins plugins;
        fixture.tree.AddChannel("/RX1/DDC/DDC4", TestTree::PulseAnalysis);
        fixture.Make("DDC4");
        QCOMPARE(plugins.calls,
                 QStringList({"create()", "SetName(DDC4)", "SetApplication(PulseAnalysis)", "SetGroup(DDC)",
                              "SetServer(127.0.0.1, 4500)", "SetFlag1(false)", "SetFlag2(true)",
                              "SetFlag4(true)", "SetFlag5(false)", "SetPdwPath(/RX1/DDC/DDC4/PDWPath)",
                              "AddValue(Recording_RDS, /RX1/DDC/DDC4/HandoverPath, )",
                              "SetToolBar(bar, true)", "Start()"}));
    }

    void senderToolBarIsHiddenForAPlainChannelAndVisibleForOneWithAMode_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("hidden");
        QTest::newRow("plain") << int(TestTree::Plain) << true;
        QTest::newRow("with a mode") << int(TestTree::PulseAnalysis) << false;
    }
    void senderToolBarIsHiddenForAPlainChannelAndVisibleForOneWithAMode()
    {
        QFETCH(int, kind);
        QFETCH(bool, hidden);
        PanelFixture fixture;
        NotingPlugins plugins;
        fixture.tree.AddChannel("/RX1/DDC/DDC1", TestTree::ChannelKind(kind));
        DdcGuiFfm& panel = fixture.Make("DDC1");
        QToolBar* bar = plugins.sender->toolBar;
        QVERIFY(bar);
        QCOMPARE(bar->windowTitle(), QString("DDC-Bar"));
        QCOMPARE(bar->parentWidget(), &panel);
        QVERIFY(panel.layout()->indexOf(bar) >= 0);
        QCOMPARE(bar->isHidden(), hidden);
    }

    void groupIsTheChannelsNameUnlessAStationIsNoReceiver_data()
    {
        QTest::addColumn<QString>("toml");
        QTest::addColumn<QString>("group");
        const QString both = stations;
        QTest::newRow("no configuration") << QString() << "DDC1";
        QTest::newRow("no group") << "Name = 'RxTest'\n[AdditionalDlls.ReceiverGui.Config]\nCaption = 'x'\n"
                                  << "DDC1";
        QTest::newRow("all receivers") << both.arg("true", "true") << "DDC1";
        QTest::newRow("first is none") << both.arg("false", "false") << "North_DDC1";
        QTest::newRow("second is none") << both.arg("true", "false") << "South_DDC1";
        QTest::newRow("not said means no receiver")
            << "Name = 'RxTest'\n[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]\nSubGroup = 'East'\n"
            << "East_DDC1";
        QTest::newRow("no sub group")
            << "Name = 'RxTest'\n[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]\nIsReceiver = false\n"
            << "_DDC1";
    }
    void groupIsTheChannelsNameUnlessAStationIsNoReceiver()
    {
        QFETCH(QString, toml);
        QFETCH(QString, group);
        PanelFixture fixture;
        NotingPlugins plugins;
        if (!toml.isEmpty())
            Configure(toml);
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        fixture.Make("DDC1");
        QVERIFY2(plugins.calls.contains("SetGroup(" + group + ")"), qPrintable(plugins.calls.join('\n')));
    }

    void missingSenderIsTracedAndThePanelWorksOn()
    {
        for (TestTree::ChannelKind kind : {TestTree::Plain, TestTree::PulseAnalysis}) {
            PanelFixture fixture;
            NotingPlugins plugins(false);
            TraceNotes notes;
            DdcGuiFfm& panel = fixture.Bind("DDC1", kind);
            const QStringList found = notes.traces.filter("Not able to load libmessagesender for DDC");
            QCOMPARE(found.size(), 1);
            QVERIFY(found.first().contains("[devicecontrol\\receiver\\common\\ddcgui\\ddcguiffm:"));
            QCOMPARE(panel.findChildren<QToolBar*>("", Qt::FindDirectChildrenOnly).size(), 0);
            panel.SetFrqCoupled(true);
            QVERIFY(TestTree::Bool(ddc("/FrequencyCoupled")).GetValue());
        }
    }

    void pluginThatIsNoSenderCountsAsMissing()
    {
        PanelFixture fixture;
        StartupHost::RegisterFactory("libmessagesender",
                                     [](const QString& argument) { return new IDllInstance(argument); });
        TraceNotes notes;
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        fixture.Make("DDC1");
        QCOMPARE(notes.traces.filter("Not able to load").size(), 1);
    }

    // --- claim --------------------------------------------------------------------------------
    void freeChannelIsClaimedWithThisComputersName()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("DDC1");
        TextValue& client = TestTree::Text(ddc("/ConnectedClient"));
        QCOMPARE(client.GetValue(), QHostInfo::localHostName());
        panel.ClearConnectedClient();
        QCOMPARE(client.GetValue(), QString());
        panel.ReconnectClient();
        QCOMPARE(client.GetValue(), QHostInfo::localHostName());
    }

    void secondPanelOnAChannelLeavesTheOtherStationsClaim()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        TestTree::Text(ddc("/ConnectedClient")).SetValue("other station", nullptr);
        for (int i = 0; i < 2; ++i) {
            DdcGuiFfm& panel = fixture.Make("DDC1");
            panel.ConnectVtValuesToControls("DDC1");
            panel.ReconnectClient();
            QCOMPARE(TestTree::Text(ddc("/ConnectedClient")).GetValue(), QString("other station"));
            fixture.panel.reset();
            TestTree::Text(ddc("/ConnectedClient")).SetValue("other station", nullptr);
        }
    }

    void missingClientValueMakesTheClaimDoNothing()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("DDC1");
        TestTree::Delete(ddc("/ConnectedClient"));
        panel.ReconnectClient();
        panel.ClearConnectedClient();
        QVERIFY(!TestTree::Find(ddc("/ConnectedClient")));
    }

    // --- audio link ---------------------------------------------------------------------------
    void audioLinkIsStartedWithTheChannelsArguments_data()
    {
        QTest::addColumn<bool>("localRecorder");
        QTest::newRow("without a recorder") << false;
        QTest::newRow("with a recorder") << true;
    }
    void audioLinkIsStartedWithTheChannelsArguments()
    {
        QFETCH(bool, localRecorder);
        PanelFixture fixture;
        NotingPlugins plugins;
        Configure(QString("Name = 'RxTest'\n[AdditionalDlls.DDCGUI]\nFileName = 'libddcgui'\n"
                          "[AdditionalDlls.DDCGUI.Config]\nLocalRecorder = %1\n")
                      .arg(localRecorder ? "true" : "false"));
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        DdcGuiFfm& panel = fixture.Make("DDC1");
        panel.SetConfigKey("RxTest\\AdditionalDlls\\DDCGUI\\Config");
        panel.ConnectVtValuesToControls("DDC1");
        QCOMPARE(
            plugins.links,
            QStringList({QString("/RX1;DDC1;false;/RX1/DDC/DDC1;%1").arg(localRecorder ? "true" : "false")}));
    }

    void audioLinkIsLeftToTheReceiverWindowUnlessTheKeyNamesAGui_data()
    {
        QTest::addColumn<bool>("boxed");
        QTest::addColumn<bool>("receiverWindow");
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("links");
        QTest::newRow("alone") << false << false << "Ddc" << 1;
        QTest::newRow("beside the window") << false << true << "Ddc" << 0;
        QTest::newRow("beside the window, named") << false << true << "DDCGUI" << 1;
        QTest::newRow("case matters") << false << true << "DdcGui" << 0;
        QTest::newRow("boxed") << true << false << "Ddc" << 0;
        QTest::newRow("boxed, named") << true << false << "DDCGUI" << 1;
    }
    void audioLinkIsLeftToTheReceiverWindowUnlessTheKeyNamesAGui()
    {
        QFETCH(bool, boxed);
        QFETCH(bool, receiverWindow);
        QFETCH(QString, key);
        QFETCH(int, links);
        PanelFixture fixture;
        NotingPlugins plugins;
        ReceiverCommonHost::SetBoxedVersion(boxed);
        Configure(QString("Name = 'RxTest'\n[AdditionalDlls.DDCGUI]\nFileName = 'libddcgui'\n"
                          "[AdditionalDlls.ReceiverGui]\nFileName = '%1'\n")
                      .arg(receiverWindow ? "libreceivergui" : "libsomething"));
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        DdcGuiFfm& panel = fixture.Make("DDC1");
        panel.SetConfigKey(key);
        panel.ConnectVtValuesToControls("DDC1");
        QCOMPARE(plugins.links.size(), links);
    }

    void channelNamedScupNeverStartsTheAudioLink()
    {
        PanelFixture fixture;
        NotingPlugins plugins;
        for (const char* name : {"SCUP1", "DDC_SCUP"}) {
            fixture.tree.AddChannel(fixture.DdcPath(name));
            DdcGuiFfm& panel = fixture.Make(name);
            panel.SetConfigKey("DDCGUI");
            panel.ConnectVtValuesToControls(name);
        }
        QCOMPARE(plugins.links, QStringList());
    }

    void channelWithAModeNeverStartsTheAudioLink()
    {
        PanelFixture fixture;
        NotingPlugins plugins;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        QCOMPARE(plugins.links, QStringList());
    }
};

DDCGUI_TEST_MAIN(tst_FfmSender)
#include "tst_ffmsender.moc"
