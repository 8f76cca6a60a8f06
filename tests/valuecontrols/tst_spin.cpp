#include <QLineEdit>

#include "controlbench.h"
#include "valuecontrols/vcnumericfloatspin.h"

class SpinBench : public ControlBench
{
public:
    explicit SpinBench(double content = 12.5, double minimum = -30, double maximum = 130,
                       const QString& unit = QString::fromUtf8("dBµV"))
        : value(Float("/RX1/DDC/DDC1/SquelchValue", content, minimum, maximum, unit)),
          spin(*new VCNumericFloatSpin(nullptr, "SquelchValue", true))
    {
        spin.SetNumeric_ValuePath(value.GetPathName());
        Show(spin);
    }

    void Enter(const QString& text)
    {
        spin.setFocus(Qt::TabFocusReason);
        spin.selectAll();
        Type(spin, text);
        QTest::keyClick(&spin, Qt::Key_Return);
    }

    ValueBase& value;
    VCNumericFloatSpin& spin;
};

class TestSpin : public QObject
{
    Q_OBJECT

private slots:
    void theNumberIsShownWithItsUnit()
    {
        SpinBench bench;
        QCOMPARE(bench.spin.text(), QString::fromUtf8("12.5 dBµV"));
        VCNumericFloatSpin bare(nullptr, "x", false);
        bare.SetNumeric_ValuePath(bench.value.GetPathName());
        QCOMPARE(bare.text(), QStringLiteral("12.5"));
    }

    void aFieldTooNarrowForTheUnitShowsTheNumber()
    {
        SpinBench bench;
        bench.spin.setFixedWidth(70);
        QTRY_COMPARE(bench.spin.text(), QStringLiteral("12.5"));
        bench.spin.setFixedWidth(120);
        QTRY_COMPARE(bench.spin.text(), QString::fromUtf8("12.5 dBµV"));
    }

    void acceptedEntriesAreWritten_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<double>("written");
        QTest::newRow("plain") << "20" << 20.0;
        QTest::newRow("negative") << "-20.5" << -20.5;
        QTest::newRow("with unit") << QString::fromUtf8("20 dBµV") << 20.0;
        QTest::newRow("with unit, Greek mu") << QString::fromUtf8("20 dBμV") << 20.0;
        QTest::newRow("with unit, plain u") << "20dbuv" << 20.0;
        QTest::newRow("typographic minus") << QString::fromUtf8("−5") << -5.0;
        QTest::newRow("above the limit: clamped") << "500" << 130.0;
        QTest::newRow("below the limit: clamped") << "-1k" << -30.0;
    }

    void acceptedEntriesAreWritten()
    {
        QFETCH(QString, entry);
        QFETCH(double, written);
        SpinBench bench;
        bench.Enter(entry);
        QCOMPARE(ControlBench::NumberOf(bench.value), written);
    }

    void prefixesAreTaken()
    {
        SpinBench bench(100000, 0, 1e9, "Hz");
        bench.Enter("12.5k");
        QCOMPARE(ControlBench::NumberOf(bench.value), 12500.0);
    }

    void refusedEntriesSayWhyAndStay_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::newRow("letters") << "loud";
        QTest::newRow("empty") << " ";
        QTest::newRow("huge") << "1e999";
        QTest::newRow("long") << QString(5000, QLatin1Char('1'));
    }

    void refusedEntriesSayWhyAndStay()
    {
        QFETCH(QString, entry);
        SpinBench bench;
        WriteCount writes(bench.value);
        bench.spin.setFocus(Qt::TabFocusReason);
        bench.spin.selectAll();
        QGuiApplication::clipboard()->setText(entry);
        QTest::keyClick(&bench.spin, Qt::Key_V, Qt::ControlModifier);
        QTest::keyClick(&bench.spin, Qt::Key_Return);
        QVERIFY(!NoteText(bench.Window()).isEmpty());
        QCOMPARE(bench.spin.text(), entry);
        QCOMPARE(writes.Count(), 0);
        QTest::keyClick(&bench.spin, Qt::Key_Escape);
        QCOMPARE(bench.spin.text(), QString::fromUtf8("12.5 dBµV"));
        QVERIFY(!NoteIn(bench.Window()));
    }

    void stepsWriteAtOnce_data()
    {
        QTest::addColumn<double>("from");
        QTest::addColumn<int>("key");
        QTest::addColumn<double>("to");
        QTest::newRow("up") << 12.5 << int(Qt::Key_Up) << 13.5;
        QTest::newRow("down") << 12.5 << int(Qt::Key_Down) << 11.5;
        QTest::newRow("page up") << 12.5 << int(Qt::Key_PageUp) << 22.5;
        QTest::newRow("up to the limit") << 129.7 << int(Qt::Key_Up) << 130.0;
        QTest::newRow("not beyond") << 130.0 << int(Qt::Key_Up) << 130.0;
        QTest::newRow("down at the limit") << -30.0 << int(Qt::Key_Down) << -30.0;
    }

    void stepsWriteAtOnce()
    {
        QFETCH(double, from);
        QFETCH(int, key);
        QFETCH(double, to);
        SpinBench bench(from);
        bench.spin.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.spin, Qt::Key(key));
        QCOMPARE(ControlBench::NumberOf(bench.value), to);
    }

    void theToldStepIsUsedWithoutRoundingDust()
    {
        SpinBench bench(0);
        ValueDescription description = ValueHost::Description(bench.value);
        description.step = 0.1;
        ValueHost::SetDescription(bench.value, description);
        bench.spin.setFocus(Qt::TabFocusReason);
        for (int step = 0; step < 3; ++step)
            QTest::keyClick(&bench.spin, Qt::Key_Up);
        QCOMPARE(ControlBench::NumberOf(bench.value), 0.3);
        QCOMPARE(bench.spin.text(), QString::fromUtf8("0.3 dBµV"));
    }

    void leavingTheFieldTakesTheEntryBack()
    {
        SpinBench bench;
        WriteCount writes(bench.value);
        bench.spin.setFocus(Qt::TabFocusReason);
        bench.spin.selectAll();
        QTest::keyClicks(&bench.spin, "99");
        bench.FocusElsewhere();
        QCOMPARE(bench.spin.text(), QString::fromUtf8("12.5 dBµV"));
        QCOMPARE(writes.Count(), 0);
    }

    void aWheelOverAnUnfocusedSpinDoesNothing()
    {
        SpinBench bench;
        Wheel(bench.spin, 1);
        QCOMPARE(ControlBench::NumberOf(bench.value), 12.5);
        QVERIFY(!bench.spin.hasFocus());
        bench.spin.setFocus(Qt::TabFocusReason);
        Wheel(bench.spin, 1);
        QCOMPARE(ControlBench::NumberOf(bench.value), 13.5);
    }

    void aValueFromTheDriverDoesNotTouchTheEntry()
    {
        SpinBench bench;
        bench.spin.setFocus(Qt::TabFocusReason);
        bench.spin.selectAll();
        QTest::keyClicks(&bench.spin, "4");
        ValueHost::SetContent(bench.value, 77.0, nullptr);
        QTest::keyClicks(&bench.spin, "2");
        QTest::keyClick(&bench.spin, Qt::Key_Return);
        QCOMPARE(ControlBench::NumberOf(bench.value), 42.0);
    }

    void limitsOfZeroAndZeroAreNoLimits()
    {
        SpinBench bench(5, 0, 0);
        bench.Enter("1000");
        QCOMPARE(ControlBench::NumberOf(bench.value), 1000.0);
        QTest::keyClick(&bench.spin, Qt::Key_Down);
        QCOMPARE(ControlBench::NumberOf(bench.value), 999.0);
    }

    void theObjectNameIsTheOneSet()
    {
        VCNumericFloatSpin spin(nullptr, "SquelchValue", true, 1);
        QCOMPARE(spin.accessibleName(), QStringLiteral("SquelchValue"));
        spin.setObjectName("Other");
        QCOMPARE(spin.objectName(), QStringLiteral("Other"));
    }
};

QTEST_MAIN(TestSpin)
#include "tst_spin.moc"
