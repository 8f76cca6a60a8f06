// What each bound value moves in the picture.

#include "spectrum/demodulationcolors.h"
#include "spectrum/levelaxiswidget.h"
#include "spectrum/scanstatusline.h"
#include "spectrum/xaxiswidget_p.h"
#include "tests/spectrum/scanbench.h"

class TestIfControlBindings : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { UseWorkbenchFace(); }

    void levelValuesMoveTopAndBottom();
    void aMinimumAboveTheMaximumIsIgnoredAndSaid();
    void startAndStopValuesMoveTheEndsOfTheAxis();
    void aStartBeyondTheStopFallsBackToTheHalfWidthAndSaysSo();
    void halfWidthWidensThePanoramaWhereEndsAreNotKnown();
    void aCloserViewKeepsItsPlaceWhenTheReceiverIsTuned();
    void centreValueMovesTheMarkOnTheAxis();
    void frequencyValueMovesTheLineAndThePassband();
    void aPassbandThatDoesNotFollowStays();
    void bandwidthValueWidensThePassband();
    void thresholdLineLiesBelowItsLevelByTheRatioOfBandwidths();
    void thresholdLineMovesWithTheBandwidth();
    void eachDemodulationHasAColourOfItsOwn();
    void demodulationValueColoursThePassband();
    void mappingValueChoosesTheDetectorOfTheStream();
    void setterAnswersWhetherThereIsAFittingValue_data();
    void setterAnswersWhetherThereIsAFittingValue();
    void onlyTheTracesAndItemsThatThereAreCanBeBound();
    void bindingsAppearWhenTheirValuesAppear();
    void deletedValuesTakeTheirPartsAway();
};

void TestIfControlBindings::levelValuesMoveTopAndBottom()
{
    ScanBench bench;
    bench.run();
    QCOMPARE(bench.scene().levelMaximum, 80.0f);
    const int before = bench.at(98e6, 30).y();
    ScanBench::set(QStringLiteral("/GUICOMMON/IF_LEVELMAXIMUM"), 60.0);
    ScanBench::set(QStringLiteral("/GUICOMMON/IF_LEVELMINIMUM"), 10.0);
    QTRY_COMPARE(bench.scene().levelMaximum, 60.0f);
    QTRY_COMPARE(bench.scene().levelMinimum, 10.0f);
    QVERIFY(bench.at(98e6, 30).y() != before);
}

void TestIfControlBindings::aMinimumAboveTheMaximumIsIgnoredAndSaid()
{
    ScanBench bench;
    bench.run();
    ScanBench::set(QStringLiteral("/GUICOMMON/IF_LEVELMINIMUM"), 90.0);
    QTRY_VERIFY(bench.scene().message.contains(QStringLiteral("level range from 90.0")));
    QCOMPARE(bench.scene().levelMinimum, -20.0f);
    QCOMPARE(bench.scene().levelMaximum, 80.0f);
    ScanBench::set(QStringLiteral("/GUICOMMON/IF_LEVELMINIMUM"), 0.0);
    QTRY_COMPARE(bench.scene().levelMinimum, 0.0f);
    QVERIFY(!bench.scene().message.contains(QStringLiteral("level range")));
}

void TestIfControlBindings::startAndStopValuesMoveTheEndsOfTheAxis()
{
    ScanBench bench;
    bench.run();
    ScanBench::set(QStringLiteral("/GUICOMMON/IFPANSTARTFREQ"), 98.0e6);
    QTRY_COMPARE(bench.scene().view.start, 98.0e6);
    ScanBench::set(QStringLiteral("/GUICOMMON/IFPANSTOPFREQ"), 99.0e6);
    QTRY_COMPARE(bench.scene().view.stop, 99.0e6);
}

void TestIfControlBindings::aStartBeyondTheStopFallsBackToTheHalfWidthAndSaysSo()
{
    ScanBench bench;
    bench.run();
    ScanBench::set(QStringLiteral("/GUICOMMON/IFPANHALFWIDTH"), 0.5e6);
    ScanBench::set(QStringLiteral("/GUICOMMON/IFPANSTARTFREQ"), 120e6);
    QTRY_VERIFY(bench.scene().message.contains(QStringLiteral("above its end")));
    QCOMPARE(bench.scene().view.start, 98.0e6);
    QCOMPARE(bench.scene().view.stop, 99.0e6);
}

void TestIfControlBindings::halfWidthWidensThePanoramaWhereEndsAreNotKnown()
{
    ScanBench bench;
    bench.run();
    Tree::Instance()->DeleteValue(QStringLiteral("/GUICOMMON/IFPANSTARTFREQ"));
    ScanBench::set(QStringLiteral("/GUICOMMON/IFPANHALFWIDTH"), 0.25e6);
    QTRY_COMPARE(bench.scene().view.start, 98.25e6);
    QTRY_COMPARE(bench.scene().view.stop, 98.75e6);
}

void TestIfControlBindings::aCloserViewKeepsItsPlaceWhenTheReceiverIsTuned()
{
    ScanBench bench;
    bench.run();
    bench.parts().view.show({98.4e6, 98.8e6});
    ScanBench::set(QStringLiteral("/GUICOMMON/IFPANSTARTFREQ"), 100.5e6);
    ScanBench::set(QStringLiteral("/GUICOMMON/IFPANSTOPFREQ"), 102.5e6);
    QTRY_COMPARE(bench.parts().view.full().stop, 102.5e6);
    const ScanRange view = bench.parts().view.range();
    QVERIFY(std::fabs(view.width() - 0.4e6) < 1);
    QVERIFY(view.start >= 100.5e6 && view.stop <= 102.5e6);
}

void TestIfControlBindings::centreValueMovesTheMarkOnTheAxis()
{
    ScanBench bench;
    bench.run();
    auto* const axis = XAxisWidgetPrivate::of(static_cast<XAxisWidget*>(bench.control->GetXAxis()));
    QTRY_COMPARE(axis->center, 98.5e6);
    ScanBench::set(QStringLiteral("/RX1/FREQUENCY"), 98.9e6);
    QTRY_COMPARE(axis->center, 98.9e6);
}

void TestIfControlBindings::frequencyValueMovesTheLineAndThePassband()
{
    ScanBench bench;
    bench.run();
    QCOMPARE(bench.scene().channel.frequency, 98.3e6);
    ScanBench::set(ScanBench::channelPath("Frequency"), 98.9e6);
    QTRY_COMPARE(bench.scene().channel.frequency, 98.9e6);
    QCOMPARE(bench.scene().channel.center, 98.9e6);
}

void TestIfControlBindings::aPassbandThatDoesNotFollowStays()
{
    ScanBench bench;
    bench.run();
    QVERIFY(bench.control->SetAudioBandWidthCenter_ValuePath(ScanBench::channelPath("Frequency"), false));
    bench.settle();
    QCOMPARE(bench.scene().channel.center, 98.3e6);
    ScanBench::set(ScanBench::channelPath("Frequency"), 98.9e6);
    QTRY_COMPARE(bench.scene().channel.frequency, 98.9e6);
    QCOMPARE(bench.scene().channel.center, 98.3e6);
}

void TestIfControlBindings::bandwidthValueWidensThePassband()
{
    ScanBench bench;
    bench.run();
    QCOMPARE(bench.scene().channel.bandwidth, 150e3);
    ScanBench::set(ScanBench::channelPath("Bandwidth"), 3);
    QTRY_COMPARE(bench.scene().channel.bandwidth, 250e3);
    QVERIFY(bench.scene().channel.text.contains(QStringLiteral("250 kHz")));
}

void TestIfControlBindings::thresholdLineLiesBelowItsLevelByTheRatioOfBandwidths()
{
    ScanBench bench;
    bench.run();
    // Noise of 40 dBµV in 150 kHz is 40 - 10 log10(150 / 2) in the 2 kHz of a bin.
    const double expected = 40 - 10 * std::log10(150e3 / 2e3);
    QCOMPARE(bench.scene().channel.thresholdLevel, 40.0);
    QVERIFY(std::fabs(bench.scene().channel.thresholdLine - expected) < 1e-6);
    ScanBench::set(ScanBench::channelPath("SquelchValue"), 50.0);
    QTRY_VERIFY(std::fabs(bench.scene().channel.thresholdLine - expected - 10) < 1e-6);
}

void TestIfControlBindings::thresholdLineMovesWithTheBandwidth()
{
    ScanBench bench;
    bench.run();
    ScanBench::set(ScanBench::channelPath("Bandwidth"), 0);
    QTRY_VERIFY(std::fabs(bench.scene().channel.thresholdLine - (40 - 10 * std::log10(15e3 / 2e3))) < 1e-6);
}

void TestIfControlBindings::eachDemodulationHasAColourOfItsOwn()
{
    const QStringList names{
        QStringLiteral("AM"), QStringLiteral("FM"), QStringLiteral("USB"),           QStringLiteral("LSB"),
        QStringLiteral("CW"), QStringLiteral("IQ"), QStringLiteral("something else")};
    for (const QString& one : names) {
        for (const QString& other : names)
            QCOMPARE(demodulationColor(one) == demodulationColor(other), one == other);
    }
}

void TestIfControlBindings::demodulationValueColoursThePassband()
{
    ScanBench bench;
    bench.run();
    QCOMPARE(bench.scene().channel.color, demodulationColor(QStringLiteral("FM")));
    // A place in the passband, above the trace, beside the line.
    const QPoint place = bench.at(98.34e6, 60);
    const QColor before = bench.spectrum().grab().toImage().pixelColor(place);
    ScanBench::set(ScanBench::channelPath("Demodulation"), 0);
    QTRY_COMPARE(bench.scene().channel.color, demodulationColor(QStringLiteral("AM")));
    QVERIFY(bench.scene().channel.text.startsWith(QStringLiteral("AM")));
    QVERIFY(bench.spectrum().grab().toImage().pixelColor(place) != before);
}

void TestIfControlBindings::mappingValueChoosesTheDetectorOfTheStream()
{
    ScanBench bench;
    bench.run();
    QCOMPARE(bench.server.requests.first().detector, Link::StreamDetector::Mean);
    QCOMPARE(bench.server.requests.first().path, QStringLiteral("/RX1"));
    ScanBench::set(QStringLiteral("/RX1/IFMAPPING"), 0);
    QTRY_COMPARE(bench.server.requests.last().detector, Link::StreamDetector::Maximum);
    ScanBench::set(QStringLiteral("/RX1/IFMAPPING"), 2);
    QTRY_COMPARE(bench.server.requests.last().detector, Link::StreamDetector::Mean);
    QCOMPARE(bench.server.connections, 1);
}

using Setter = std::function<bool(glWidgets::VCIFControl&, const QString&)>;
Q_DECLARE_METATYPE(Setter)

void TestIfControlBindings::setterAnswersWhetherThereIsAFittingValue_data()
{
    QTest::addColumn<Setter>("setter");
    QTest::addColumn<QString>("fitting");
    QTest::addColumn<QString>("other");
    const QString number = ScanBench::channelPath("Frequency");
    const QString selection = ScanBench::channelPath("Bandwidth");
    using Control = glWidgets::VCIFControl;
    const auto row = [](const char* name, const QString& fitting, const QString& other,
                        const Setter& setter) { QTest::newRow(name) << setter << fitting << other; };
    row("top", number, selection, [](Control& c, const QString& p) { return c.SetZStop_ValuePath(0, p); });
    row("bottom", number, selection,
        [](Control& c, const QString& p) { return c.SetZStart_ValuePath(0, p); });
    row("half width", number, selection,
        [](Control& c, const QString& p) { return c.SetHalfWidth_ValuePath(p, false); });
    row("mapping", selection, number, [](Control& c, const QString& p) { return c.SetMapping_ValuePath(p); });
    row("centre", number, selection, [](Control& c, const QString& p) { return c.SetCenter_ValuePath(p); });
    row("frequency", number, selection,
        [](Control& c, const QString& p) { return c.SetFrequency_ValuePath(p); });
    row("passband centre", number, selection,
        [](Control& c, const QString& p) { return c.SetAudioBandWidthCenter_ValuePath(p, true); });
    row("threshold", number, selection,
        [](Control& c, const QString& p) { return c.SetThreshold_ValuePath(0, p); });
    row("bandwidth", selection, number,
        [](Control& c, const QString& p) { return c.SetAudioBandWidth_ValuePath(p); });
    row("demodulation", selection, number, [](Control& c, const QString& p) {
        return c.GetColorItemMapAdapter4IF()->SetDemodulation_ValuePath(1, p);
    });
    row("start", number, selection, [](Control& c, const QString& p) { return c.SetXStart_ValuePath(p); });
    row("stop", number, selection, [](Control& c, const QString& p) { return c.SetXStop_ValuePath(p); });
}

void TestIfControlBindings::setterAnswersWhetherThereIsAFittingValue()
{
    QFETCH(Setter, setter);
    QFETCH(QString, fitting);
    QFETCH(QString, other);
    ScanBench bench;
    bench.makeValues();
    QVERIFY(setter(*bench.control, fitting));
    QVERIFY(!setter(*bench.control, other));
    QVERIFY(!setter(*bench.control, QStringLiteral("/RX1/nowhere")));
    QVERIFY(!setter(*bench.control, QString()));
}

void TestIfControlBindings::onlyTheTracesAndItemsThatThereAreCanBeBound()
{
    ScanBench bench;
    bench.makeValues();
    const QString number = ScanBench::channelPath("Frequency");
    QVERIFY(!bench.control->SetZStart_ValuePath(1, number));
    QVERIFY(!bench.control->SetZStop_ValuePath(7, number));
    QVERIFY(!bench.control->SetThreshold_ValuePath(1, number));
    ColorItemMapAdapter* const colours = bench.control->GetColorItemMapAdapter4IF();
    QVERIFY(!colours->SetDemodulation_ValuePath(0, ScanBench::channelPath("Demodulation")));
    QVERIFY(!colours->SetDemodulation_ValuePath(2, ScanBench::channelPath("Demodulation")));
}

void TestIfControlBindings::bindingsAppearWhenTheirValuesAppear()
{
    ScanBench bench;
    bench.bind();
    bench.show();
    bench.settle();
    QVERIFY(!bench.scene().channel.visible);
    QVERIFY(!bench.scene().view.isValid());
    bench.makeValues();
    QTRY_VERIFY_WITH_TIMEOUT(bench.scene().channel.visible, ScanBench::waitMs);
    QTRY_VERIFY_WITH_TIMEOUT(!bench.server.requests.isEmpty(), ScanBench::waitMs);
    QVERIFY(!bench.scene().channel.hasThreshold);  // no trace yet that it could be drawn over
    bench.feed(panorama());
    QTRY_VERIFY_WITH_TIMEOUT(bench.scene().channel.hasThreshold, ScanBench::waitMs);
    QTRY_COMPARE_WITH_TIMEOUT(bench.scene().channel.bandwidth, 150e3, ScanBench::waitMs);
    QTRY_COMPARE_WITH_TIMEOUT(bench.scene().view.start, 97.5e6, ScanBench::waitMs);
}

void TestIfControlBindings::deletedValuesTakeTheirPartsAway()
{
    ScanBench bench;
    bench.run();
    Tree::Instance()->DeleteValue(ScanBench::channelPath("SquelchValue"));
    QTRY_VERIFY(!bench.scene().channel.hasThreshold);
    QVERIFY(bench.scene().channel.visible);
    Tree::Instance()->DeleteValue(QStringLiteral("/RX1/DDC"));
    QTRY_VERIFY(!bench.scene().channel.visible);
    bench.keepPicture(QStringLiteral("ifcontrol-without-channel"));
}

QTEST_MAIN(TestIfControlBindings)
#include "tst_ifcontrol_bindings.moc"
