#include "controlbench.h"
#include "valuecontrols/vcbutton.h"

namespace {

// A picture of one colour.
QPixmap Filled(Qt::GlobalColor color)
{
    QPixmap picture(16, 16);
    picture.fill(color);
    return picture;
}

QColor Middle(const QIcon& icon)
{
    return icon.pixmap(QSize(16, 16), 1.0).toImage().pixelColor(8, 2);
}

const char* const redPicture[] = {"16 4 1 1",         "r c #ff0000",      "rrrrrrrrrrrrrrrr",
                                  "rrrrrrrrrrrrrrrr", "rrrrrrrrrrrrrrrr", "rrrrrrrrrrrrrrrr"};

}  // namespace

class ButtonBench : public ControlBench
{
public:
    ButtonBench()
        : value(Selection("/RX1/DDC/DDC1/AudioRecording", {{0, "On", 0}, {1, "Off", 0}, {5, "Wait", 0}}, 1)),
          button(*new VCButton(nullptr, "AudioRecording", false, 1))
    {
        button.SetSpecialPicture(1, Filled(Qt::blue));
        button.SetSpecialPicture(0, Filled(Qt::green), true);
        button.SetDefaultPicture(redPicture);
        button.SetValueSelection_ValuePath(value.GetPathName());
        Show(button);
    }

    ValueSelection& value;
    VCButton& button;
};

class TestButton : public QObject
{
    Q_OBJECT

private slots:
    void eachKeyHasItsPictureAndOthersTheDefault()
    {
        ButtonBench bench;
        QCOMPARE(Middle(bench.button.icon()), QColor(Qt::blue));
        QVERIFY(!bench.button.isChecked());
        bench.value.SelectKey(0, nullptr);
        QTRY_COMPARE(Middle(bench.button.icon()), QColor(Qt::green));
        QVERIFY(bench.button.isChecked());
        bench.value.SelectKey(5, nullptr);
        QTRY_COMPARE(Middle(bench.button.icon()), QColor(Qt::red));
        QVERIFY(!bench.button.isChecked());
    }

    void aClickSelectsTheNextItemAndWraps()
    {
        ButtonBench bench;
        QTest::mouseClick(&bench.button, Qt::LeftButton);
        QCOMPARE(bench.value.GetCurrentKey(), 5);
        QTest::mouseClick(&bench.button, Qt::LeftButton);
        QCOMPARE(bench.value.GetCurrentKey(), 0);
        bench.button.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bench.button, Qt::Key_Space);
        QCOMPARE(bench.value.GetCurrentKey(), 1);
    }

    void aRefusalBringsThePictureBack()
    {
        ButtonBench bench;
        bench.value.SelectKey(0, nullptr);
        Authority driver(bench.value);
        QTest::mouseClick(&bench.button, Qt::LeftButton);
        QCOMPARE(driver.Written(), QVariantList{1});
        driver.Refuse("recorder is busy");
        QTRY_COMPARE(Middle(bench.button.icon()), QColor(Qt::green));
        QVERIFY(bench.button.isChecked());
        QVERIFY(NoteText(bench.Window()).contains("recorder is busy"));
    }

    void aClickWithoutAPathChangesNothing()
    {
        VCButton button(nullptr, "x");
        button.SetSpecialPicture(0, Filled(Qt::green), true);
        button.SetSpecialPicture(1, Filled(Qt::blue));
        const qint64 before = button.icon().cacheKey();
        button.click();
        QCOMPARE(button.icon().cacheKey(), before);
    }

    void aSelectionWithoutItemsIsLeftAlone()
    {
        ControlBench bench;
        ValueSelection& value = ControlBench::Selection("/RX1/Empty", {}, 0);
        VCButton button(nullptr, "x");
        QVERIFY(button.SetValueSelection_ValuePath("/RX1/Empty"));
        button.click();
        QCOMPARE(value.GetCurrentKey(), -1);
    }

    void theTextIsTheNameForThoseWhoDoNotSeeThePicture()
    {
        ButtonBench bench;
        QCOMPARE(bench.button.text(), QStringLiteral("AudioRecording"));
        QCOMPARE(bench.button.accessibleDescription(), QStringLiteral("Off"));
    }

    void picturesStaySharpAtTwoPixelsPerUnit()
    {
        ButtonBench bench;
        QImage checks(16, 16, QImage::Format_ARGB32);
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 16; ++x)
                checks.setPixelColor(x, y, (x + y) % 2 ? Qt::black : Qt::white);
        }
        bench.button.SetSpecialPicture(1, QPixmap::fromImage(checks));
        const QImage large = bench.button.icon().pixmap(QSize(16, 16), 2.0).toImage();
        QCOMPARE(large.size(), QSize(32, 32));
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x)
                QCOMPARE(large.pixelColor(x, y), checks.pixelColor(x / 2, y / 2));
        }
    }
};

QTEST_MAIN(TestButton)
#include "tst_button.moc"
