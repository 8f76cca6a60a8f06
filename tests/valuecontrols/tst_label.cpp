#include <QTranslator>

#include "controlbench.h"
#include "valuecontrols/vclabel.h"

namespace {

class ModeTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return qstrcmp(context, "Modes") == 0 && qstrcmp(text, "Replay") == 0 ? QStringLiteral("Wiedergabe")
                                                                              : QString();
    }
    bool isEmpty() const override { return false; }
};

QString ToolTipOf(QWidget& control)
{
    QHelpEvent help(QEvent::ToolTip, QPoint(2, 2), control.mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(&control, &help);
    return ShownToolTip();
}

}  // namespace

class TestLabel : public QObject
{
    Q_OBJECT

private slots:
    void anyValueIsShownAsText()
    {
        ControlBench bench;
        ControlBench::Frequency();
        ControlBench::PlainText("/RX1/Client", "station7");
        ControlBench::Bool("/RX1/Mute", true);
        ControlBench::Demodulation(2);
        VCLabel label(nullptr, nullptr, 0);
        QVERIFY(label.SetText_ValuePath("/RX1/DDC/DDC1/Frequency", false));
        QCOMPARE(label.text(), QStringLiteral("98 500 000 Hz"));
        QVERIFY(label.SetText_ValuePath("/RX1/Client", false));
        QCOMPARE(label.text(), QStringLiteral("station7"));
        QVERIFY(label.SetText_ValuePath("/RX1/Mute", false));
        QCOMPARE(label.text(), QStringLiteral("On"));
        QVERIFY(label.SetText_ValuePath("/RX1/DDC/DDC1/Demodulation", true));
        QCOMPARE(label.text(), QStringLiteral("USB"));
        QVERIFY(!label.SetText_ValuePath("/RX1/None", true));
    }

    void aSelectionIsTranslatedOnlyWhereAsked()
    {
        ModeTranslator translator;
        QCoreApplication::installTranslator(&translator);
        {
            ControlBench bench;
            ValueSelection& mode = ControlBench::Selection("/RX1/Mode", {{1, "FFM", 0}, {3, "Replay", 0}}, 3);
            mode.SetTranslationNamespace("Modes", nullptr);
            VCLabel label(nullptr, nullptr);
            label.SetText_ValuePath("/RX1/Mode", true);
            QCOMPARE(label.text(), QStringLiteral("Wiedergabe"));
            label.SetText_ValuePath("/RX1/Mode", false);
            QCOMPARE(label.text(), QStringLiteral("Replay"));
        }
        QCoreApplication::removeTranslator(&translator);
    }

    void aTextThatDoesNotFitIsCutAndWholeInTheToolTip()
    {
        ControlBench bench;
        VCLabel label(nullptr, nullptr);
        label.SetText("a text much longer than the label is wide");
        label.setFixedWidth(60);
        bench.Show(label);
        QCOMPARE(label.text(), QStringLiteral("a text much longer than the label is wide"));
        QVERIFY(ToolTipOf(label).contains("a text much longer"));
        label.SetText("short");
        QVERIFY(!ToolTipOf(label).contains("short"));
    }

    void markupInAValueIsShownAsItStands()
    {
        ControlBench bench;
        ControlBench::PlainText("/RX1/Client", "<b>x</b>");
        VCLabel label(nullptr, nullptr);
        label.SetText_ValuePath("/RX1/Client", false);
        QCOMPARE(label.textFormat(), Qt::PlainText);
        QCOMPARE(label.text(), QStringLiteral("<b>x</b>"));
    }

    void aNameIsTheCaption()
    {
        VCLabel named(nullptr, "DDC1");
        QCOMPARE(named.text(), QStringLiteral("DDC1"));
        VCLabel nameless(nullptr, nullptr, 0);
        QVERIFY(nameless.text().isEmpty());
    }
};

QTEST_MAIN(TestLabel)
#include "tst_label.moc"
