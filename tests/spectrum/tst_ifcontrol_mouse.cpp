// What the pointer does to the channel, the view and the level range.

#include <QWheelEvent>

#include "spectrum/levelaxiswidget.h"
#include "tests/spectrum/scanbench.h"

namespace {

void press(QWidget& widget, const QPoint& place)
{
    QTest::mousePress(&widget, Qt::LeftButton, Qt::NoModifier, place);
}

void moveTo(QWidget& widget, const QPoint& place, Qt::MouseButtons buttons = Qt::LeftButton)
{
    QMouseEvent event(QEvent::MouseMove, place, widget.mapToGlobal(place), Qt::NoButton, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

void release(QWidget& widget, const QPoint& place)
{
    QTest::mouseRelease(&widget, Qt::LeftButton, Qt::NoModifier, place);
}

void drag(QWidget& widget, const QPoint& from, const QPoint& to)
{
    press(widget, from);
    for (int i = 1; i <= 4; ++i)
        moveTo(widget, from + (to - from) * i / 4);
    release(widget, to);
}

void wheel(QWidget& widget, const QPoint& place, int notches,
           Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWheelEvent event(place, widget.mapToGlobal(place), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

}  // namespace

class TestIfControlMouse : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { UseWorkbenchFace(); }

    void aClickTunesToARoundFrequency();
    void aClickInTheWaterfallTunesToo();
    void aClickOnAnEdgeOrTheLineDoesNotTune();
    void draggingThePassbandTunes();
    void draggingAnEdgeSnapsToTheSelectionsItems_data();
    void draggingAnEdgeSnapsToTheSelectionsItems();
    void draggingTheThresholdLineWritesTheLevelInTheChannel();
    void draggingWritesAtMostThirtyTimesASecondAndTheLastAlways();
    void escapeGivesBackWhatADragChanged();
    void theWheelZoomsAroundTheCursorAndWritesNothing();
    void zoomingOutEndsAtThePanorama();
    void zoomingInEndsAtAFewBins();
    void draggingFreeAreaMovesTheViewWithinThePanorama();
    void aDoubleClickFitsAndKeepsTheTuning();
    void draggingTheLevelAxisMovesOrStretchesTheRange();
    void draggingTheFrequencyAxisMovesTheView();
    void leftAndRightButtonsStepTheViewUnlessTheyAreHidden();
    void theCursorReadsFrequencyAndLevelAndInTheWaterfallTime();
    void markersAreDragged();
    void aRefusedTuningIsSaidBesideTheControl();
    void aValueThatCannotBeSetIsSaid();
    void resizingKeepsTheView();
};

void TestIfControlMouse::aClickTunesToARoundFrequency()
{
    ScanBench bench;
    bench.run();
    const QPoint place = bench.at(98.9013e6, 70);
    QTest::mouseClick(&bench.spectrum(), Qt::LeftButton, Qt::NoModifier, place);
    const double tuned = ScanBench::channelNumber("Frequency");
    QVERIFY(std::fabs(tuned - 98.9013e6) < 2 * bench.parts().pixelHertz() + 2000);
    // 2 MHz in view: steps of 2 kHz.
    QCOMPARE(std::fmod(tuned, 2000.0), 0.0);
    QTRY_COMPARE(bench.scene().channel.frequency, tuned);
}

void TestIfControlMouse::aClickInTheWaterfallTunesToo()
{
    ScanBench bench;
    bench.run();
    QTest::mouseClick(&bench.waterfall(), Qt::LeftButton, Qt::NoModifier, QPoint(10, 20));
    QVERIFY(ScanBench::channelNumber("Frequency") < 97.6e6);
}

void TestIfControlMouse::aClickOnAnEdgeOrTheLineDoesNotTune()
{
    ScanBench bench;
    bench.run();
    const double line = bench.scene().channel.thresholdLine;
    for (const QPoint& place :
         {bench.at(98.3e6 - 75e3, 70), bench.at(98.3e6 + 75e3, 70), bench.at(99e6, line)})
        QTest::mouseClick(&bench.spectrum(), Qt::LeftButton, Qt::NoModifier, place);
    QCOMPARE(ScanBench::channelNumber("Frequency"), 98.3e6);
    QCOMPARE(ScanBench::channelNumber("SquelchValue"), 40.0);
}

void TestIfControlMouse::draggingThePassbandTunes()
{
    ScanBench bench;
    bench.run();
    drag(bench.spectrum(), bench.at(98.32e6, 70), bench.at(98.62e6, 70));
    const double tuned = ScanBench::channelNumber("Frequency");
    QVERIFY2(std::fabs(tuned - 98.6e6) < 10e3, qPrintable(QString::number(tuned, 'f', 0)));
    QCOMPARE(std::fmod(tuned, 2000.0), 0.0);
}

void TestIfControlMouse::draggingAnEdgeSnapsToTheSelectionsItems_data()
{
    QTest::addColumn<double>("edge");
    QTest::addColumn<double>("to");
    QTest::addColumn<int>("key");
    QTest::newRow("upper edge out") << 75e3 << 120e3 << 3;
    QTest::newRow("upper edge in") << 75e3 << 30e3 << 1;
    QTest::newRow("lower edge in, all the way") << -75e3 << -5e3 << 0;
    QTest::newRow("far out ends at the widest") << 75e3 << 600e3 << 3;
    QTest::newRow("hardly moved stays") << 75e3 << 88e3 << 2;
}

void TestIfControlMouse::draggingAnEdgeSnapsToTheSelectionsItems()
{
    QFETCH(double, edge);
    QFETCH(double, to);
    ScanBench bench;
    bench.run();
    drag(bench.spectrum(), bench.at(98.3e6 + edge, 70), bench.at(98.3e6 + to, 70));
    QTEST(ValueHost::Content(ScanBench::channelValue("Bandwidth")).toInt(), "key");
    QCOMPARE(ScanBench::channelNumber("Frequency"), 98.3e6);
}

void TestIfControlMouse::draggingTheThresholdLineWritesTheLevelInTheChannel()
{
    ScanBench bench;
    bench.run();
    const double line = bench.scene().channel.thresholdLine;
    const QPoint from = bench.at(99e6, line);
    drag(bench.spectrum(), from, from + QPoint(0, -50));
    const double perPixel = 100.0 / bench.spectrum().height();
    const double level = ScanBench::channelNumber("SquelchValue");
    QVERIFY2(std::fabs(level - (40 + 50 * perPixel)) < 0.2, qPrintable(QString::number(level)));
    bench.settle();
    QVERIFY(std::fabs(bench.scene().channel.thresholdLine - (line + 50 * perPixel)) < 0.2);
}

void TestIfControlMouse::draggingWritesAtMostThirtyTimesASecondAndTheLastAlways()
{
    ScanBench bench;
    bench.run();
    WriteCount writes(ScanBench::channelValue("SquelchValue"));
    const QPoint from = bench.at(99e6, bench.scene().channel.thresholdLine);
    QElapsedTimer clock;
    clock.start();
    press(bench.spectrum(), from);
    int moves = 0;
    while (clock.elapsed() < 600) {
        moveTo(bench.spectrum(), from - QPoint(0, 10 + moves++ % 40));
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    const qint64 seconds = clock.elapsed();
    moveTo(bench.spectrum(), from - QPoint(0, 60));
    release(bench.spectrum(), from - QPoint(0, 60));
    QVERIFY(moves > 30);
    QVERIFY2(writes.Count() <= 30 * double(seconds) / 1000 + 3, qPrintable(QString::number(writes.Count())));
    QVERIFY(writes.Count() >= 2);
    const double expected = 40 + 60 * 100.0 / bench.spectrum().height();
    QVERIFY(std::fabs(ScanBench::channelNumber("SquelchValue") - expected) < 0.2);
}

void TestIfControlMouse::escapeGivesBackWhatADragChanged()
{
    ScanBench bench;
    bench.run();
    const QPoint places[] = {bench.at(98.32e6, 70), bench.at(98.375e6, 70),
                             bench.at(99e6, bench.scene().channel.thresholdLine)};
    for (const QPoint& from : places) {
        press(bench.spectrum(), from);
        moveTo(bench.spectrum(), from + QPoint(45, -45));
        moveTo(bench.spectrum(), from + QPoint(60, -60));
        QTest::keyClick(bench.control, Qt::Key_Escape);
        moveTo(bench.spectrum(), from + QPoint(90, -90));
        release(bench.spectrum(), from + QPoint(90, -90));
        QCOMPARE(ScanBench::channelNumber("Frequency"), 98.3e6);
        QCOMPARE(ScanBench::channelNumber("SquelchValue"), 40.0);
        QCOMPARE(ValueHost::Content(ScanBench::channelValue("Bandwidth")).toInt(), 2);
        bench.settle();
    }
}

void TestIfControlMouse::theWheelZoomsAroundTheCursorAndWritesNothing()
{
    ScanBench bench;
    bench.run();
    WriteCount frequency(ScanBench::channelValue("Frequency"));
    WriteCount level(ScanBench::value(QStringLiteral("/GUICOMMON/IF_LEVELMAXIMUM")));
    WriteCount half(ScanBench::value(QStringLiteral("/GUICOMMON/IFPANHALFWIDTH")));
    const QPoint place = bench.at(98.7e6, 30);
    const auto under = [&] { return bench.spectrum().mapping().frequency(place.x() + 0.5); };
    const double before = under();
    wheel(bench.spectrum(), place, 6);
    bench.settle();
    QVERIFY(bench.scene().view.width() < 0.6e6);
    QVERIFY(std::fabs(under() - before) < 10);
    wheel(*bench.parts().levelAxis, QPoint(5, 5), 3);
    wheel(*bench.control->GetXAxis(), QPoint(300, 5), -1);
    QCOMPARE(frequency.Count() + level.Count() + half.Count(), 0);
}

void TestIfControlMouse::zoomingOutEndsAtThePanorama()
{
    ScanBench bench;
    bench.run();
    wheel(bench.spectrum(), QPoint(100, 50), 4);
    wheel(bench.spectrum(), QPoint(500, 50), -40);
    bench.settle();
    QCOMPARE(bench.scene().view.start, 97.5e6);
    QCOMPARE(bench.scene().view.stop, 99.5e6);
    QVERIFY(bench.parts().view.isFit());
}

void TestIfControlMouse::zoomingInEndsAtAFewBins()
{
    ScanBench bench;
    bench.run();
    wheel(bench.spectrum(), QPoint(100, 50), 500);
    bench.settle();
    QVERIFY(bench.scene().view.isValid());
    QVERIFY(bench.scene().view.width() >= 4000);
    QVERIFY(bench.scene().view.width() <= 16000);
}

void TestIfControlMouse::draggingFreeAreaMovesTheViewWithinThePanorama()
{
    ScanBench bench;
    bench.run();
    bench.parts().view.show({98.6e6, 99.0e6});
    bench.settle();
    const double before = ScanBench::channelNumber("Frequency");
    const QPoint from(300, 20);
    drag(bench.spectrum(), from, from + QPoint(100, 0));
    bench.settle();
    const double shift = 100 * 0.4e6 / bench.spectrum().width();
    QVERIFY(std::fabs(bench.scene().view.start - (98.6e6 - shift)) < 10);
    drag(bench.spectrum(), from, from + QPoint(-3000, 0));
    bench.settle();
    QCOMPARE(bench.scene().view.stop, 99.5e6);
    QVERIFY(std::fabs(bench.scene().view.width() - 0.4e6) < 1);
    QCOMPARE(ScanBench::channelNumber("Frequency"), before);
}

void TestIfControlMouse::aDoubleClickFitsAndKeepsTheTuning()
{
    ScanBench bench;
    bench.run();
    bench.parts().view.show({98.6e6, 99.0e6});
    bench.settle();
    const QPoint place(200, 20);
    QTest::mouseClick(&bench.spectrum(), Qt::LeftButton, Qt::NoModifier, place);
    QVERIFY(ScanBench::channelNumber("Frequency") != 98.3e6);
    QTest::mouseDClick(&bench.spectrum(), Qt::LeftButton, Qt::NoModifier, place);
    bench.settle();
    QVERIFY(bench.parts().view.isFit());
    QCOMPARE(ScanBench::channelNumber("Frequency"), 98.3e6);
    QTest::mouseRelease(&bench.spectrum(), Qt::LeftButton, Qt::NoModifier, place);
    QCOMPARE(ScanBench::channelNumber("Frequency"), 98.3e6);
}

void TestIfControlMouse::draggingTheLevelAxisMovesOrStretchesTheRange()
{
    const auto range = [](const char* end) {
        return ScanBench::number(QStringLiteral("/GUICOMMON/IF_LEVEL") + QLatin1String(end));
    };
    ScanBench bench;
    bench.run();
    LevelAxisWidget& axis = *bench.parts().levelAxis;
    const int height = axis.height();
    drag(axis, QPoint(5, height / 2), QPoint(5, height / 2 + height / 10));
    QVERIFY(std::fabs(range("MAXIMUM") - 90) < 1);
    QVERIFY(std::fabs(range("MINIMUM") + 10) < 1);
    bench.settle();
    drag(axis, QPoint(5, 10), QPoint(5, 10 + height / 10));
    QVERIFY(std::fabs(range("MAXIMUM") - 100) < 1);
    QVERIFY(std::fabs(range("MINIMUM") + 10) < 1);
    bench.settle();
    const double bottom = range("MINIMUM");
    press(axis, QPoint(5, height - 5));
    moveTo(axis, QPoint(5, height - 80));
    QTRY_VERIFY(range("MINIMUM") < bottom);
    QTest::keyClick(bench.control, Qt::Key_Escape);
    release(axis, QPoint(5, height - 80));
    QVERIFY(std::fabs(range("MINIMUM") - bottom) < 0.11);
}

void TestIfControlMouse::draggingTheFrequencyAxisMovesTheView()
{
    ScanBench bench;
    bench.run();
    bench.parts().view.show({98.6e6, 99.0e6});
    bench.settle();
    drag(*bench.control->GetXAxis(), QPoint(300, 5), QPoint(400, 5));
    bench.settle();
    QVERIFY(std::fabs(bench.scene().view.start - (98.6e6 - 100 * 0.4e6 / bench.spectrum().width())) < 2000);
    QTest::mouseDClick(bench.control->GetXAxis(), Qt::LeftButton, Qt::NoModifier, QPoint(300, 5));
    bench.settle();
    QVERIFY(bench.parts().view.isFit());
}

void TestIfControlMouse::leftAndRightButtonsStepTheViewUnlessTheyAreHidden()
{
    ScanBench bench;
    bench.run();
    auto* const axis = static_cast<XAxisWidget*>(bench.control->GetXAxis());
    auto* const right = axis->findChild<QWidget*>(QStringLiteral("rightButton"));
    QVERIFY(right && !right->isVisible());
    axis->ApplyLeftRightButtons(true);
    QVERIFY(right->isVisible());
    bench.parts().view.show({98.0e6, 98.4e6});
    bench.settle();
    QTest::mouseClick(right, Qt::LeftButton);
    bench.settle();
    QVERIFY(std::fabs(bench.scene().view.start - 98.2e6) < 10);
    bench.keepPicture(QStringLiteral("ifcontrol-buttons"));
}

void TestIfControlMouse::theCursorReadsFrequencyAndLevelAndInTheWaterfallTime()
{
    ScanBench bench;
    bench.run();
    moveTo(bench.spectrum(), bench.at(98.7e6, 30), Qt::NoButton);
    bench.settle();
    QVERIFY(bench.scene().cursorVisible);
    QVERIFY2(bench.scene().cursorText.contains(QStringLiteral("98.70")) &&
                 bench.scene().cursorText.contains(QStringLiteral("60.0 dBµV")),
             qPrintable(bench.scene().cursorText));
    moveTo(bench.waterfall(), QPoint(bench.at(98.7e6, 30).x(), 0), Qt::NoButton);
    bench.settle();
    QVERIFY2(bench.scene().cursorText.contains(QStringLiteral("UTC")), qPrintable(bench.scene().cursorText));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&bench.waterfall(), &leave);
    bench.settle();
    QVERIFY(!bench.scene().cursorVisible);
}

void TestIfControlMouse::markersAreDragged()
{
    ScanBench bench;
    bench.run();
    bench.parts().setCursor(98.7e6, std::numeric_limits<double>::quiet_NaN());
    QTest::keyClick(bench.control, Qt::Key_M);
    bench.settle();
    QCOMPARE(int(bench.scene().markers.size()), 1);
    QPoint grip(-1, -1);
    for (int y = 0; y < bench.spectrum().height() && grip.x() < 0; ++y) {
        const QPoint place(bench.at(98.7e6, 0).x(), y);
        if (bench.spectrum().handleAt(place) == ScanHandle::Marker)
            grip = place;
    }
    QVERIFY(grip.x() >= 0);
    drag(bench.spectrum(), grip, grip + QPoint(60, 0));
    QVERIFY(bench.parts().markers.frequency(0) > 98.75e6);
    QCOMPARE(ScanBench::channelNumber("Frequency"), 98.3e6);
}

void TestIfControlMouse::aRefusedTuningIsSaidBesideTheControl()
{
    ScanBench bench;
    bench.run();
    Authority driver(ScanBench::channelValue("Frequency"));
    QTest::mouseClick(&bench.spectrum(), Qt::LeftButton, Qt::NoModifier, bench.at(99e6, 70));
    QCOMPARE(int(driver.Written().size()), 1);
    driver.Refuse(QStringLiteral("the channel follows the main receiver"));
    QTRY_VERIFY(NoteText(bench.window()).contains(QStringLiteral("follows the main receiver")));
    QTRY_COMPARE(bench.scene().channel.frequency, 98.3e6);
}

void TestIfControlMouse::aValueThatCannotBeSetIsSaid()
{
    ScanBench bench;
    bench.run();
    ValueHost::SetState(ScanBench::channelValue("Frequency"), VS_STALE);
    QTest::mouseClick(&bench.spectrum(), Qt::LeftButton, Qt::NoModifier, bench.at(99e6, 70));
    QVERIFY(NoteText(bench.window()).contains(QStringLiteral("the driver is away")));
    QCOMPARE(ScanBench::channelNumber("Frequency"), 98.3e6);
}

void TestIfControlMouse::resizingKeepsTheView()
{
    ScanBench bench;
    bench.run();
    bench.parts().view.show({98.6e6, 99.0e6});
    bench.settle();
    for (const QSize& size : {QSize(400, 400), QSize(1600, 900), QSize(402, 700)}) {
        bench.window().resize(size);
        QTRY_COMPARE(bench.control->width(), size.width());
        bench.settle();
        QCOMPARE(bench.scene().view.start, 98.6e6);
        QVERIFY(std::fabs(bench.spectrum().mapping().frequency(bench.at(98.8e6, 0).x()) - 98.8e6) <
                2 * bench.parts().pixelHertz());
    }
}

QTEST_MAIN(TestIfControlMouse)
#include "tst_ifcontrol_mouse.moc"
