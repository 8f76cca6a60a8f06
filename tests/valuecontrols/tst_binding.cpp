#include <QDateTime>

#include "controlbench.h"
#include "valuecontrols/vcbar.h"
#include "valuecontrols/vcbutton.h"
#include "valuecontrols/vccheckbox.h"
#include "valuecontrols/vccomboboxclassic.h"
#include "valuecontrols/vclabel.h"
#include "valuecontrols/vclineedit.h"
#include "valuecontrols/vcnumericfloatspin.h"
#include "valuecontrols/vcslider.h"

namespace {

const char frequencyPath[] = "/RX1/DDC/DDC1/Frequency";

QString ToolTipOf(QWidget& control)
{
    QHelpEvent help(QEvent::ToolTip, QPoint(2, 2), control.mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(&control, &help);
    return ShownToolTip();
}

}  // namespace

class TestBinding : public QObject
{
    Q_OBJECT

private slots:
    void aControlWithoutAPathLooksAndWorksPlain()
    {
        ControlBench bench;
        VCLineEdit edit(nullptr, "plain", VCLineEdit::NUMBER);
        QLineEdit ordinary;
        bench.Show(edit);
        bench.Window().layout()->addWidget(&ordinary);
        ordinary.setFixedSize(edit.size());
        edit.setFixedSize(edit.size());
        QTRY_COMPARE(ordinary.size(), edit.size());
        QCOMPARE(edit.grab().toImage(), ordinary.grab().toImage());
        QVERIFY(!edit.isReadOnly());
    }

    void aControlComesBackWhenItsValueIsMadeAnew()
    {
        ControlBench bench;
        VCLineEdit edit(nullptr, "frequency", VCLineEdit::NUMBER);
        bench.Show(edit);
        QVERIFY(!edit.SetText_ValuePath(frequencyPath));
        QVERIFY(edit.isReadOnly());
        ControlBench::Frequency();
        QTRY_COMPARE(edit.text(), QStringLiteral("98 500 000 Hz"));
        QVERIFY(!edit.isReadOnly());
        Tree::Instance()->DeleteValue(frequencyPath);
        QTRY_COMPARE(edit.text(), QStringLiteral("---"));
        ControlBench::Frequency(101e6);
        QTRY_COMPARE(edit.text(), QStringLiteral("101 000 000 Hz"));
    }

    void aValueOfAnotherTypeIsAsGoodAsMissing()
    {
        ControlBench bench;
        ControlBench::PlainText(frequencyPath, "text");
        VCSlider slider(nullptr, "x");
        QVERIFY(!slider.SetNumeric_ValuePath(frequencyPath));
        VCNumericFloatSpin spin(nullptr, "x", true);
        QVERIFY(!spin.SetNumeric_ValuePath(frequencyPath));
        VCComboBoxClassic combo(nullptr, "x");
        QVERIFY(!combo.SetValueSelection_ValuePath(frequencyPath));
        Tree::Instance()->DeleteValue(frequencyPath);
        ControlBench::Frequency();
        QTRY_COMPARE(spin.text(), QStringLiteral("98 500 000 Hz"));
    }

    void anEntrySurvivesDeletionAndReturnOfItsValue()
    {
        ControlBench bench;
        ControlBench::Frequency();
        VCLineEdit edit(nullptr, "frequency", VCLineEdit::NUMBER);
        edit.SetText_ValuePath(frequencyPath);
        bench.Show(edit);
        edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&edit, "97.3M");
        Tree::Instance()->DeleteValue(frequencyPath);
        QCOMPARE(edit.text(), QStringLiteral("97.3M"));
        QTest::keyClick(&edit, Qt::Key_Return);
        QVERIFY(NoteText(bench.Window()).contains("not available"));
        QCOMPARE(edit.text(), QStringLiteral("97.3M"));
        ValueBase& again = ControlBench::Frequency();
        QTRY_VERIFY(!edit.isReadOnly());
        QTest::keyClick(&edit, Qt::Key_Return);
        QCOMPARE(ControlBench::NumberOf(again), 97.3e6);
    }

    void theWholeTreeMayGoAndComeBack()
    {
        ControlBench bench;
        ControlBench::Frequency();
        VCLabel label(nullptr, nullptr);
        label.SetText_ValuePath(frequencyPath, false);
        ValueHost::DestroyTree();
        QTRY_COMPARE(label.text(), QStringLiteral("---"));
        ValueHost::CreateTree();
        ControlBench::Frequency(1e6);
        QTRY_COMPARE(label.text(), QStringLiteral("1 000 000 Hz"));
    }

    void whileTheDriverIsAwayNothingIsWritten()
    {
        ControlBench bench;
        ValueBase& mute = ControlBench::Bool("/RX1/Mute", false);
        ValueSelection& mode = ControlBench::Demodulation();
        ValueBase& squelch = ControlBench::Float("/RX1/Squelch", 10, -30, 130, "dB");
        VCCheckBox box(nullptr, "Mute");
        VCComboBoxClassic combo(nullptr, "Demodulation");
        VCNumericFloatSpin spin(nullptr, "Squelch", true);
        VCSlider slider(nullptr, "Squelch");
        VCButton button(nullptr, "Demodulation");
        box.Set_ValuePath("/RX1/Mute");
        combo.SetValueSelection_ValuePath(mode.GetPathName());
        spin.SetNumeric_ValuePath("/RX1/Squelch");
        slider.SetNumeric_ValuePath("/RX1/Squelch");
        button.SetValueSelection_ValuePath(mode.GetPathName());
        for (QWidget* control : std::initializer_list<QWidget*>{&box, &combo, &spin, &slider, &button})
            bench.Show(*control);
        for (ValueBase* value : {&mute, static_cast<ValueBase*>(&mode), &squelch})
            ValueHost::SetState(*value, VS_STALE);
        for (QWidget* control : std::initializer_list<QWidget*>{&box, &combo, &spin, &slider, &button}) {
            control->setFocus(Qt::TabFocusReason);
            for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Up, Qt::Key_Right, Qt::Key_U, Qt::Key_Return})
                QTest::keyClick(control, key);
            QTest::mouseClick(control, Qt::LeftButton);
            Wheel(*control, 1);
        }
        box.click();
        button.click();
        QCOMPARE(ValueHost::Content(mute).toBool(), false);
        QCOMPARE(mode.GetCurrentText(), QStringLiteral("FM"));
        QCOMPARE(ControlBench::NumberOf(squelch), 10.0);
        QVERIFY(!box.isChecked());
        QCOMPARE(combo.currentText(), QStringLiteral("FM"));
        QCOMPARE(slider.value() * 4, slider.maximum());

        ValueHost::SetState(mute, VS_USABLE);
        box.click();
        QCOMPARE(ValueHost::Content(mute).toBool(), true);
    }

    void aValueThatIsOnlyShownTakesNoInput()
    {
        ControlBench bench;
        ValueBase& mute = ControlBench::Bool("/RX1/Mute", false);
        ValueDescription description = ValueHost::Description(mute);
        description.writable = false;
        ValueHost::SetDescription(mute, description);
        VCCheckBox box(nullptr, "Mute");
        box.Set_ValuePath("/RX1/Mute");
        bench.Show(box);
        box.click();
        QVERIFY(!box.isChecked());
        QVERIFY(ToolTipOf(box).contains("cannot be set"));
    }

    void theToolTipAddsFactsAndLeavesTheOwnTextAlone()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Frequency();
        VCLineEdit edit(nullptr, "frequency", VCLineEdit::NUMBER);
        edit.setToolTip("Frequency");
        edit.SetText_ValuePath(frequencyPath);
        bench.Show(edit);
        ValueHost::SetTimeStamp(value, (QDateTime::currentMSecsSinceEpoch() - 42500) * 1000);
        const QString text = ToolTipOf(edit);
        QVERIFY2(text.startsWith("Frequency\n"), qPrintable(text));
        for (const char* part : {frequencyPath, "100 000 to 6 000 000 000 Hz", "Unit: Hz", "Age: 42 s"})
            QVERIFY2(text.contains(part), qPrintable(text));
        QCOMPARE(edit.toolTip(), QStringLiteral("Frequency"));
        ValueHost::SetState(value, VS_STALE);
        QVERIFY(ToolTipOf(edit).contains("driver is away"));
        Tree::Instance()->DeleteValue(frequencyPath);
        QVERIFY(ToolTipOf(edit).contains("no such value"));
    }

    void aToolTipInMarkupStaysMarkup()
    {
        ControlBench bench;
        ControlBench::PlainText("/RX1/a<b", "x");
        VCLabel label(nullptr, nullptr);
        label.setToolTip("<b>Name</b>");
        label.SetText_ValuePath("/RX1/a<b", false);
        bench.Show(label);
        QVERIFY(ToolTipOf(label).contains("/RX1/a&lt;b"));
    }

    void theContextMenuCopiesPathAndValue()
    {
        ControlBench bench;
        ControlBench::Frequency();
        ControlBench::Bool("/RX1/Mute", true);
        ControlBench::Demodulation(2);
        const QString demodulation = "/RX1/DDC/DDC1/Demodulation";
        VCLineEdit edit(nullptr, "f", VCLineEdit::NUMBER);
        VCNumericFloatSpin spin(nullptr, "f", true);
        VCSlider slider(nullptr, "f");
        VCBar bar(nullptr, "f", 17, 6);
        VCLabel label(nullptr, nullptr);
        VCCheckBox box(nullptr, "Mute");
        VCComboBoxClassic combo(nullptr, "d");
        VCButton button(nullptr, "d");
        edit.SetText_ValuePath(frequencyPath);
        spin.SetNumeric_ValuePath(frequencyPath);
        slider.SetNumeric_ValuePath(frequencyPath);
        bar.SetPeak_ValuePath(frequencyPath);
        label.SetText_ValuePath(frequencyPath, false);
        box.Set_ValuePath("/RX1/Mute");
        combo.SetValueSelection_ValuePath(demodulation);
        button.SetValueSelection_ValuePath(demodulation);
        struct Expected
        {
            QWidget& control;
            QString path;
            QString content;
        };
        const Expected all[] = {{edit, frequencyPath, "98500000"},   {spin, frequencyPath, "98500000"},
                                {slider, frequencyPath, "98500000"}, {bar, frequencyPath, "98500000"},
                                {label, frequencyPath, "98500000"},  {box, "/RX1/Mute", "On"},
                                {combo, demodulation, "USB"},        {button, demodulation, "USB"}};
        for (const Expected& expected : all) {
            bench.Show(expected.control);
            QVERIFY(TriggerMenu(expected.control, "copyPath"));
            QCOMPARE(QGuiApplication::clipboard()->text(), expected.path);
            QVERIFY(TriggerMenu(expected.control, "copyValue"));
            QCOMPARE(QGuiApplication::clipboard()->text(), expected.content);
        }
    }

    void bindingAgainFollowsTheNewPathOnly()
    {
        ControlBench bench;
        ValueBase& first = ControlBench::Frequency();
        ValueBase& second = ControlBench::Float("/RX1/Other", 5, 0, 0, "Hz");
        VCLineEdit edit(nullptr, "f", VCLineEdit::NUMBER);
        QVERIFY(edit.SetText_ValuePath(frequencyPath));
        QVERIFY(edit.SetText_ValuePath("/RX1/Other"));
        QCOMPARE(first.CountObservers(), 0);
        QCOMPARE(second.CountObservers(), 1);
        QCOMPARE(edit.text(), QStringLiteral("5 Hz"));
        QVERIFY(!edit.SetText_ValuePath(QString()));
        QCOMPARE(second.CountObservers(), 0);
        QVERIFY(!edit.isReadOnly());
    }

    void aControlThatGoesLeavesItsValue()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Frequency();
        {
            VCBar bar(nullptr, "f", 17, 6);
            bar.SetPeak_ValuePath(frequencyPath);
            QCOMPARE(value.CountObservers(), 1);
        }
        QCOMPARE(value.CountObservers(), 0);
    }

    void everyControlIsReachedByTheTabKey()
    {
        for (QWidget* control : std::initializer_list<QWidget*>{
                 new VCLineEdit(nullptr, "a", VCLineEdit::NUMBER), new VCNumericFloatSpin(nullptr, "a", true),
                 new VCSlider(nullptr, "a"), new VCCheckBox(nullptr, "a"),
                 new VCComboBoxClassic(nullptr, "a"), new VCButton(nullptr, "a")}) {
            QVERIFY(control->focusPolicy() & Qt::TabFocus);
            QVERIFY(control->focusPolicy() != Qt::WheelFocus);
            delete control;
        }
    }

    void aRefusedWriteIsFollowedByTheNextOneOfAnotherControl()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Float("/RX1/Squelch", 10, -30, 130, "dB");
        Authority driver(value);
        VCNumericFloatSpin spin(nullptr, "a", true);
        VCNumericFloatSpin other(nullptr, "b", true);
        spin.SetNumeric_ValuePath("/RX1/Squelch");
        other.SetNumeric_ValuePath("/RX1/Squelch");
        bench.Show(spin);
        bench.Show(other);
        spin.stepBy(1);
        driver.Refuse("squelch is off");
        QCOMPARE(bench.Window().findChildren<QWidget*>("controlNote").size(), 1);
        QCOMPARE(spin.accessibleDescription(), QStringLiteral("Refused: squelch is off"));
        QVERIFY(other.accessibleDescription().isEmpty());
    }
};

QTEST_MAIN(TestBinding)
#include "tst_binding.moc"
