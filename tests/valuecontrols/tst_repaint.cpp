#include <QElapsedTimer>

#include "controlbench.h"
#include "valuecontrols/vcbar.h"
#include "valuecontrols/vclabel.h"
#include "valuecontrols/vclineedit.h"
#include "valuecontrols/vcnumericfloatspin.h"

namespace {

// Counts what a control is asked to paint.
class PaintCount : public QObject
{
public:
    explicit PaintCount(QWidget& widget) { widget.installEventFilter(this); }
    int Count() const { return m_Count; }
    void Restart() { m_Count = 0; }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_Count += event->type() == QEvent::Paint;
        return false;
    }

private:
    int m_Count = 0;
};

const qint64 feedMs = 1500;

// Changes the value a thousand times a second; returns how long it took in seconds.
double Feed(ValueBase& value)
{
    QElapsedTimer clock;
    clock.start();
    int fed = 0;
    while (clock.elapsed() < feedMs) {
        while (fed < clock.elapsed())
            ValueHost::SetContent(value, 10.0 + (++fed % 997) * 0.1, nullptr);
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    return double(clock.elapsed()) / 1000;
}

}  // namespace

class TestRepaint : public QObject
{
    Q_OBJECT

private slots:
    void atMostThirtyPaintsASecondWhileFedAThousandTimes_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("bar") << 0;
        QTest::newRow("label") << 1;
        QTest::newRow("line edit") << 2;
        QTest::newRow("spin") << 3;
    }

    void atMostThirtyPaintsASecondWhileFedAThousandTimes()
    {
        QFETCH(int, kind);
        ControlBench bench;
        ValueBase& value = ControlBench::Float("/RX1/Level", 10, 0, 0, "dB");
        QWidget* const control = Make(kind);
        bench.Show(*control);
        QTRY_VERIFY(control->isVisible());
        QCoreApplication::processEvents();
        PaintCount paints(*control);
        const double seconds = Feed(value);
        QVERIFY2(paints.Count() >= 3, qPrintable(QString::number(paints.Count())));
        QVERIFY2(paints.Count() <= 30 * seconds + 1,
                 qPrintable(QStringLiteral("%1 paints in %2 s").arg(paints.Count()).arg(seconds)));
    }

    void nothingIsPaintedWhileHiddenAndTheNewestIsShownAfterwards()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Float("/RX1/Level", 10, 0, 0, "dB");
        QWidget* const label = Make(1);
        QWidget* const bar = Make(0);
        bench.Show(*bar);
        bench.Show(*label);
        QCoreApplication::processEvents();
        const QImage before = bar->grab().toImage();
        label->hide();
        bar->hide();
        QCoreApplication::processEvents();
        PaintCount paints(*bar);
        PaintCount labelPaints(*label);
        Feed(value);
        QCOMPARE(paints.Count(), 0);
        QCOMPARE(labelPaints.Count(), 0);
        ValueHost::SetContent(value, 99.0, nullptr);
        bar->show();
        label->show();
        QTRY_VERIFY(paints.Count() > 0);
        QVERIFY(bar->grab().toImage() != before);
        QTRY_COMPARE(static_cast<VCLabel*>(label)->text(), QStringLiteral("99 dB"));
    }

    void aChangeThatMovesNoPixelIsNotPainted()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Float("/RX1/Level", 50, 0, 0, "dB");
        auto* const bar = static_cast<VCBar*>(Make(0));
        bar->SetShowMinMaxInside(false);
        bench.Show(*bar);
        QTRY_VERIFY(bar->isVisible());
        QCoreApplication::processEvents();
        PaintCount paints(*bar);
        for (int round = 0; round < 5; ++round) {
            ValueHost::SetContent(value, 50.0001 + round * 1e-5, nullptr);
            QCoreApplication::processEvents();
        }
        QCOMPARE(paints.Count(), 0);
        ValueHost::SetContent(value, 90.0, nullptr);
        QTRY_COMPARE(paints.Count(), 1);
    }

    void theLastOfManyChangesIsShown()
    {
        ControlBench bench;
        ValueBase& value = ControlBench::Float("/RX1/Level", 0, 0, 0, "dB");
        auto* const label = static_cast<VCLabel*>(Make(1));
        bench.Show(*label);
        for (int round = 1; round <= 500; ++round)
            ValueHost::SetContent(value, double(round), nullptr);
        QTRY_COMPARE(label->text(), QStringLiteral("500 dB"));
    }

private:
    static QWidget* Make(int kind)
    {
        const QString path = "/RX1/Level";
        if (kind == 0) {
            auto* const bar = new VCBar(nullptr, "Level", 17, 6);
            bar->SetStopValue(130);
            bar->SetShowMinMaxInside(true);
            bar->SetShowTextValueInside(true);
            bar->setFixedSize(150, 20);
            bar->SetPeak_ValuePath(path);
            return bar;
        }
        if (kind == 1) {
            auto* const label = new VCLabel(nullptr, nullptr);
            label->SetText_ValuePath(path, false);
            return label;
        }
        if (kind == 2) {
            auto* const edit = new VCLineEdit(nullptr, "Level", VCLineEdit::NUMBER);
            edit->SetText_ValuePath(path);
            return edit;
        }
        auto* const spin = new VCNumericFloatSpin(nullptr, "Level", true);
        spin->SetNumeric_ValuePath(path);
        return spin;
    }
};

QTEST_MAIN(TestRepaint)
#include "tst_repaint.moc"
