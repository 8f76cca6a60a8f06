#include <QBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QToolButton>

#include "floatlayout.h"
#include "frequencyrangevalidator.h"
#include "tests/ddcgui/panelfixture.h"
#include "valuecontrols/vcbutton.h"
#include "valuecontrols/vclabel.h"

namespace {

const int freeWidth = QWIDGETSIZE_MAX;

struct Control
{
    const char* objectName;
    const char* className;
    const char* toolTip;
    const char* text;  // null: not looked at
    int minimumWidth;
    int maximumWidth;
    bool hidden;
};

const Control plainControls[] = {
    {"DDC1", "VCLabel", "", "DDC1", 40, 40, false},
    {"Frequency", "VCLineEdit", "Frequency", nullptr, 100, 150, false},
    {"Level", "VCBar", "Level Value", nullptr, 130, 180, false},
    {"Couple Frequency", "VCCheckBox", "Couple Frequency To Main", "Couple Frequency", 120, freeWidth, false},
    {"Couple Demodulation", "VCCheckBox", "Couple Demodulation To Main", "Couple Demodulation", 120,
     freeWidth, false},
    {"Demodulation", "VCComboBoxClassic", "Demodulation", nullptr, 50, freeWidth, false},
    {"Bandwidth", "VCComboBoxClassic", "Demodulation Bandwidth", nullptr, 70, freeWidth, false},
    {"SquelchState", "VCCheckBox", "Use Squelch", "Use Squelch", 80, freeWidth, false},
    {"SquelchValue", "VCNumericFloatSpin", "Squelch Value", nullptr, 40, freeWidth, false},
    {"AudioState", "VCCheckBox", "Mute", "Mute", 80, freeWidth, false},
    {"AudioVolume", "VCSlider", "Channel Audio Volume", nullptr, 40, freeWidth, true},
    {"Level", "QLabel", "", "Audio Balance", 70, freeWidth, false},
    {"AudioBalance", "VCSlider", "Audio Balance", nullptr, 40, freeWidth, false},
    {"DDCActivityGenerationBtn", "VCButton", "Enable Activity Generation", nullptr, 0, freeWidth, false},
    {"AudioRecording", "VCButton", "Audio Recording", nullptr, 0, freeWidth, false},
    {"IFRecording", "VCButton", "If Recording", nullptr, 0, freeWidth, false},
    {"ChannelRecording", "VCButton", "Channel Recording", nullptr, 0, freeWidth, true},
};

// The widgets of a layout and of all layouts in it, in their order.
void CollectWidgets(QLayout* layout, QList<QWidget*>* widgets)
{
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (item->layout())
            CollectWidgets(item->layout(), widgets);
        else if (item->widget() && item->widget()->layout() &&
                 !item->widget()->inherits("QAbstractSpinBox") && !item->widget()->inherits("QToolBar"))
            CollectWidgets(item->widget()->layout(), widgets);
        else if (item->widget())
            widgets->append(item->widget());
    }
}

QList<QWidget*> ControlsInOrder(DdcGuiFfm& panel)
{
    QList<QWidget*> widgets;
    CollectWidgets(panel.layout(), &widgets);
    return widgets;
}

QStringList Names(const QList<QWidget*>& widgets)
{
    QStringList names;
    for (const QWidget* widget : widgets)
        names.append(widget->objectName());
    return names;
}

}  // namespace

class tst_DdcGuiFfm : public QObject
{
    Q_OBJECT
private slots:
    void controlsOfAPlainChannelStandInTheirOrderWithNamesTipsAndWidths()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(fixture.DdcPath("DDC1"));
        const QList<QWidget*> widgets = ControlsInOrder(fixture.Make("DDC1"));
        int i = 0;
        for (const Control& control : plainControls) {
            QVERIFY2(i < widgets.size(), control.objectName);
            const QWidget* widget = widgets.at(i++);
            QCOMPARE(widget->objectName(), QString(control.objectName));
            QCOMPARE(QString(widget->metaObject()->className()), QString(control.className));
            QCOMPARE(widget->toolTip(), QString(control.toolTip));
            QCOMPARE(widget->minimumWidth(), control.minimumWidth);
            QCOMPARE(widget->maximumWidth(), control.maximumWidth);
            QCOMPARE(widget->isHidden(), control.hidden);
            if (control.text)
                QCOMPARE(widget->property("text").toString(), QString(control.text));
        }
        // Last the recorder's row: nothing but an empty label where there is no recorder.
        QCOMPARE(widgets.size(), i + 1);
        QCOMPARE(widgets.last()->property("text").toString(), QString());
    }

    void frequencyAndLevelHaveTheirFixedLook()
    {
        PanelFixture fixture;
        fixture.Make("DDC1");
        QCOMPARE(fixture.Child<QWidget>("Frequency")->font().pointSize(), 8);
        QWidget* level = nullptr;
        for (QWidget* widget : fixture.panel->findChildren<QWidget*>("Level"))
            if (widget->inherits("VCBar"))
                level = widget;
        QVERIFY(level);
        QCOMPARE(level->minimumHeight(), 20);
        QCOMPARE(level->maximumHeight(), 20);
        VCLabel* name = fixture.Child<VCLabel>("DDC1");
        QVERIFY(name->font().bold());
        QCOMPARE(name->alignment(), Qt::Alignment(Qt::AlignLeft));
        QCOMPARE(fixture.panel->frameShape(), QFrame::Box);
        for (const char* slider : {"AudioVolume", "AudioBalance"})
            QCOMPARE(fixture.Child<QSlider>(slider)->orientation(), Qt::Horizontal);
    }

    void channelWithAModeGetsAButtonAndNeitherAudioNorRecordGroup()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(fixture.DdcPath("DDC4"), TestTree::PulseAnalysis);
        DdcGuiFfm& panel = fixture.Make("DDC4");
        QVERIFY(panel.isWPU());
        QStringList names = Names(ControlsInOrder(panel));
        names.removeLast();
        QCOMPARE(names, QStringList({"DDC4", "Frequency", "Level", "Couple Frequency", "Bandwidth",
                                     "SquelchState", "SquelchValue"}));
        QToolButton* button = fixture.Child<QToolButton>("DDC4");
        QVERIFY(button);
        QCOMPARE(button->text(), QString("DDC4"));
        QVERIFY(button->isCheckable());
        QVERIFY(button->autoRaise());
        QCOMPARE(button->maximumWidth(), 70);
    }

    void channelWithoutAModeGetsTheBoldLabel()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(fixture.DdcPath("DDC1"));
        QVERIFY(!fixture.Make("DDC1").isWPU());
        QVERIFY(fixture.Child<VCLabel>("DDC1"));
        QVERIFY(!fixture.Child<QToolButton>("DDC1"));
    }

    void onlyChannelsNamedDdcGetTheDemodulationCoupling_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("hasBox");
        QTest::newRow("receiver's own") << "MAIN" << false;
        QTest::newRow("channel") << "DDC1" << true;
        QTest::newRow("anywhere in the name") << "XDDC9" << true;
        QTest::newRow("case matters") << "ddc1" << false;
    }
    void onlyChannelsNamedDdcGetTheDemodulationCoupling()
    {
        QFETCH(QString, name);
        QFETCH(bool, hasBox);
        PanelFixture fixture;
        fixture.tree.AddChannel(fixture.DdcPath(name));
        fixture.Make(name);
        QCOMPARE(fixture.Child<QWidget>("Couple Demodulation") != nullptr, hasBox);
        QVERIFY(fixture.Child<QWidget>("Couple Frequency"));
    }

    void volumeSliderIsNeverVisibleAndChannelRecordingStartsHidden()
    {
        PanelFixture fixture;
        fixture.Bind("DDC1");
        fixture.panel->show();
        QVERIFY(QTest::qWaitForWindowExposed(fixture.panel.get()));
        QVERIFY(!fixture.Child<QWidget>("AudioVolume")->isVisible());
        QVERIFY(!fixture.Child<QWidget>("ChannelRecording")->isVisible());
        QVERIFY(fixture.Child<QWidget>("AudioRecording")->isVisible());
    }

    void selectablePanelIs400WideAtLeastAnyOther200()
    {
        PanelFixture fixture;
        QCOMPARE(fixture.Make("DDC1", true).minimumWidth(), 400);
        QCOMPARE(fixture.Make("DDC1", false).minimumWidth(), 200);
    }

    void columnsAreTenPixelsNarrowerThanThePanel()
    {
        PanelFixture fixture;
        QLayout* layout = fixture.Make("DDC1").layout();
        QVERIFY(qobject_cast<FloatLayout*>(layout));
        QCOMPARE(layout->count(), 6);
        for (int i = 0; i < layout->count(); ++i)
            QCOMPARE(layout->itemAt(i)->widget()->maximumWidth(), 390);
    }

    void panelTakesItsNameAndReadsNothingBeforeTheBinding()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Make("DDC2");
        QCOMPARE(panel.objectName(), QString("DDC2"));
        QVERIFY(!panel.isWPU());
        QCOMPARE(panel.findChildren<FrequencyRangeValidator*>().size(), 1);
    }

    void modeButtonShowsTheCurrentModeFromTheStart()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel(fixture.DdcPath("DDC4"), TestTree::PulseAnalysis);
        TestTree::Selection("/RX1/DDC/DDC4/DDCMode").SelectIndex(1, nullptr);
        fixture.Make("DDC4");
        QVERIFY(fixture.Child<QToolButton>("DDC4")->isChecked());
    }

    void missingPulsePathsAreMadeForAChannelWithAMode()
    {
        PanelFixture fixture;
        fixture.tree.AddSelection("/RX1/DDC/DDC4/DDCMode", {{0, "Normal", 0}, {1, "Pulse", 0}}, 0);
        fixture.Make("DDC4");
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC4/PDWPath").GetValue(), QString());
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC4/HandoverPath").GetValue(), QString());
    }

    void panelWithoutATreeIsBuiltAllTheSame()
    {
        ValueHost::DestroyTree();
        DdcGuiFfm panel(nullptr, nullptr, "DDC1", "/RX1", "/RX1/DDC/DDC1", true);
        panel.ConnectVtValuesToControls("DDC1");
        QVERIFY(!panel.isWPU());
        QVERIFY(panel.findChild<QWidget*>("Frequency"));
    }

    void destructionGivesTheChannelUp()
    {
        PanelFixture fixture;
        fixture.Bind("DDC1");
        QVERIFY(!TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").GetValue().isEmpty());
        fixture.panel.reset();
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").GetValue(), QString());
        for (ValueBase* value : ValueHost::ValuesBelow("/RX1"))
            QVERIFY2(value->CountObservers() == 0, qPrintable(value->GetPathName()));
    }

    void picturesOfTheRecordButtonsFollowTheirValues_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<bool>("differs");
        QTest::newRow("audio") << "AudioRecording"
                               << "/AudioRecording" << true;
        QTest::newRow("IF") << "IFRecording"
                            << "/IfRecording" << true;
        QTest::newRow("activity") << "DDCActivityGenerationBtn"
                                  << "/COB/WriteDB" << true;
        QTest::newRow("channel") << "ChannelRecording"
                                 << "/ChannelRecording" << false;
    }
    void picturesOfTheRecordButtonsFollowTheirValues()
    {
        QFETCH(QString, button);
        QFETCH(QString, suffix);
        QFETCH(bool, differs);
        PanelFixture fixture;
        fixture.Bind("DDC1");
        TestTree::Bool("/RX1/DDC/DDC1/AudioMute").SetValue(false, nullptr);
        VCButton* control = fixture.Child<VCButton>(qPrintable(button));
        const auto picture = [&] { return control->icon().pixmap(16, 16).toImage(); };
        ValueSelection& value = TestTree::Selection("/RX1/DDC/DDC1" + suffix);
        const QImage before = picture();
        QCOMPARE(before.size(), QSize(16, 16));
        const int key = value.GetCurrentKey();
        value.SelectKey(1 - key, nullptr);
        if (differs)
            QTRY_VERIFY(picture() != before);
        value.SelectKey(key, nullptr);
        QTRY_COMPARE(picture(), before);
    }
};

DDCGUI_TEST_MAIN(tst_DdcGuiFfm)
#include "tst_ddcguiffm.moc"
