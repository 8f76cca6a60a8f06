#include <QSignalSpy>

#include "controlbench.h"
#include "valuecontrols/vccheckbox.h"

class BoxBench : public ControlBench
{
public:
    explicit BoxBench(bool content = false)
        : value(Bool("/RX1/DDC/DDC1/AudioMute", content)), box(*new VCCheckBox(nullptr, "Mute"))
    {
        box.Set_ValuePath(value.GetPathName());
        Show(box);
    }

    bool Content() const { return ValueHost::Content(value).toBool(); }

    ValueBase& value;
    VCCheckBox& box;
};

class TestCheckBox : public QObject
{
    Q_OBJECT

private slots:
    void theNameIsTheCaptionUntilAnotherIsSet()
    {
        VCCheckBox box(nullptr, "Use Squelch", 1);
        QCOMPARE(box.text(), QStringLiteral("Use Squelch"));
        box.SetText("Rauschsperre");
        QCOMPARE(box.text(), QStringLiteral("Rauschsperre"));
    }

    void aClickWritesBeforeItIsHeard()
    {
        BoxBench bench;
        bool heard = false;
        connect(&bench.box, &QCheckBox::clicked, this, [&]() { heard = bench.Content(); });
        QTest::mouseClick(&bench.box, Qt::LeftButton, Qt::NoModifier, QPoint(8, bench.box.height() / 2));
        QVERIFY(heard);
        QVERIFY(bench.box.isChecked());
    }

    void theSpaceKeySwitches()
    {
        BoxBench bench(true);
        bench.box.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.box, Qt::Key_Space);
        QVERIFY(!bench.Content());
    }

    void aHiddenBoxCanBeClickedByItsPanel()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Bool("/RX1/AudioMute", false);
        VCCheckBox box(nullptr, "Mute");
        QVERIFY(box.Set_ValuePath("/RX1/AudioMute"));
        box.click();
        QVERIFY(box.isChecked());
        QVERIFY(ValueHost::Content(value).toBool());
    }

    void aRefusalBringsTheBoxBackAndSaysWhy()
    {
        BoxBench bench;
        Authority driver(bench.value);
        bench.box.click();
        QVERIFY(bench.box.isChecked());
        driver.Refuse("no audio");
        QTRY_VERIFY(!bench.box.isChecked());
        QVERIFY(NoteText(bench.Window()).contains("no audio"));
    }

    void theValueFromTheTreeIsShownWithoutClicks()
    {
        BoxBench bench;
        QSignalSpy clicks(&bench.box, &QCheckBox::clicked);
        ValueHost::SetContent(bench.value, true, nullptr);
        QTRY_VERIFY(bench.box.isChecked());
        QCOMPARE(clicks.count(), 0);
    }

    void aBoxWhoseValueIsMissingKeepsItsState()
    {
        BoxBench bench;
        Tree::Instance()->DeleteValue(bench.value.GetPathName());
        bench.box.click();
        QVERIFY(!bench.box.isChecked());
    }

    void anUnboundBoxIsAnOrdinaryOne()
    {
        VCCheckBox box(nullptr, "Hide");
        box.click();
        QVERIFY(box.isChecked());
    }

    void onlyABoolValueFits()
    {
        ControlBench bench;
        ControlBench::PlainText("/RX1/Text", "On");
        VCCheckBox box(nullptr, "x");
        QVERIFY(!box.Set_ValuePath("/RX1/Text"));
        QVERIFY(!box.Set_ValuePath("/RX1/None"));
    }

    void aPanelMayDeleteTheBoxInsideItsClick()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Bool("/RX1/AudioMute", false);
        auto* const box = new VCCheckBox(nullptr, "Mute");
        box->Set_ValuePath("/RX1/AudioMute");
        connect(box, &QCheckBox::clicked, box, [box]() { delete box; });
        box->click();
        QVERIFY(ValueHost::Content(value).toBool());
    }
};

QTEST_MAIN(TestCheckBox)
#include "tst_checkbox.moc"
