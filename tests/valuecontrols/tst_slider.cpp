#include <QElapsedTimer>
#include <QStyleOptionSlider>

#include "controlbench.h"
#include "valuecontrols/vcslider.h"

class SliderBench : public ControlBench
{
public:
    explicit SliderBench(double content = 0, double minimum = -1, double maximum = 1)
        : value(Float("/RX1/DDC/DDC1/AudioBalance", content, minimum, maximum, QString())),
          slider(*new VCSlider(nullptr, "Audio Balance"))
    {
        slider.setOrientation(Qt::Horizontal);
        slider.SetNumeric_ValuePath(value.GetPathName());
        Show(slider);
    }

    double Content() const { return NumberOf(value); }

    ValueBase& value;
    VCSlider& slider;
};

class TestSlider : public QObject
{
    Q_OBJECT

private slots:
    void limitsAreMappedToTheWholeWay_data()
    {
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::newRow("one") << -1.0 << 1.0;
        QTest::newRow("hundred") << -100.0 << 100.0;
        QTest::newRow("tiny") << 0.0 << 1e-6;
        QTest::newRow("frequencies") << 1e5 << 6e9;
    }

    void limitsAreMappedToTheWholeWay()
    {
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        SliderBench bench((minimum + maximum) / 2, minimum, maximum);
        QVERIFY(bench.slider.maximum() - bench.slider.minimum() >= 1000);
        QCOMPARE(bench.slider.value() * 2, bench.slider.maximum());
        bench.slider.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.slider, Qt::Key_End);
        QTRY_COMPARE(bench.Content(), maximum);
        QTest::keyClick(&bench.slider, Qt::Key_Home);
        QTRY_COMPARE(bench.Content(), minimum);
    }

    void theMiddleOfABalanceIsExactlyZero()
    {
        SliderBench bench(0.002);
        bench.slider.setFocus(Qt::TabFocusReason);
        bench.slider.setValue(500);
        QTRY_COMPARE(bench.Content(), 0.0);
    }

    void keysMoveByAHundredth()
    {
        SliderBench bench;
        bench.slider.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.slider, Qt::Key_Right);
        QTRY_COMPARE(bench.Content(), 0.02);
    }

    void draggingWritesWhileItMovesButNotForEveryPixel()
    {
        SliderBench bench;
        WriteCount writes(bench.value);
        QElapsedTimer clock;
        clock.start();
        bench.slider.setSliderDown(true);
        for (int position = 501; position <= 900; ++position) {
            bench.slider.setSliderPosition(position);
            QCoreApplication::processEvents();
        }
        bench.slider.setSliderDown(false);
        const qint64 elapsed = clock.elapsed();
        QVERIFY(writes.Count() >= 2);
        QVERIFY2(writes.Count() <= 2 + elapsed / 33, qPrintable(QString::number(writes.Count())));
        QCOMPARE(bench.Content(), 0.8);
    }

    void aValueFromTheDriverDoesNotTearTheHandleAway()
    {
        SliderBench bench;
        Authority driver(bench.value);
        bench.slider.setSliderDown(true);
        bench.slider.setSliderPosition(700);
        driver.Tell(-0.5);
        QCOMPARE(bench.slider.sliderPosition(), 700);
        bench.slider.setSliderDown(false);
        QTRY_COMPARE(bench.slider.value(), 250);
    }

    void aWheelOverAnUnfocusedSliderDoesNothing()
    {
        SliderBench bench;
        Wheel(bench.slider, 1);
        QCOMPARE(bench.slider.value(), 500);
        QCOMPARE(bench.Content(), 0.0);
        bench.slider.setFocus(Qt::TabFocusReason);
        Wheel(bench.slider, 1);
        QTRY_VERIFY(bench.Content() > 0);
    }

    void followingTheTreeWritesNothing()
    {
        SliderBench bench;
        Authority driver(bench.value);
        driver.Tell(0.12345);
        QTRY_COMPARE(bench.slider.value(), 562);
        QVERIFY(driver.Written().isEmpty());
    }

    void aWholeNumberHasAPositionForEachOfItsValues()
    {
        ControlBench bench;
        ValueDescription description;
        description.type = ValueType::Integer;
        description.hasLimits = true;
        description.minimum = 1;
        description.maximum = 8;
        ValueHost::Create("/RX1/Count", description, 3);
        VCSlider slider(nullptr, "count");
        QVERIFY(slider.SetNumeric_ValuePath("/RX1/Count"));
        QCOMPARE(slider.maximum(), 7);
        QCOMPARE(slider.value(), 2);
    }

    void theLastPositionIsWrittenWhenTheSliderGoes()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Float("/RX1/Balance", 0, -1, 1, "");
        {
            VCSlider slider(nullptr, "balance");
            slider.SetNumeric_ValuePath("/RX1/Balance");
            slider.setValue(600);
            slider.setValue(1000);
        }
        QCOMPARE(ControlBench::NumberOf(value), 1.0);
    }
};

QTEST_MAIN(TestSlider)
#include "tst_slider.moc"
