#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QComboBox>
#include <QHostInfo>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QToolButton>

#include "tests/ddcgui/panelfixture.h"
#include "valuecontrols/vclabel.h"

namespace {

const QString validatorTrace =
    "Unable to connect to Value Tree Frequency Values "
    "[devicecontrol\\receiver\\common\\ddcgui\\ddcguiffm:304]";

const QString ddc = "/RX1/DDC/DDC1";

}  // namespace

class tst_FfmBinding : public QObject
{
    Q_OBJECT
private slots:
    void everyBoundControlHasAnObserverAtItsPath_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<int>("observers");  // the control, and the panel's pointer with its owner
        QTest::newRow("coupled demodulation") << "/DemodulationCoupled" << 3;
        QTest::newRow("frequency") << "/Frequency" << 3;  // control, validator and its pointer
        QTest::newRow("level") << "/LevelValue" << 1;
        QTest::newRow("coupled frequency") << "/FrequencyCoupled" << 3;
        QTest::newRow("demodulation") << "/Demodulation" << 1;
        QTest::newRow("bandwidth") << "/Bandwidth" << 1;
        QTest::newRow("squelch switch") << "/SquelchState" << 1;
        QTest::newRow("squelch threshold") << "/SquelchValue" << 1;
        QTest::newRow("mute") << "/AudioMute" << 3;
        QTest::newRow("balance") << "/AudioBalance" << 1;
        QTest::newRow("audio recording") << "/AudioRecording" << 3;
        QTest::newRow("IF recording") << "/IfRecording" << 1;
        QTest::newRow("channel recording") << "/ChannelRecording" << 3;
        QTest::newRow("activities") << "/COB/WriteDB" << 1;
        QTest::newRow("client") << "/ConnectedClient" << 2;
        QTest::newRow("audio mode") << "/AudioMode" << 0;
        QTest::newRow("the wind rose's frequency") << "/FREQUENCY" << 0;
    }
    void everyBoundControlHasAnObserverAtItsPath()
    {
        QFETCH(QString, suffix);
        QFETCH(int, observers);
        PanelFixture fixture;
        fixture.Bind("DDC1");
        QCOMPARE(TestTree::Find(ddc + suffix)->CountObservers(), observers);
    }

    void controlsShowTheirValues()
    {
        PanelFixture fixture;
        fixture.Bind("DDC1");
        TestTree::Bool(ddc + "/SquelchState").SetValue(true, nullptr);
        TestTree::Selection(ddc + "/Demodulation").SelectText("USB", nullptr);
        TestTree::Float(ddc + "/Frequency").SetValue(98500000, nullptr);
        QTRY_VERIFY(fixture.Child<QCheckBox>("SquelchState")->isChecked());
        QTRY_COMPARE(fixture.Child<QComboBox>("Demodulation")->currentText(), QString("USB"));
        QTRY_VERIFY(fixture.Child<QLineEdit>("Frequency")->text().remove(' ').contains("98"));
    }

    void selectablePanelTakesTheNameAndThePathOfTheChannel()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        fixture.tree.AddChannel("/RX1/DDC/DDC2");
        DdcGuiFfm& panel = fixture.Make("DDC1");
        panel.ConnectVtValuesToControls("DDC2");
        QCOMPARE(fixture.Child<VCLabel>("DDC1")->text(), QString("DDC2"));  // the object name stays
        QCOMPARE(panel.objectName(), QString("DDC1"));
        QCOMPARE(TestTree::Find("/RX1/DDC/DDC2/LevelValue")->CountObservers(), 1);
        QCOMPARE(TestTree::Find("/RX1/DDC/DDC1/LevelValue")->CountObservers(), 0);
    }

    void fixedPanelKeepsItsNameAndPath()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        fixture.tree.AddChannel("/RX1/DDC/DDC2");
        DdcGuiFfm& panel = fixture.Make("DDC1", false);
        panel.ConnectVtValuesToControls("DDC2");
        QCOMPARE(fixture.Child<VCLabel>("DDC1")->text(), QString("DDC1"));
        QCOMPARE(TestTree::Find("/RX1/DDC/DDC1/LevelValue")->CountObservers(), 1);
        QCOMPARE(TestTree::Find("/RX1/DDC/DDC2/LevelValue")->CountObservers(), 0);
    }

    void bindingAgainMovesEveryControlAndPointer()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("DDC1");
        fixture.tree.AddChannel("/RX1/DDC/DDC2");
        panel.ConnectVtValuesToControls("DDC2");
        for (ValueBase* value : ValueHost::ValuesBelow("/RX1/DDC/DDC1"))
            QVERIFY2(value->CountObservers() == 0, qPrintable(value->GetPathName()));
        panel.SetFrqCoupled(true);
        QVERIFY(TestTree::Bool("/RX1/DDC/DDC2/FrequencyCoupled").GetValue());
    }

    void bandwidthItemsAreTranslatedInTheirContext()
    {
        PanelFixture fixture;
        fixture.Bind("DDC1");
        QCOMPARE(ValueHost::TranslationContext(TestTree::Selection(ddc + "/Bandwidth")),
                 QByteArray("DemodBandwidth"));
    }

    void channelWithoutActivityGenerationShowsNoButtonForIt()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(ddc);
        TestTree::Delete(ddc + "/COB/WriteDB");
        DdcGuiFfm& panel = fixture.Make("DDC1");
        QVERIFY(!fixture.Child<QWidget>("DDCActivityGenerationBtn")->isHidden());
        panel.ConnectVtValuesToControls("DDC1");
        QVERIFY(fixture.Child<QWidget>("DDCActivityGenerationBtn")->isHidden());
    }

    void channelChosenAtRunTimeStartsMuted()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(ddc);
        DdcGuiFfm& panel = fixture.Make("DDC1");
        QSignalSpy spy(&panel, SIGNAL(audioMuteChanged()));
        panel.ConnectVtValuesToControls("DDC1");
        QVERIFY(fixture.Child<QCheckBox>("AudioState")->isChecked());
        QVERIFY(TestTree::Bool(ddc + "/AudioMute").GetValue());
        QVERIFY(spy.size() >= 1);
    }

    void mutedChannelStaysMutedAndFixedPanelMutesNothing()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(ddc);
        TestTree::Bool(ddc + "/AudioMute").SetValue(true, nullptr);
        fixture.Make("DDC1").ConnectVtValuesToControls("DDC1");
        QVERIFY(TestTree::Bool(ddc + "/AudioMute").GetValue());
        fixture.tree.AddChannel("/RX1/DDC/DDC2");
        fixture.Make("DDC2", false).ConnectVtValuesToControls("DDC2");
        QVERIFY(!TestTree::Bool("/RX1/DDC/DDC2/AudioMute").GetValue());
    }

    void panelOfAChannelIsTheFirstToHearOfAnAudioRecording()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(ddc);
        TestTree::Delete(ddc + "/AudioMode");  // the check fails without a question
        class Witness : public IObserver
        {
        public:
            void Update(Observable* subject, TChangeCode code) override
            {
                if (code == CC_VALUE)
                    keys.append(dynamic_cast<ValueSelection*>(subject)->GetCurrentKey());
            }
            QVector<int> keys;
        } witness;
        ValueSelection& recording = TestTree::Selection(ddc + "/AudioRecording");
        recording.AddObserver(&witness);
        fixture.Make("DDC1").ConnectVtValuesToControls("DDC1");
        recording.SelectKey(0, nullptr);
        QVERIFY(!witness.keys.isEmpty());
        for (int key : witness.keys)
            QCOMPARE(key, 1);  // nobody ever saw the recording that may not be
    }

    void fixedPanelOfTheReceiverLeavesTheAudioRecordingToOthers()
    {
        PanelFixture fixture;
        fixture.Bind("MAIN", TestTree::Plain, false);
        ValueSelection& recording = TestTree::Selection("/RX1/DDC/MAIN/AudioRecording");
        QCOMPARE(recording.CountObservers(), 2);  // the button and the pointer, not the panel
        recording.SelectKey(0, nullptr);
        QCOMPARE(recording.GetCurrentKey(), 0);
    }

    void modeChangeFromTheTreeMovesTheButtonWithoutAClick()
    {
        PanelFixture fixture;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        QToolButton* button = fixture.Child<QToolButton>("DDC4");
        QSignalSpy clicked(button, SIGNAL(clicked(bool)));
        QSignalSpy toggled(button, SIGNAL(toggled(bool)));
        ValueSelection& mode = TestTree::Selection("/RX1/DDC/DDC4/DDCMode");
        NotingObserver notes;
        mode.AddObserver(&notes);
        mode.SelectIndex(1, nullptr);
        QVERIFY(button->isChecked());
        mode.SelectIndex(0, nullptr);
        QVERIFY(!button->isChecked());
        QCOMPARE(clicked.size() + toggled.size(), 0);
        QCOMPARE(notes.Count(CC_VALUE), 2);  // nothing was written back
        QVERIFY(!button->signalsBlocked());
    }

    void clickOnTheModeButtonSelectsTheMode()
    {
        PanelFixture fixture;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        fixture.Child<QToolButton>("DDC4")->click();
        QCOMPARE(TestTree::Selection("/RX1/DDC/DDC4/DDCMode").GetCurrentIndex(), 1);
        fixture.Child<QToolButton>("DDC4")->click();
        QCOMPARE(TestTree::Selection("/RX1/DDC/DDC4/DDCMode").GetCurrentIndex(), 0);
        TestTree::Delete("/RX1/DDC/DDC4/DDCMode");
        fixture.Child<QToolButton>("DDC4")->click();  // harmless
    }

    void hooksServedNoticeOfAnyOtherValueDoesNothing()
    {
        PanelFixture fixture;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        TextValue& handover = TestTree::Text("/RX1/DDC/DDC4/HandoverPath");
        for (ValueBase* value : ValueHost::ValuesBelow("/RX1"))
            if (value->GetName() != "PDWPath")
                fixture.panel->Update(value, CC_HOOKS_SERVED);
        fixture.panel->Update(nullptr, CC_HOOKS_SERVED);
        QCOMPARE(handover.GetValue(), QString());
        TestTree::Text("/RX1/DDC/DDC4/PDWPath").SetValue("file", nullptr);
        QVERIFY(!handover.GetValue().isEmpty());
    }

    void channelRecordingButtonFollowsTheStateOfItsValue()
    {
        PanelFixture fixture;
        fixture.Bind("DDC1");
        QWidget* button = fixture.Child<QWidget>("ChannelRecording");
        ValueSelection& value = TestTree::Selection(ddc + "/ChannelRecording");
        QVERIFY(button->isHidden());
        for (TValueState state : {VS_NOT_AVAILABLE, VS_USABLE, VS_STALE, VS_USABLE}) {
            ValueHost::SetState(value, state);
            QCOMPARE(button->isHidden(), state != VS_USABLE);
        }
        TestTree::Delete(ddc + "/ChannelRecording");
        QVERIFY(button->isHidden());
    }

    void muteIsToldWhenItsValueChanges()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("DDC1");
        QSignalSpy spy(&panel, SIGNAL(audioMuteChanged()));
        TestTree::Bool(ddc + "/AudioMute").SetValue(false, nullptr);
        QCOMPARE(spy.size(), 1);
        QVERIFY(!panel.GetAudioMute());
        panel.SetAudioMute(true);
        QCOMPARE(spy.size(), 2);
        QVERIFY(TestTree::Bool(ddc + "/AudioMute").GetValue());
    }

    void missingRangeValuesAreTracedOnceForEachBinding()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(ddc);
        TestTree::Delete("/RX1/IFPANSPAN");
        DdcGuiFfm& panel = fixture.Make("DDC1");
        TraceNotes notes;
        panel.ConnectVtValuesToControls("DDC1");
        QCOMPARE(notes.traces.filter(validatorTrace).size(), 1);
    }

    void nothingIsTracedWithoutTheMaskBitOrWithAllValues()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(ddc);
        TraceNotes notes;
        fixture.Make("DDC1").ConnectVtValuesToControls("DDC1");
        QCOMPARE(notes.traces.filter("Frequency Values").size(), 0);
        BaseHost::SetTraceMask(~0x20u);
        TestTree::Delete("/RX1/IFPANSPAN");
        fixture.Make("DDC1").ConnectVtValuesToControls("DDC1");
        QCOMPARE(notes.traces.filter("Frequency Values").size(), 0);
    }

    void valueThatIsMissingOrOfAnotherTypeLeavesTheRestWorking_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<bool>("replace");
        for (const char* suffix :
             {"/Frequency", "/LevelValue", "/FrequencyCoupled", "/DemodulationCoupled", "/Demodulation",
              "/Bandwidth", "/SquelchState", "/SquelchValue", "/AudioMute", "/AudioBalance",
              "/AudioRecording", "/IfRecording", "/ChannelRecording", "/ConnectedClient"}) {
            QTest::addRow("%s missing", suffix) << suffix << false;
            QTest::addRow("%s of another type", suffix) << suffix << true;
        }
    }
    void valueThatIsMissingOrOfAnotherTypeLeavesTheRestWorking()
    {
        QFETCH(QString, suffix);
        QFETCH(bool, replace);
        PanelFixture fixture;
        fixture.tree.AddChannel(ddc);
        TestTree::Delete(ddc + suffix);
        if (replace && suffix == "/ConnectedClient")
            TestTree::AddBool(ddc + suffix, true);
        else if (replace)
            TestTree::AddText(ddc + suffix, "nonsense");
        DdcGuiFfm& panel = fixture.Make("DDC1");
        panel.ConnectVtValuesToControls("DDC1");
        panel.ReconnectClient();
        panel.ClearConnectedClient();
        QCheckBox* squelch = fixture.Child<QCheckBox>("SquelchState");
        if (suffix != "/SquelchState") {
            squelch->click();
            QCOMPARE(TestTree::Bool(ddc + "/SquelchState").GetValue(), squelch->isChecked());
            QVERIFY(squelch->isChecked());
        } else {
            QVERIFY(!panel.GetFrqCoupled());
        }
    }
};

DDCGUI_TEST_MAIN(tst_FfmBinding)
#include "tst_ffmbinding.moc"
