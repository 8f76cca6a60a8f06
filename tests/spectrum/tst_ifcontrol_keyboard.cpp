// Everything that the pointer does can be done by keys.

#include "tests/spectrum/scanbench.h"

class TestIfControlKeyboard : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { UseWorkbenchFace(); }

    void arrowsTuneByAStepThatModifiersMakeTenTimesMoreOrLess_data();
    void arrowsTuneByAStepThatModifiersMakeTenTimesMoreOrLess();
    void theStepFollowsTheView();
    void aHeldArrowKeyLosesNoStep();
    void pageKeysStepThroughTheBandwidths();
    void upAndDownMoveTheSquelch_data();
    void upAndDownMoveTheSquelch();
    void plusAndMinusZoomAndHomeFits();
    void plusAndMinusWriteTheHalfWidthWhereThatIsAllowed();
    void markersAreSetMeasuredAndRemoved();
    void withoutMarkersTheirKeysGoOn();
    void escapeTakesTheNoteThenTheCursorThenGoesOn();
    void keysWithoutAMeaningGoOnToTheParent();
    void keysWithoutValuesChangeNothing();
    void theFocusIsShownAndComesByTab();
    void withoutKeyboardTheControlTakesNoFocus();
    void theToolTipSaysTheKeys();
    void aScreenReaderIsToldWhatIsShown();
};

void TestIfControlKeyboard::arrowsTuneByAStepThatModifiersMakeTenTimesMoreOrLess_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifier");
    QTest::addColumn<double>("by");
    QTest::newRow("right") << int(Qt::Key_Right) << int(Qt::NoModifier) << 2000.0;
    QTest::newRow("left") << int(Qt::Key_Left) << int(Qt::NoModifier) << -2000.0;
    QTest::newRow("ctrl right") << int(Qt::Key_Right) << int(Qt::ControlModifier) << 20000.0;
    QTest::newRow("ctrl left") << int(Qt::Key_Left) << int(Qt::ControlModifier) << -20000.0;
    QTest::newRow("shift right") << int(Qt::Key_Right) << int(Qt::ShiftModifier) << 200.0;
    QTest::newRow("shift left") << int(Qt::Key_Left) << int(Qt::ShiftModifier) << -200.0;
}

void TestIfControlKeyboard::arrowsTuneByAStepThatModifiersMakeTenTimesMoreOrLess()
{
    QFETCH(int, key);
    QFETCH(int, modifier);
    QFETCH(double, by);
    ScanBench bench;
    bench.run();
    QTest::keyClick(bench.control, Qt::Key(key), Qt::KeyboardModifiers(modifier));
    QTRY_COMPARE(ScanBench::channelNumber("Frequency"), 98.3e6 + by);
}

void TestIfControlKeyboard::theStepFollowsTheView()
{
    ScanBench bench;
    bench.run();
    bench.parts().view.show({98.29e6, 98.33e6});
    QCOMPARE(bench.parts().view.tuningStep(), 20.0);
    QTest::keyClick(bench.control, Qt::Key_Right);
    QTRY_COMPARE(ScanBench::channelNumber("Frequency"), 98.3e6 + 20);
    bench.parts().view.show({98.299e6, 98.301e6});
    QTest::keyClick(bench.control, Qt::Key_Left, Qt::ShiftModifier);
    QTRY_COMPARE(ScanBench::channelNumber("Frequency"), 98.3e6 + 19);
}

void TestIfControlKeyboard::aHeldArrowKeyLosesNoStep()
{
    ScanBench bench;
    bench.run();
    WriteCount writes(ScanBench::channelValue("Frequency"));
    for (int i = 0; i < 100; ++i)
        QTest::keyClick(bench.control, Qt::Key_Right);
    QTRY_COMPARE(ScanBench::channelNumber("Frequency"), 98.3e6 + 100 * 2000);
    QVERIFY(writes.Count() < 100);
}

void TestIfControlKeyboard::pageKeysStepThroughTheBandwidths()
{
    ScanBench bench;
    bench.run();
    const auto key = [] { return ValueHost::Content(ScanBench::channelValue("Bandwidth")).toInt(); };
    QTest::keyClick(bench.control, Qt::Key_PageUp);
    QCOMPARE(key(), 3);
    QTest::keyClick(bench.control, Qt::Key_PageUp);
    QCOMPARE(key(), 3);
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(bench.control, Qt::Key_PageDown);
    QCOMPARE(key(), 0);
}

void TestIfControlKeyboard::upAndDownMoveTheSquelch_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifier");
    QTest::addColumn<double>("level");
    QTest::newRow("up") << int(Qt::Key_Up) << int(Qt::NoModifier) << 41.0;
    QTest::newRow("down") << int(Qt::Key_Down) << int(Qt::NoModifier) << 39.0;
    QTest::newRow("ctrl up") << int(Qt::Key_Up) << int(Qt::ControlModifier) << 50.0;
    QTest::newRow("shift down") << int(Qt::Key_Down) << int(Qt::ShiftModifier) << 39.9;
}

void TestIfControlKeyboard::upAndDownMoveTheSquelch()
{
    QFETCH(int, key);
    QFETCH(int, modifier);
    ScanBench bench;
    bench.run();
    QTest::keyClick(bench.control, Qt::Key(key), Qt::KeyboardModifiers(modifier));
    QTEST(ScanBench::channelNumber("SquelchValue"), "level");
}

void TestIfControlKeyboard::plusAndMinusZoomAndHomeFits()
{
    ScanBench bench;
    bench.run();
    const double place = bench.at(98.3e6, 0).x();
    QTest::keyClick(bench.control, Qt::Key_Plus);
    bench.settle();
    QVERIFY(bench.scene().view.width() < 1.5e6);
    QVERIFY(std::fabs(bench.at(98.3e6, 0).x() - place) <= 1);
    QTest::keyClick(bench.control, Qt::Key_Minus);
    bench.settle();
    QVERIFY(std::fabs(bench.scene().view.width() - 2e6) < 1);
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(bench.control, Qt::Key_Plus);
    QTest::keyClick(bench.control, Qt::Key_Home);
    QVERIFY(bench.parts().view.isFit());
    QCOMPARE(ScanBench::number(QStringLiteral("/GUICOMMON/IFPANHALFWIDTH")), 1e6);
}

void TestIfControlKeyboard::plusAndMinusWriteTheHalfWidthWhereThatIsAllowed()
{
    ScanBench bench;
    bench.run();
    const QString path = QStringLiteral("/GUICOMMON/IFPANHALFWIDTH");
    bench.control->SetHalfWidth_ValuePath(path, true);
    QTest::keyClick(bench.control, Qt::Key_Plus);
    QTRY_COMPARE(ScanBench::number(path), 0.5e6);
    QTest::keyClick(bench.control, Qt::Key_Minus);
    QTRY_COMPARE(ScanBench::number(path), 1e6);
}

void TestIfControlKeyboard::markersAreSetMeasuredAndRemoved()
{
    ScanBench bench;
    bench.run();
    QTest::keyClick(bench.control, Qt::Key_M);
    bench.parts().setCursor(98.7e6, std::nan(""));
    QTest::keyClick(bench.control, Qt::Key_D);
    bench.settle();
    const QVector<ScanMarker>& markers = bench.scene().markers;
    QCOMPARE(int(markers.size()), 2);
    QCOMPARE(markers[0].frequency, 98.3e6);
    QVERIFY(markers[1].delta);
    QVERIFY2(markers[1].text.contains(QStringLiteral("+400")), qPrintable(markers[1].text));
    // The carrier's bin lies beside the marker, in the same pixel: its level is what is seen.
    bench.parts().setCursor(98.7e6 + bench.parts().pixelHertz() * 0.45, std::nan(""));
    QTest::keyClick(bench.control, Qt::Key_M);
    bench.settle();
    QCOMPARE(markers[2].level, 60.0f);
    QCOMPARE(bench.scene().cursorLevel, 60.0f);
    bench.keepPicture(QStringLiteral("ifcontrol-markers"));
    QTest::keyClick(bench.control, Qt::Key_Delete);
    QTest::keyClick(bench.control, Qt::Key_Delete);
    QTest::keyClick(bench.control, Qt::Key_Delete);
    QTest::keyClick(bench.control, Qt::Key_Delete);
    QTRY_COMPARE(int(bench.scene().markers.size()), 0);
    for (int i = 0; i < 50; ++i)
        QTest::keyClick(bench.control, Qt::Key_M);
    QCOMPARE(bench.parts().markers.count(), ScanMarkers::most);
}

void TestIfControlKeyboard::withoutMarkersTheirKeysGoOn()
{
    ValueHost::CreateTree();
    {
        QWidget window;
        glWidgets::VCIFControl control(&window, "IF", true, false, QString(), false, 4, true);
        QTest::keyClick(&control, Qt::Key_M);
        QTest::keyClick(&control, Qt::Key_D);
        QCOMPARE(VCScanWidgetPrivate::of(&control)->markers.count(), 0);
    }
    ValueHost::DestroyTree();
}

void TestIfControlKeyboard::escapeTakesTheNoteThenTheCursorThenGoesOn()
{
    ScanBench bench;
    bench.run();
    Authority driver(ScanBench::channelValue("Frequency"));
    QTest::keyClick(bench.control, Qt::Key_Right);
    driver.Refuse(QStringLiteral("not now"));
    bench.parts().setCursor(98e6, std::nan(""));
    QTRY_VERIFY(NoteIn(bench.window()));
    QTest::keyClick(bench.control, Qt::Key_Escape);
    QTRY_VERIFY(!NoteIn(bench.window()));
    QVERIFY(bench.parts().hasCursor());
    QTest::keyClick(bench.control, Qt::Key_Escape);
    QVERIFY(!bench.parts().hasCursor());
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    event.setAccepted(true);
    QApplication::sendEvent(bench.control, &event);
    QVERIFY(!event.isAccepted());
}

void TestIfControlKeyboard::keysWithoutAMeaningGoOnToTheParent()
{
    ScanBench bench;
    bench.run();
    for (const int key : {Qt::Key_A, Qt::Key_F5, Qt::Key_Return, Qt::Key_Space}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(bench.control, &event);
        QVERIFY(!event.isAccepted());
    }
    QKeyEvent menu(QEvent::KeyPress, Qt::Key_Left, Qt::AltModifier);
    QApplication::sendEvent(bench.control, &menu);
    QVERIFY(!menu.isAccepted());
    QCOMPARE(ScanBench::channelNumber("Frequency"), 98.3e6);
}

void TestIfControlKeyboard::keysWithoutValuesChangeNothing()
{
    ScanBench bench;
    bench.show();
    for (const int key :
         {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown,
          Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Home, Qt::Key_M, Qt::Key_D, Qt::Key_Delete, Qt::Key_Escape})
        QTest::keyClick(bench.control, Qt::Key(key));
    bench.settle();
    QVERIFY(!bench.scene().view.isValid());
    QCOMPARE(ValueHost::CountValues(), 0);
}

void TestIfControlKeyboard::theFocusIsShownAndComesByTab()
{
    ScanBench bench;
    bench.run();
    QTRY_VERIFY(bench.scene().focused);
    const QImage with = bench.spectrum().grab().toImage();
    bench.control->clearFocus();
    QTRY_VERIFY(!bench.scene().focused);
    QVERIFY(bench.spectrum().grab().toImage() != with);
    QVERIFY(bench.control->focusPolicy() & Qt::TabFocus);
}

void TestIfControlKeyboard::withoutKeyboardTheControlTakesNoFocus()
{
    ValueHost::CreateTree();
    {
        QWidget window;
        glWidgets::VCIFControl control(&window, "IF", true, true, QString(), true, 4, false);
        QCOMPARE(control.focusPolicy(), Qt::NoFocus);
        QKeyEvent event(QEvent::KeyPress, Qt::Key_M, Qt::NoModifier);
        QApplication::sendEvent(&control, &event);
        QVERIFY(!event.isAccepted());
    }
    ValueHost::DestroyTree();
}

void TestIfControlKeyboard::theToolTipSaysTheKeys()
{
    ScanBench bench;
    const QString help = bench.control->toolTip();
    for (const char* word : {"Left", "Ctrl", "Shift", "Page Up", "Home", "M:", "Escape"})
        QVERIFY2(help.contains(QLatin1String(word)), word);
}

void TestIfControlKeyboard::aScreenReaderIsToldWhatIsShown()
{
    ScanBench bench;
    bench.run();
    QCOMPARE(bench.control->accessibleName(), QStringLiteral("IF Panorama"));
    const auto told = [&bench](const char* words) {
        return bench.control->accessibleDescription().contains(QString::fromUtf8(words));
    };
    const auto feedUntil = [&](const char* words) {
        QElapsedTimer clock;
        clock.start();
        while (!told(words) && clock.elapsed() < ScanBench::waitMs)
            bench.feed(panorama());
        return told(words);
    };
    QVERIFY2(feedUntil("Strongest signal 60.0 dBµV at 98.70"),
             qPrintable(bench.control->accessibleDescription()));
    QVERIFY(feedUntil("Channel at 98.300000 MHz, FM 150 kHz, squelch 40.0 dBµV."));
    QVERIFY(feedUntil("View from 97.5"));
}

QTEST_MAIN(TestIfControlKeyboard)
#include "tst_ifcontrol_keyboard.moc"
