#include "controlbench.h"
#include "valuecontrols/vclineedit.h"

// A number edit on a frequency, the window active and the focus elsewhere.
class FrequencyBench : public ControlBench
{
public:
    explicit FrequencyBench(double content = 98500000)
        : value(Frequency(content)), edit(*new VCLineEdit(nullptr, "frequency", VCLineEdit::NUMBER))
    {
        edit.SetText_ValuePath(value.GetPathName());
        Show(edit);
    }

    void Enter(const QString& text)
    {
        edit.setFocus(Qt::TabFocusReason);
        Type(edit, text);
        QTest::keyClick(&edit, Qt::Key_Return);
    }

    ValueBase& value;
    VCLineEdit& edit;
};

class TestLineEdit : public QObject
{
    Q_OBJECT

private slots:
    void aNumberIsShownInGroupsWithItsUnit()
    {
        FrequencyBench bench;
        QCOMPARE(bench.edit.text(), QStringLiteral("98 500 000 Hz"));
        ValueHost::SetContent(bench.value, 433920500.0, nullptr);
        QTRY_COMPARE(bench.edit.text(), QStringLiteral("433 920 500 Hz"));
    }

    void acceptedEntriesAreWritten_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<double>("written");
        QTest::newRow("prefix M") << "97.3M" << 97.3e6;
        QTest::newRow("prefix and unit") << "97.3 MHz" << 97.3e6;
        QTest::newRow("unit in another case") << "97.3mhz" << 97.3e6;
        QTest::newRow("groups") << "97 300 000" << 97.3e6;
        QTest::newRow("groups and unit") << "97 300 000 Hz" << 97.3e6;
        QTest::newRow("prefix k") << "97300k" << 97.3e6;
        QTest::newRow("prefix K") << "97300 K" << 97.3e6;
        QTest::newRow("prefix G") << "1.2G" << 1.2e9;
        QTest::newRow("decimal comma") << "97,3M" << 97.3e6;
        QTest::newRow("groups by commas") << "97,300,000" << 97.3e6;
        QTest::newRow("groups by points") << "97.300.000" << 97.3e6;
        QTest::newRow("exponent") << "9.73e7" << 97.3e6;
        QTest::newRow("exact to the hertz") << "433.9205M" << 433920500.0;
        QTest::newRow("surrounded by blanks") << "  97.3M " << 97.3e6;
        QTest::newRow("plus sign") << "+97.3M" << 97.3e6;
        QTest::newRow("no-break blanks") << QString::fromUtf8("97\u00a0300\u202f000") << 97.3e6;
    }

    void acceptedEntriesAreWritten()
    {
        QFETCH(QString, entry);
        QFETCH(double, written);
        FrequencyBench bench;
        bench.Enter(entry);
        QCOMPARE(ControlBench::NumberOf(bench.value), written);
        QVERIFY(!NoteIn(bench.Window()));
    }

    void refusedEntriesStayForCorrectionAndSayWhy_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("says");
        QTest::newRow("letters") << "abc"
                                 << "is not a number";
        QTest::newRow("two points") << "98.5.1"
                                    << "is not a number";
        QTest::newRow("empty") << "   "
                               << "empty";
        QTest::newRow("unit alone") << "Hz"
                                    << "is not a number";
        QTest::newRow("another unit") << "98 dB"
                                      << "is not a number";
        QTest::newRow("beyond any number") << "1e400"
                                           << "beyond any number";
        QTest::newRow("exponent beyond counting") << "1e99999999999999999999"
                                                  << "beyond any number";
        QTest::newRow("infinity") << "inf"
                                  << "is not a number";
        QTest::newRow("not a number") << "nan"
                                      << "is not a number";
        QTest::newRow("thousands or fraction") << "98,500"
                                               << "two ways";
        QTest::newRow("formula") << "98+1"
                                 << "is not a number";
    }

    void refusedEntriesStayForCorrectionAndSayWhy()
    {
        QFETCH(QString, entry);
        QFETCH(QString, says);
        FrequencyBench bench;
        WriteCount writes(bench.value);
        bench.Enter(entry);
        QVERIFY2(NoteText(bench.Window()).contains(says), qPrintable(NoteText(bench.Window())));
        QCOMPARE(bench.edit.accessibleDescription(), NoteText(bench.Window()));
        QCOMPARE(bench.edit.text(), entry);
        QCOMPARE(writes.Count(), 0);
        QTest::keyClick(&bench.edit, Qt::Key_Escape);
        QVERIFY(!NoteIn(bench.Window()));
        QCOMPARE(bench.edit.text(), QStringLiteral("98 500 000 Hz"));
    }

    void anEntryOfFiveThousandCharactersIsRefusedWithItsLength()
    {
        FrequencyBench bench;
        bench.edit.setFocus(Qt::TabFocusReason);
        bench.edit.insert(QString(5000, QLatin1Char('9')));
        QTest::keyClicks(&bench.edit, "1");
        QTest::keyClick(&bench.edit, Qt::Key_Return);
        QVERIFY(NoteText(bench.Window()).contains("5001 characters"));
        QVERIFY(NoteText(bench.Window()).size() < 200);
        QCOMPARE(ControlBench::NumberOf(bench.value), 98500000.0);
    }

    void aHugeButFiniteEntryIsClampedByTheAuthority()
    {
        FrequencyBench bench;
        bench.Enter(QStringLiteral("1e300"));
        QCOMPARE(ControlBench::NumberOf(bench.value), 6e9);
        QCOMPARE(bench.edit.text(), QStringLiteral("6 000 000 000 Hz"));
        QVERIFY(!NoteText(bench.Window()).isEmpty());
    }

    void anEntryBelowTheLimitSaysWhichLimitHolds()
    {
        FrequencyBench bench;
        bench.Enter(QStringLiteral("5"));
        QCOMPARE(ControlBench::NumberOf(bench.value), 100000.0);
        QVERIFY2(NoteText(bench.Window()).contains("100"), qPrintable(NoteText(bench.Window())));
    }

    void theDriverIsGivenTheEntryAsItIsAndItsLimitIsTold()
    {
        FrequencyBench bench;
        Authority driver(bench.value);
        bench.Enter(QStringLiteral("9G"));
        QCOMPARE(driver.Written(), QVariantList{9e9});
        QVERIFY(!NoteIn(bench.Window()));
        driver.Clamp(6e9, QStringLiteral("highest frequency is 6 GHz"));
        QCOMPARE(NoteText(bench.Window()), QStringLiteral("highest frequency is 6 GHz"));
        QTRY_COMPARE(bench.edit.text(), QStringLiteral("6 000 000 000 Hz"));
    }

    void aRefusalStandsBesideTheEditUntilTheNextAcceptedWrite()
    {
        FrequencyBench bench;
        Authority driver(bench.value);
        bench.Enter(QStringLiteral("97.3M"));
        driver.Refuse(QStringLiteral("coupled to the main receiver"));
        QVERIFY(NoteText(bench.Window()).contains("coupled to the main receiver"));
        QTRY_COMPARE(bench.edit.text(), QStringLiteral("98 500 000 Hz"));
        bench.Enter(QStringLiteral("97.4M"));
        driver.Accept();
        QVERIFY(!NoteIn(bench.Window()));
        QCOMPARE(bench.edit.text(), QStringLiteral("97 400 000 Hz"));
    }

    void silenceOfTheDriverIsTold()
    {
        FrequencyBench bench;
        Authority driver(bench.value);
        bench.Enter(QStringLiteral("97.3M"));
        driver.Stay();
        QVERIFY(NoteText(bench.Window()).contains("did not answer"));
    }

    void aClickOnTheNoteTakesItAway()
    {
        FrequencyBench bench;
        bench.Enter(QStringLiteral("abc"));
        QTest::mouseClick(NoteIn(bench.Window()), Qt::LeftButton);
        QTRY_VERIFY(!NoteIn(bench.Window()));
    }

    void theNoteLiesWhollyInsideTheWindow()
    {
        FrequencyBench bench;
        bench.Window().resize(150, 60);
        bench.Enter(QStringLiteral("abc"));
        QWidget* const note = NoteIn(bench.Window());
        QVERIFY(note && note->isVisible());
        QVERIFY(note->geometry().left() >= 0 && note->geometry().right() < bench.Window().width());
    }

    void escapeTakesTheEntryBack()
    {
        FrequencyBench bench;
        WriteCount writes(bench.value);
        bench.edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&bench.edit, "123");
        QTest::keyClick(&bench.edit, Qt::Key_Escape);
        QCOMPARE(bench.edit.text(), QStringLiteral("98 500 000 Hz"));
        QCOMPARE(writes.Count(), 0);
    }

    void leavingTheFieldTakesTheEntryBack()
    {
        FrequencyBench bench;
        WriteCount writes(bench.value);
        bench.edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&bench.edit, "123");
        bench.FocusElsewhere();
        QCOMPARE(bench.edit.text(), QStringLiteral("98 500 000 Hz"));
        QCOMPARE(writes.Count(), 0);
    }

    void theContextMenuDoesNotTakeTheEntryBack()
    {
        FrequencyBench bench;
        bench.edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&bench.edit, "123");
        QVERIFY(TriggerMenu(bench.edit, QStringLiteral("copyPath")));
        QCOMPARE(bench.edit.text(), QStringLiteral("123"));
    }

    void focusByKeyboardSelectsAll()
    {
        FrequencyBench bench;
        bench.edit.setFocus(Qt::TabFocusReason);
        QCOMPARE(bench.edit.selectedText(), bench.edit.text());
    }

    void theFocusingClickSelectsAllAndPointsAtItsDigit()
    {
        FrequencyBench bench;
        bench.edit.grab();  // the text is placed when it is painted
        const QFontMetrics metrics = bench.edit.fontMetrics();
        const int x = bench.edit.width() - 5 - metrics.horizontalAdvance("500 000 Hz") + 2;
        QTest::mouseClick(&bench.edit, Qt::LeftButton, Qt::NoModifier, QPoint(x, bench.edit.height() / 2));
        QCOMPARE(bench.edit.selectedText(), bench.edit.text());
        QTest::keyClick(&bench.edit, Qt::Key_Up);
        QCOMPARE(ControlBench::NumberOf(bench.value), 98600000.0);
    }

    void theDigitUnderTheCursorSteps_data()
    {
        QTest::addColumn<double>("from");
        QTest::addColumn<int>("cursor");
        QTest::addColumn<int>("key");
        QTest::addColumn<double>("to");
        QTest::newRow("units up") << 98500000.0 << 9 << int(Qt::Key_Up) << 98500001.0;
        QTest::newRow("units down borrow") << 98500000.0 << 9 << int(Qt::Key_Down) << 98499999.0;
        QTest::newRow("behind the unit") << 98500000.0 << 13 << int(Qt::Key_Up) << 98500001.0;
        QTest::newRow("hundred thousands") << 98500000.0 << 3 << int(Qt::Key_Up) << 98600000.0;
        QTest::newRow("on the gap: the digit left of it") << 98500000.0 << 2 << int(Qt::Key_Up) << 99500000.0;
        QTest::newRow("tens of millions carry") << 98500000.0 << 0 << int(Qt::Key_Up) << 108500000.0;
        QTest::newRow("nines carry through") << 99999999.0 << 9 << int(Qt::Key_Up) << 100000000.0;
        QTest::newRow("never over the highest") << 5999999999.0 << 0 << int(Qt::Key_Up) << 6e9;
        QTest::newRow("never under the lowest") << 150000.0 << 0 << int(Qt::Key_Down) << 100000.0;
    }

    void theDigitUnderTheCursorSteps()
    {
        QFETCH(double, from);
        QFETCH(int, cursor);
        QFETCH(int, key);
        QFETCH(double, to);
        FrequencyBench bench(from);
        bench.edit.setFocus(Qt::TabFocusReason);
        bench.edit.setCursorPosition(cursor);
        QTest::keyClick(&bench.edit, Qt::Key(key));
        QCOMPARE(ControlBench::NumberOf(bench.value), to);
    }

    void theCursorStaysOnItsDigitOverACarry()
    {
        FrequencyBench bench(99500000);
        bench.edit.setFocus(Qt::TabFocusReason);
        bench.edit.setCursorPosition(1);  // millions
        QTest::keyClick(&bench.edit, Qt::Key_Up);
        QTest::keyClick(&bench.edit, Qt::Key_Up);
        QCOMPARE(ControlBench::NumberOf(bench.value), 101500000.0);
        QTest::keyClick(&bench.edit, Qt::Key_Down);
        QTest::keyClick(&bench.edit, Qt::Key_Down);
        QCOMPARE(ControlBench::NumberOf(bench.value), 99500000.0);
    }

    void aStepAtTheLimitWritesNothing()
    {
        FrequencyBench bench(6e9);
        WriteCount writes(bench.value);
        bench.edit.setFocus(Qt::TabFocusReason);
        bench.edit.setCursorPosition(3);
        QTest::keyClick(&bench.edit, Qt::Key_Up);
        QCOMPARE(writes.Count(), 0);
    }

    void anEntryStepsAsItStandsAndIsNotWritten()
    {
        FrequencyBench bench;
        WriteCount writes(bench.value);
        bench.edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&bench.edit, "97.3M");
        bench.edit.setCursorPosition(3);
        QTest::keyClick(&bench.edit, Qt::Key_Up);
        QCOMPARE(bench.edit.text(), QStringLiteral("97 400 000 Hz"));
        QCOMPARE(writes.Count(), 0);
        QTest::keyClick(&bench.edit, Qt::Key_Return);
        QCOMPARE(ControlBench::NumberOf(bench.value), 97.4e6);
    }

    void aValueFromTheDriverDoesNotTouchTheEntry()
    {
        FrequencyBench bench;
        Authority driver(bench.value);
        bench.edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&bench.edit, "97.");
        driver.Tell(101e6);
        QTest::keyClicks(&bench.edit, "3M");
        QCOMPARE(bench.edit.text(), QStringLiteral("97.3M"));
        QTest::keyClick(&bench.edit, Qt::Key_Escape);
        QCOMPARE(bench.edit.text(), QStringLiteral("101 000 000 Hz"));
    }

    void enterOnAnUntouchedFieldWritesNothing()
    {
        FrequencyBench bench;
        WriteCount writes(bench.value);
        bench.edit.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.edit, Qt::Key_Return);
        QCOMPARE(writes.Count(), 0);
    }

    void aWholeNumberValueRefusesAFraction()
    {
        ControlBench bench;
        ValueDescription description;
        description.type = ValueType::Integer;
        ValueBase& value = *ValueHost::Create("/RX1/Count", description, 3);
        VCLineEdit edit(nullptr, "count", VCLineEdit::NUMBER);
        QVERIFY(edit.SetText_ValuePath("/RX1/Count"));
        bench.Show(edit);
        edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&edit, "4.5");
        QTest::keyClick(&edit, Qt::Key_Enter);
        QVERIFY(NoteText(bench.Window()).contains("whole number"));
        QCOMPARE(ControlBench::NumberOf(value), 3.0);
    }

    void aPlainEditWritesTextAsItIs()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::PlainText("/RX1/Name", "old");
        VCLineEdit edit(nullptr, "name", VCLineEdit::PLAIN);
        QVERIFY(edit.SetText_ValuePath("/RX1/Name"));
        bench.Show(edit);
        edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&edit, " 98.5M <b>");
        QTest::keyClick(&edit, Qt::Key_Return);
        QCOMPARE(value.GetText(), QStringLiteral(" 98.5M <b>"));
    }

    void setTextShowsWithoutWriting()
    {
        FrequencyBench bench;
        WriteCount writes(bench.value);
        QVERIFY(bench.edit.SetText("--- dBµV/m"));
        QVERIFY(!bench.edit.SetText("--- dBµV/m"));
        QCOMPARE(bench.edit.text(), QStringLiteral("--- dBµV/m"));
        QCOMPARE(writes.Count(), 0);
    }

    void anUnboundNumberEditIsAnOrdinaryField()
    {
        ControlBench bench;
        VCLineEdit edit(nullptr, "Azimuth", VCLineEdit::NUMBER);
        edit.SetText(QString::fromUtf8("0 °"));
        bench.Show(edit);
        edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&edit, "x");
        QTest::keyClick(&edit, Qt::Key_Up);
        bench.FocusElsewhere();
        QCOMPARE(edit.text(), QStringLiteral("x"));
        QCOMPARE(edit.accessibleName(), QStringLiteral("Azimuth"));
    }

    void aReadOnlyFieldNeitherStepsNorWrites()
    {
        FrequencyBench bench;
        bench.edit.setReadOnly(true);
        WriteCount writes(bench.value);
        bench.edit.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.edit, Qt::Key_Up);
        bench.Enter(QStringLiteral("97M"));
        QCOMPARE(writes.Count(), 0);
    }
};

QTEST_MAIN(TestLineEdit)
#include "tst_lineedit.moc"
