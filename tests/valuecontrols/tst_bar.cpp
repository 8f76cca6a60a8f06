#include <QAccessible>
#include <QPainter>

#include "controlbench.h"
#include "valuecontrols/controllook.h"
#include "valuecontrols/levelhistory.h"
#include "valuecontrols/vcbar.h"

class BarBench : public ControlBench
{
public:
    explicit BarBench(double level = 50)
        : value(Float("/RX1/DDC/DDC1/LevelValue", level, 0, 0, QString::fromUtf8("dBµV"))),
          bar(*new VCBar(nullptr, "Graphical Level Display", 17, 6, 1))
    {
        bar.setFixedSize(162, 20);  // 160 pixels for 160 dB, and the frame
        bar.SetStartValue(-30);
        bar.SetStopValue(130);
        bar.SetPeak_ValuePath(value.GetPathName());
        Show(bar);
    }

    QImage Picture(qreal ratio = 1)
    {
        QImage image(bar.size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        bar.render(&painter);
        return image;
    }

    // Where the fill ends on a line free of text, ticks and marks.
    int FilledTo()
    {
        const QImage picture = Picture();
        const QColor fill = picture.pixelColor(2, 7);
        int x = 1;
        while (x < picture.width() - 1 && picture.pixelColor(x, 7) == fill)
            ++x;
        return x - 1;
    }

    ValueBase& value;
    VCBar& bar;
};

class TestBar : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(UseWorkbenchFace()); }

    void theFillEndsAtTheLevel_data()
    {
        QTest::addColumn<double>("level");
        QTest::addColumn<int>("pixels");
        QTest::newRow("middle") << 50.0 << 80;
        QTest::newRow("a quarter") << 10.0 << 40;
        QTest::newRow("nearly full") << 129.0 << 159;
    }

    void theFillEndsAtTheLevel()
    {
        QFETCH(double, level);
        QFETCH(int, pixels);
        BarBench bench(level);
        QCOMPARE(bench.FilledTo(), pixels);
    }

    void aLevelOffTheScaleIsMarkedAtItsEnd()
    {
        BarBench full(130);
        const QImage atTheEnd = full.Picture();
        ValueHost::SetContent(full.value, 200.0, nullptr);
        QVERIFY(full.Picture() != atTheEnd);
        ValueHost::SetContent(full.value, -30.0, nullptr);
        const QImage atTheStart = full.Picture();
        ValueHost::SetContent(full.value, -99.0, nullptr);
        QVERIFY(full.Picture() != atTheStart);
    }

    void theNumberIsReadableOverTheFilledAndTheEmptyPart()
    {
        BarBench bench(95);  // ends at 126, in the middle of the number at the right end
        bench.bar.SetShowTextValueInside(true);
        const QImage picture = bench.Picture();
        const QColor fill = picture.pixelColor(10, 7);
        const QColor ground = picture.pixelColor(158, 7);
        double onFill = 1;
        double onGround = 1;
        for (int y = 3; y < 12; ++y) {
            for (int x = 96; x < 155; ++x) {
                if (x < 125)
                    onFill = qMax(onFill, ControlLook::Contrast(picture.pixelColor(x, y), fill));
                else if (x > 127)
                    onGround = qMax(onGround, ControlLook::Contrast(picture.pixelColor(x, y), ground));
            }
        }
        QVERIFY2(onFill >= 4.5, qPrintable(QString::number(onFill)));
        QVERIFY2(onGround >= 4.5, qPrintable(QString::number(onGround)));
        QVERIFY(ControlLook::Contrast(fill, ground) >= 3);
    }

    void aMissingValueHasNoLevel()
    {
        BarBench bench(100);
        const QImage before = bench.Picture();
        Tree::Instance()->DeleteValue(bench.value.GetPathName());
        QVERIFY(bench.Picture() != before);
        const QImage after = bench.Picture();
        QCOMPARE(after.pixelColor(5, 7), after.pixelColor(150, 7));
    }

    void theScaleHasFinerLinesAtTwoPixelsPerUnit()
    {
        BarBench bench(50.25);
        const QImage picture = bench.Picture(2);
        QCOMPARE(picture.width(), 324);
        QVERIFY(picture.pixelColor(140, 14) != picture.pixelColor(180, 14));
    }

    void lowestAndHighestAreMarkedWhenAsked()
    {
        BarBench bench(50);
        ValueHost::SetContent(bench.value, 100.0, nullptr);
        ValueHost::SetContent(bench.value, 0.0, nullptr);
        ValueHost::SetContent(bench.value, 50.0, nullptr);
        const QImage without = bench.Picture();
        bench.bar.SetShowMinMaxInside(true);
        const QImage with = bench.Picture();
        QVERIFY(with.pixelColor(131, 2) != without.pixelColor(131, 2));  // highest, from the top
        QVERIFY(with.pixelColor(31, 18) != without.pixelColor(31, 18));  // lowest, from the bottom
        QCOMPARE(with.pixelColor(100, 7), without.pixelColor(100, 7));
    }

    void extremesAreForgottenAfterTenSeconds()
    {
        LevelHistory history;
        double lowest = 0;
        double highest = 0;
        QVERIFY(!history.Extremes(0, &lowest, &highest));
        history.Add(90, 0);
        history.Add(-10, 5000);
        history.Add(20, 9900);
        QVERIFY(history.Extremes(9950, &lowest, &highest));
        QCOMPARE(lowest, -10.0);
        QCOMPARE(highest, 90.0);
        QVERIFY(history.Extremes(10200, &lowest, &highest));
        QCOMPARE(highest, 20.0);
        QVERIFY(history.Extremes(15200, &lowest, &highest));
        QCOMPARE(lowest, 20.0);
        QVERIFY(!history.Extremes(30000, &lowest, &highest));
    }

    void aScaleOfNoWidthAndLevelsThatAreNoNumbersAreHarmless()
    {
        BarBench bench(50);
        bench.bar.SetStartValue(10);
        bench.bar.SetStopValue(10);
        bench.Picture();
        ValueHost::SetContent(bench.value, 1e308, nullptr);
        bench.bar.SetShowTextValueInside(true);
        bench.bar.SetStartValue(-1e308);
        bench.bar.SetStopValue(1e308);
        QVERIFY(!bench.Picture().isNull());
    }

    void aScreenReaderIsToldNameNumberAndUnit()
    {
        BarBench bench(45.2);
        QAccessibleInterface* const reader = QAccessible::queryAccessibleInterface(&bench.bar);
        QVERIFY(reader);
        QCOMPARE(reader->role(), QAccessible::ProgressBar);
        QCOMPARE(reader->text(QAccessible::Name), QStringLiteral("Graphical Level Display"));
        QCOMPARE(reader->text(QAccessible::Value), QString::fromUtf8("45.2 dBµV"));
    }

    void onlyANumberFits()
    {
        ControlBench bench;
        ControlBench::PlainText("/RX1/Text", "12");
        VCBar bar(nullptr, "x", 17, 6);
        QVERIFY(!bar.SetPeak_ValuePath("/RX1/Text"));
        QVERIFY(bar.sizeHint().height() >= 20);
    }
};

QTEST_MAIN(TestBar)
#include "tst_bar.moc"
