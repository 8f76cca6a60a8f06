// The panels give many controls fixed widths. In the workbench's face every text that is met there
// has to fit; in a wider face the controls cut it and show it whole in the tool tip.

#include <QLabel>
#include <QStyleFactory>
#include <QStyleOptionFrame>

#include "controlbench.h"
#include "valuecontrols/vccheckbox.h"
#include "valuecontrols/vclineedit.h"

class TestFixedWidths : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(UseWorkbenchFace(), "the package fonts-roboto-unhinted is not installed");
        QApplication::setStyle(QStyleFactory::create("Fusion"));
    }

    void labelsFit_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("bold");
        QTest::addColumn<int>("width");
        QTest::newRow("range caption") << "Range:" << false << 35;
        QTest::newRow("mode caption") << "Mode:" << false << 30;
        QTest::newRow("channel name") << "DDC1" << true << 40;
        QTest::newRow("main channel name") << "MAIN" << true << 40;
        QTest::newRow("channel name, narrow") << "DDC1" << true << 35;
        QTest::newRow("quality caption") << "Quality" << false << 40;
        QTest::newRow("elevation caption") << "Elevation" << false << 45;
        QTest::newRow("azimuth caption") << "Azimuth" << false << 40;
        QTest::newRow("field strength caption") << "FieldStrength" << false << 70;
        QTest::newRow("balance caption") << "Audio Balance" << false << 70;
        QTest::newRow("valid range") << "2999.5 MHz - 3000.5 MHz" << false << 180;
    }

    void labelsFit()
    {
        QFETCH(QString, text);
        QFETCH(bool, bold);
        QFETCH(int, width);
        QLabel label(text);
        QFont font = label.font();
        font.setBold(bold);
        label.setFont(font);
        QVERIFY2(label.sizeHint().width() <= width, qPrintable(QString::number(label.sizeHint().width())));
    }

    void editsFit_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("points");
        QTest::addColumn<int>("width");
        QTest::newRow("frequency") << "98 500 000 Hz" << 8 << 100;
        QTest::newRow("highest frequency") << "40 000 000 000 Hz" << 8 << 100;
        QTest::newRow("frequency with decimals") << "6 000 000 000.5 Hz" << 8 << 100;
        QTest::newRow("quality") << "100 %" << 9 << 40;
        QTest::newRow("elevation") << QString::fromUtf8("-89.9 °") << 9 << 45;
        QTest::newRow("azimuth") << QString::fromUtf8("359.9 °") << 9 << 80;
        QTest::newRow("field strength") << QString::fromUtf8("-120.5 dBµV/m") << 9 << 90;
        QTest::newRow("no field strength") << QString::fromUtf8("--- dBµV/m") << 9 << 70;
    }

    void editsFit()
    {
        QFETCH(QString, text);
        QFETCH(int, points);
        QFETCH(int, width);
        VCLineEdit edit(nullptr, "x", VCLineEdit::NUMBER);
        QFont font = edit.font();
        font.setPointSize(points);
        edit.setFont(font);
        edit.ensurePolished();
        QStyleOptionFrame option;
        option.initFrom(&edit);
        option.rect = QRect(0, 0, width, 24);
        option.lineWidth = edit.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &edit);
        option.state |= QStyle::State_Sunken;
        const int room =
            edit.style()->subElementRect(QStyle::SE_LineEditContents, &option, &edit).width() - 4;
        const int needed = edit.fontMetrics().horizontalAdvance(text);
        QVERIFY2(needed <= room, qPrintable(QStringLiteral("%1 of %2").arg(needed).arg(room)));
    }

    void boxesFit_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("width");
        QTest::newRow("couple frequency") << "Couple Frequency" << 120;
        QTest::newRow("couple demodulation") << "Couple Demodulation" << 130;
        QTest::newRow("squelch") << "Use Squelch" << 85;
        QTest::newRow("mute") << "Mute" << 80;
        QTest::newRow("map view") << "Connect to MapView" << 140;
    }

    void boxesFit()
    {
        QFETCH(QString, text);
        QFETCH(int, width);
        VCCheckBox box(nullptr, "x");
        box.SetText(text);
        QVERIFY2(box.sizeHint().width() <= width, qPrintable(QString::number(box.sizeHint().width())));
    }
};

QTEST_MAIN(TestFixedWidths)
#include "tst_fixedwidths.moc"
