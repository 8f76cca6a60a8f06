#include <QBoxLayout>
#include <QLabel>

#include "recordertoolbar/vordatoolbarcontroller.h"
#include "tests/ddcgui/panelfixture.h"

using receiver::vorda::VordaToolbarController;

namespace {

const QString noRecorderTrace =
    "vorda toolbar requested, but not available in value tree "
    "[devicecontrol\\receiver\\common\\ddcgui\\ddcguiffm:636]";
const QString rangeWarning = "Recording will produce no data as current frequency not within valid range!";

QBoxLayout* RecorderRow(DdcGuiFfm& panel)
{
    for (QBoxLayout* layout : panel.findChildren<QBoxLayout*>())
        if (layout->objectName() == "VordaRow")
            return layout;
    return nullptr;
}

// What the tool bar's status icon tells; empty while it shows none.
QString Warning(QWidget* toolBar)
{
    const QWidget* status = toolBar->findChild<QWidget*>("VordaStatus");
    return status ? status->toolTip() : QString("no status icon");
}

}  // namespace

class tst_FfmRecorder : public QObject
{
    Q_OBJECT
private slots:
    void receiversOwnPanelHasNoRecorderRow()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel("/RX1/DDC/MAIN");
        TestTree::AddBool("/RX1/DDC/DDC0/RecorderAvailable", true);
        TraceNotes notes;
        DdcGuiFfm& panel = fixture.Make("MAIN");
        QVERIFY(!RecorderRow(panel));
        QVERIFY(!panel.findChild<VordaToolbarController*>());
        QCOMPARE(notes.traces.filter("vorda").size(), 0);
    }

    void channelWithoutARecorderHasAnEmptyRowAndOneTrace_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("row");
        QTest::newRow("channel") << "DDC3" << true;
        QTest::newRow("not named SCUP exactly") << "DDCscup" << true;
        QTest::newRow("SCUP") << "SCUP3" << false;
        QTest::newRow("SCUP anywhere") << "DDC_SCUP" << false;
    }
    void channelWithoutARecorderHasAnEmptyRowAndOneTrace()
    {
        QFETCH(QString, name);
        QFETCH(bool, row);
        PanelFixture fixture;
        fixture.tree.AddChannel(fixture.DdcPath(name));
        TraceNotes notes;
        DdcGuiFfm& panel = fixture.Make(name);
        QCOMPARE(notes.traces.filter(noRecorderTrace).size(), row ? 1 : 0);
        QBoxLayout* layout = RecorderRow(panel);
        QCOMPARE(layout != nullptr, row);
        if (!row)
            return;
        QCOMPARE(layout->count(), 1);
        QLabel* label = qobject_cast<QLabel*>(layout->itemAt(0)->widget());
        QVERIFY(label);
        QCOMPARE(label->text(), QString());
        QCOMPARE(layout->parentWidget(), panel.layout()->itemAt(panel.layout()->count() - 1)->widget());
    }

    void traceNeedsItsMaskBit()
    {
        PanelFixture fixture;
        BaseHost::SetTraceMask(0);
        TraceNotes notes;
        fixture.Make("DDC3");
        QCOMPARE(notes.traces, QStringList());
    }

    void availableRecorderHasItsToolBarBehindTheLabel()
    {
        for (TestTree::ChannelKind kind : {TestTree::Plain, TestTree::PulseAnalysis}) {
            PanelFixture fixture;
            fixture.tree.AddChannel("/RX1/DDC/DDC3", kind);
            TestTree::AddBool("/RX1/DDC/DDC3/RecorderAvailable", true);
            TraceNotes notes;
            DdcGuiFfm& panel = fixture.Make("DDC3");
            VordaToolbarController* controller = panel.findChild<VordaToolbarController*>();
            QVERIFY(controller);
            QCOMPARE(controller->parent(), &panel);
            QCOMPARE(controller->m_DDCName, QString("DDC3"));
            QBoxLayout* row = RecorderRow(panel);
            QCOMPARE(row->count(), 2);
            QCOMPARE(row->itemAt(1)->widget(), controller->getToolbar());
            QVERIFY(controller->getToolbar()->isEnabledTo(&panel));
            QCOMPARE(notes.traces.filter("vorda").size(), 0);
        }
    }

    void nameWithoutANumberIsChannelZero()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel("/RX1/DDC/DDCx");
        TestTree::AddBool("/RX1/DDC/DDC0/RecorderAvailable", true);
        DdcGuiFfm& panel = fixture.Make("DDCx");
        VordaToolbarController* controller = panel.findChild<VordaToolbarController*>();
        QVERIFY(controller);
        QCOMPARE(controller->m_DDCName, QString("DDCx"));
    }

    void frequencyThatLeavesTheRangeWarnsInTheToolBar()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel("/RX1/DDC/DDC3");
        TestTree::AddBool("/RX1/DDC/DDC3/RecorderAvailable", true);
        DdcGuiFfm& panel = fixture.Make("DDC3");
        panel.ConnectVtValuesToControls("DDC3");
        QWidget* toolBar = panel.findChild<VordaToolbarController*>()->getToolbar();
        QCOMPARE(Warning(toolBar), QString());
        TestTree::Float("/RX1/DDC/DDC3/Frequency").SetValue(200000000, nullptr);
        QCOMPARE(Warning(toolBar), rangeWarning);
        TestTree::Float("/RX1/DDC/DDC3/Frequency").SetValue(100000000, nullptr);
        QCOMPARE(Warning(toolBar), QString());
    }

    void warningIsTakenBackWhenTheRangeCannotBeJudged()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel("/RX1/DDC/DDC3");
        TestTree::AddBool("/RX1/DDC/DDC3/RecorderAvailable", true);
        DdcGuiFfm& panel = fixture.Make("DDC3");
        panel.ConnectVtValuesToControls("DDC3");
        QWidget* toolBar = panel.findChild<VordaToolbarController*>()->getToolbar();
        fixture.CallSlot("slotFrequencyInRangeChanged", false);
        QCOMPARE(Warning(toolBar), rangeWarning);
        TestTree::Delete("/RX1/IFPANSPAN");
        panel.ConnectVtValuesToControls("DDC3");
        QCOMPARE(Warning(toolBar), QString());
    }

    void rangeIsNoMatterWithoutARecorder()
    {
        PanelFixture fixture;
        fixture.Bind("DDC3");
        fixture.CallSlot("slotFrequencyInRangeChanged", false);
        fixture.CallSlot("slotFrequencyInRangeChanged", true);
        QVERIFY(!fixture.panel->findChild<VordaToolbarController*>());
    }

    void typesOfTheRecordersSignalsAreKnown()
    {
        QVERIFY(QMetaType::fromName("VordaGlobal::ChannelAvailableState").isValid());
        QVERIFY(QMetaType::fromName("VordaGlobal::DevicesAvailableState").isValid());
    }
};

DDCGUI_TEST_MAIN(tst_FfmRecorder)
#include "tst_ffmrecorder.moc"
