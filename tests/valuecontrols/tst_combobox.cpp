#include <QAbstractItemView>
#include <QSignalSpy>
#include <QTranslator>

#include "controlbench.h"
#include "valuecontrols/vccomboboxclassic.h"

namespace {

// Translates in the context of the bandwidths only.
class BandwidthTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return qstrcmp(context, "DemodBandwidth") == 0 ? QLatin1String("DE ") + QString::fromUtf8(text)
                                                       : QString();
    }
    bool isEmpty() const override { return false; }
};

}  // namespace

class ComboBench : public ControlBench
{
public:
    ComboBench() : value(Demodulation()), box(*new VCComboBoxClassic(nullptr, "Demodulation"))
    {
        box.SetValueSelection_ValuePath(value.GetPathName());
        Show(box);
    }

    ValueSelection& value;
    VCComboBoxClassic& box;
};

class TestComboBox : public QObject
{
    Q_OBJECT

private slots:
    void theItemsAreThoseOfTheSelection()
    {
        ComboBench bench;
        QCOMPARE(bench.box.count(), 5);
        QCOMPARE(bench.box.currentText(), QStringLiteral("FM"));
        bench.value.SelectText("CW", nullptr);
        QTRY_COMPARE(bench.box.currentText(), QStringLiteral("CW"));
    }

    void choosingWritesAtOnce()
    {
        ComboBench bench;
        bench.box.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.box, Qt::Key_Down);
        QCOMPARE(bench.value.GetCurrentText(), QStringLiteral("USB"));
    }

    void choosingInTheListWritesAtOnce()
    {
        ComboBench bench;
        bench.box.setFocus(Qt::TabFocusReason);
        bench.box.showPopup();
        QAbstractItemView* const list = bench.box.view();
        QTRY_VERIFY(list->isVisible());
        list->setCurrentIndex(list->model()->index(4, 0));
        QTest::keyClick(list, Qt::Key_Return);
        QTRY_COMPARE(bench.value.GetCurrentText(), QStringLiteral("CW"));
    }

    void aValueFromTheDriverDoesNotMoveTheOpenList()
    {
        ComboBench bench;
        bench.box.showPopup();
        QTRY_VERIFY(bench.box.view()->isVisible());
        bench.value.SelectText("CW", nullptr);
        QCOMPARE(bench.box.currentText(), QStringLiteral("FM"));
        bench.box.hidePopup();
        QTRY_COMPARE(bench.box.currentText(), QStringLiteral("CW"));
    }

    void typingFindsAndWritesOnceAfterThePause()
    {
        ControlBench bench;
        ValueSelection& value = ControlBench::Selection(
            "/RX1/Bandwidth",
            {{0, "600 Hz", 600}, {1, "150 Hz", 150}, {2, "15 kHz", 15000}, {3, "120 kHz", 120000}}, 0);
        WriteCount writes(value);
        VCComboBoxClassic box(nullptr, "Bandwidth");
        box.SetValueSelection_ValuePath("/RX1/Bandwidth");
        bench.Show(box);
        box.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&box, "15 ");
        QCOMPARE(box.currentText(), QStringLiteral("15 kHz"));
        QTRY_COMPARE(value.GetCurrentKey(), 2);
        QCOMPARE(writes.Count(), 1);
    }

    void enterAppliesWhatTypingFoundAndEscapeTakesItBack()
    {
        ComboBench bench;
        bench.box.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.box, 'l');
        QTest::keyClick(&bench.box, Qt::Key_Return);
        QCOMPARE(bench.value.GetCurrentText(), QStringLiteral("LSB"));
        QTest::keyClick(&bench.box, 'a');
        QTest::keyClick(&bench.box, Qt::Key_Escape);
        QCOMPARE(bench.box.currentText(), QStringLiteral("LSB"));
        QCOMPARE(bench.value.GetCurrentText(), QStringLiteral("LSB"));
    }

    void leavingTheFieldTakesBackWhatTypingFound()
    {
        ComboBench bench;
        bench.box.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.box, 'c');
        bench.FocusElsewhere();
        QCOMPARE(bench.box.currentText(), QStringLiteral("FM"));
        QCOMPARE(bench.value.GetCurrentText(), QStringLiteral("FM"));
    }

    void fillingTheItemsAnewWritesNothing()
    {
        ComboBench bench;
        WriteCount writes(bench.value);
        QSignalSpy activated(&bench.box, &QComboBox::activated);
        ValueDescription description = ValueHost::Description(bench.value);
        description.items.prepend(SelectionItem(9, "IQ", 0));
        ValueHost::SetDescription(bench.value, description);
        QTRY_COMPARE(bench.box.count(), 6);
        QCOMPARE(bench.box.currentText(), QStringLiteral("FM"));
        QCOMPARE(bench.value.GetCurrentKey(), 1);
        QCOMPARE(writes.Count(), 0);
        QCOMPARE(activated.count(), 0);
    }

    void itemsAreTranslatedInTheContextOfTheValue()
    {
        BandwidthTranslator translator;
        QCoreApplication::installTranslator(&translator);
        {
            ComboBench bench;
            QCOMPARE(bench.box.currentText(), QStringLiteral("FM"));
            bench.value.SetTranslationNamespace("DemodBandwidth", nullptr);
            QTRY_COMPARE(bench.box.currentText(), QStringLiteral("DE FM"));
            bench.box.setFocus(Qt::TabFocusReason);
            QTest::keyClick(&bench.box, Qt::Key_Down);
            QCOMPARE(bench.value.GetCurrentText(), QStringLiteral("USB"));
        }
        QCoreApplication::removeTranslator(&translator);
    }

    void aWheelOverAnUnfocusedBoxDoesNothing()
    {
        ComboBench bench;
        Wheel(bench.box, -1);
        QCOMPARE(bench.value.GetCurrentText(), QStringLiteral("FM"));
        QVERIFY(!bench.box.hasFocus());
        bench.box.setFocus(Qt::TabFocusReason);
        Wheel(bench.box, -1);
        QCOMPARE(bench.value.GetCurrentText(), QStringLiteral("USB"));
    }

    void aRefusalBringsTheItemBack()
    {
        ComboBench bench;
        Authority driver(bench.value);
        bench.box.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.box, Qt::Key_Down);
        QCOMPARE(bench.box.currentText(), QStringLiteral("USB"));
        driver.Refuse("coupled");
        QTRY_COMPARE(bench.box.currentText(), QStringLiteral("FM"));
        QVERIFY(NoteText(bench.Window()).contains("coupled"));
    }

    void aTextThatDoesNotFitIsCutAndWholeInTheToolTip()
    {
        ControlBench bench;
        ControlBench::Selection("/RX1/Long", {{0, "a rather long name of a bandwidth", 0}}, 0);
        VCComboBoxClassic box(nullptr, "Bandwidth");
        box.SetValueSelection_ValuePath("/RX1/Long");
        box.setFixedWidth(60);
        bench.Show(box);
        QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), box.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&box, &help);
        QVERIFY(ShownToolTip().contains("a rather long name of a bandwidth"));
    }
};

QTEST_MAIN(TestComboBox)
#include "tst_combobox.moc"
