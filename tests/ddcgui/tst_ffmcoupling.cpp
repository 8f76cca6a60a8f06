#include <QCheckBox>
#include <QSignalSpy>

#include "tests/ddcgui/panelfixture.h"

class tst_FfmCoupling : public QObject
{
    Q_OBJECT
private slots:
    void receiversOwnPanelWritesTheDemodulationFlagWithoutABoxForIt()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("MAIN");
        QVERIFY(!fixture.Child<QCheckBox>("Couple Demodulation"));
        panel.SetDemCoupled(true);
        QVERIFY(TestTree::Bool("/RX1/DDC/MAIN/DemodulationCoupled").GetValue());
        QVERIFY(panel.GetDemCoupled());
    }

    void flagSetByTheProgramMovesTheBoxAndIsNoClick()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("DDC1");
        QSignalSpy frequency(&panel, SIGNAL(coupleFrqChanged()));
        QSignalSpy demodulation(&panel, SIGNAL(coupleDemChanged()));
        panel.SetFrqCoupled(true);
        panel.SetDemCoupled(true);
        QVERIFY(TestTree::Bool("/RX1/DDC/DDC1/FrequencyCoupled").GetValue());
        QTRY_VERIFY(fixture.Child<QCheckBox>("Couple Frequency")->isChecked());
        QTRY_VERIFY(fixture.Child<QCheckBox>("Couple Demodulation")->isChecked());
        TestTree::Bool("/RX1/DDC/DDC1/FrequencyCoupled").SetValue(false, nullptr);
        QTRY_VERIFY(!fixture.Child<QCheckBox>("Couple Frequency")->isChecked());
        QCOMPARE(frequency.size() + demodulation.size(), 0);
    }

    void clickWritesTheFlagBeforeItIsTold()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("DDC1");
        bool whenTold = false;
        QSignalSpy spy(&panel, SIGNAL(coupleFrqChanged()));
        connect(&panel, &DdcGuiFfm::coupleFrqChanged, this, [&] { whenTold = panel.GetFrqCoupled(); });
        fixture.Child<QCheckBox>("Couple Frequency")->click();
        QCOMPARE(spy.size(), 1);
        QVERIFY(whenTold);
        QSignalSpy demodulation(&panel, SIGNAL(coupleDemChanged()));
        fixture.Child<QCheckBox>("Couple Demodulation")->click();
        QCOMPARE(demodulation.size(), 1);
        QVERIFY(TestTree::Bool("/RX1/DDC/DDC1/DemodulationCoupled").GetValue());
    }

    void beforeTheBindingAccessorsReadFalseAndWriteNothing()
    {
        PanelFixture fixture;
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        for (const char* suffix : {"/FrequencyCoupled", "/DemodulationCoupled"})
            TestTree::Bool(QString("/RX1/DDC/DDC1") + suffix).SetValue(true, nullptr);
        DdcGuiFfm& panel = fixture.Make("DDC1");
        QVERIFY(!panel.GetFrqCoupled());
        QVERIFY(!panel.GetDemCoupled());
        panel.SetFrqCoupled(false);
        panel.SetDemCoupled(false);
        QVERIFY(TestTree::Bool("/RX1/DDC/DDC1/FrequencyCoupled").GetValue());
        QVERIFY(TestTree::Bool("/RX1/DDC/DDC1/DemodulationCoupled").GetValue());
    }

    void accessorsSurviveTheEndOfTheirValues()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("DDC1");
        panel.SetFrqCoupled(true);
        TestTree::Delete("/RX1");
        QVERIFY(!panel.GetFrqCoupled());
        QVERIFY(!panel.GetDemCoupled());
        QVERIFY(!panel.GetAudioMute());
        panel.SetFrqCoupled(true);
        panel.SetAudioMute(true);
    }
};

DDCGUI_TEST_MAIN(tst_FfmCoupling)
#include "tst_ffmcoupling.moc"
