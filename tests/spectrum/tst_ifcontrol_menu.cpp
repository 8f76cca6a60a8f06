// The context menu: holds, averaging, peaks, colours, and what can be taken along.

#include <QFileDialog>
#include <QMessageBox>
#include <QSettings>
#include <QSplitter>
#include <QTableWidget>
#include <QTemporaryDir>

#include "spectrum/scantext.h"
#include "spectrum/spectrumhost.h"
#include "tests/spectrum/scanbench.h"

namespace {

QMenu* openMenu(ScanBench& bench)
{
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(50, 50),
                            bench.spectrum().mapToGlobal(QPoint(50, 50)));
    QApplication::sendEvent(&bench.spectrum(), &event);
    return bench.control->findChild<QMenu*>(QStringLiteral("scanMenu"));
}

QAction* actionOf(ScanBench& bench, const char* name)
{
    QMenu* const menu = openMenu(bench);
    return menu ? menu->findChild<QAction*>(QLatin1String(name)) : nullptr;
}

bool choose(ScanBench& bench, const char* name)
{
    QAction* const action = actionOf(bench, name);
    if (!action || !action->isEnabled())
        return false;
    action->trigger();
    openMenu(bench)->close();
    return true;
}

}  // namespace

class TestIfControlMenu : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { UseWorkbenchFace(); }

    void holdsKeepTheHighestAndTheLowest();
    void clearingTheHoldKeepsTheLiveTrace();
    void averagingSettlesOnTheMeanPower();
    void theChoiceMadeIsTicked();
    void thePeakTableListsTheStrongestAndMovesTheCursor();
    void aScanThatEndsTakesItsMenuAndPeakTableAlong();
    void thePaletteChangesTheWaterfall();
    void markersCanBeSetAndRemovedFromTheMenu();
    void fittingTheLevelsWritesARangeAroundTheTrace();
    void theTraceIsCopiedAsCsvWithHeaderAndUnits();
    void anEmptyBinHasAnEmptyLevelInCsv();
    void thePictureIsCopied();
    void thePictureIsSavedAsPng();
    void aPictureThatCannotBeSavedIsSaidAndTheFormerStays();
    void theDialogOffersAName();
    void withoutATraceNothingOfItIsOffered();
    void looksAreKeptBetweenRunsBesideWhatElseIsInTheFile();
    void senselessLooksInTheFileAreAsAtTheFirstStart();
};

void TestIfControlMenu::holdsKeepTheHighestAndTheLowest()
{
    ScanBench bench;
    bench.run();
    QVERIFY(choose(bench, "maxHold"));
    QVERIFY(choose(bench, "minHold"));
    bench.feed(panorama(98.7e6, 60));
    bench.feed(panorama(98.9e6, 50));
    const auto level = [](const ScanFrame* frame, double frequency) {
        return frame ? ScanText::levelAt(*frame, frequency) : -999.0f;
    };
    QCOMPARE(level(bench.scene().maximumHold, 98.7005e6), 60.0f);
    QCOMPARE(level(bench.scene().maximumHold, 98.9005e6), 50.0f);
    QVERIFY(level(bench.scene().minimumHold, 98.7005e6) < 10);
    QVERIFY(level(bench.scene().trace, 98.7005e6) < 10);
    QVERIFY(choose(bench, "maxHold"));
    bench.settle();
    QVERIFY(!bench.scene().maximumHold);
}

void TestIfControlMenu::clearingTheHoldKeepsTheLiveTrace()
{
    ScanBench bench;
    bench.run();
    QVERIFY(!choose(bench, "clearHold"));
    QVERIFY(choose(bench, "maxHold"));
    bench.feed(panorama(98.7e6, 60));
    bench.feed(panorama(98.9e6, 50));
    QVERIFY(choose(bench, "clearHold"));
    QVERIFY(bench.parts().trace());
    bench.feed(panorama(98.9e6, 50));
    QVERIFY(ScanText::levelAt(*bench.scene().maximumHold, 98.7005e6) < 10);
}

void TestIfControlMenu::averagingSettlesOnTheMeanPower()
{
    ScanBench bench;
    bench.run();
    QVERIFY(choose(bench, "average16"));
    for (int i = 0; i < 400; ++i)
        bench.server.sendFrame(panorama(98.7e6, i % 2 ? 60 : 40));
    QTRY_COMPARE_WITH_TIMEOUT(int(bench.parts().stream.received()), 401, ScanBench::waitMs);
    bench.settle();
    const double mean = 10 * std::log10((1e6 + 1e4) / 2);
    const double level = double(ScanText::levelAt(*bench.scene().trace, 98.7005e6));
    QVERIFY2(std::fabs(level - mean) < 0.6, qPrintable(QString::number(level)));
    QVERIFY(bench.scene().noticeText.contains(QStringLiteral("16")));
}

void TestIfControlMenu::theChoiceMadeIsTicked()
{
    ScanBench bench;
    bench.run();
    QVERIFY(actionOf(bench, "average0")->isChecked());
    QVERIFY(choose(bench, "average4"));
    QVERIFY(actionOf(bench, "average4")->isChecked());
    QVERIFY(!actionOf(bench, "average0")->isChecked());
    QVERIFY(choose(bench, "maxHold"));
    QVERIFY(actionOf(bench, "maxHold")->isChecked());
    QVERIFY(!actionOf(bench, "minHold")->isChecked());
}

void TestIfControlMenu::thePeakTableListsTheStrongestAndMovesTheCursor()
{
    ScanBench bench;
    bench.run();
    QVERIFY(choose(bench, "peakTable"));
    auto* const table = bench.control->findChild<QTableWidget*>();
    QVERIFY(table && table->isVisible());
    QTRY_VERIFY(table->rowCount() >= 1);
    QVERIFY2(table->item(0, 0)->text().startsWith(QStringLiteral("98.700")),
             qPrintable(table->item(0, 0)->text()));
    QVERIFY(table->item(0, 1)->text().startsWith(QStringLiteral("60.")));
    emit table->cellClicked(0, 0);
    QTRY_VERIFY(bench.scene().cursorVisible);
    QVERIFY(std::fabs(bench.scene().cursorFrequency - 98.7005e6) < 1000);
}

void TestIfControlMenu::aScanThatEndsTakesItsMenuAndPeakTableAlong()
{
    QPointer<QTableWidget> table;
    QPointer<QMenu> menu;
    {
        ScanBench bench;
        bench.run();
        QVERIFY(choose(bench, "peakTable"));
        table = bench.control->findChild<QTableWidget*>();
        menu = openMenu(bench);
        QVERIFY(table && menu);
    }
    QVERIFY(!table && !menu);
}

void TestIfControlMenu::thePaletteChangesTheWaterfall()
{
    ScanBench bench;
    bench.run();
    for (int i = 0; i < 30; ++i)
        bench.feed(panorama());
    const QImage before = bench.waterfall().grab().toImage();
    QVERIFY(choose(bench, "palette2"));
    bench.settle();
    const QImage after = bench.waterfall().grab().toImage();
    QVERIFY(before != after);
    for (int x = 0; x < after.width(); x += 7) {
        const QColor color = after.pixelColor(x, 15);
        QVERIFY(color.red() == color.green() && color.green() == color.blue());
    }
}

void TestIfControlMenu::markersCanBeSetAndRemovedFromTheMenu()
{
    ScanBench bench;
    bench.run();
    QVERIFY(choose(bench, "addMarker"));
    QVERIFY(choose(bench, "addDelta"));
    QCOMPARE(bench.parts().markers.count(), 2);
    QVERIFY(choose(bench, "removeMarker"));
    QCOMPARE(bench.parts().markers.count(), 1);
    QVERIFY(choose(bench, "clearMarkers"));
    QCOMPARE(bench.parts().markers.count(), 0);
}

void TestIfControlMenu::fittingTheLevelsWritesARangeAroundTheTrace()
{
    ScanBench bench;
    bench.run();
    QVERIFY(choose(bench, "fitLevels"));
    const double top = ScanBench::number(QStringLiteral("/GUICOMMON/IF_LEVELMAXIMUM"));
    const double bottom = ScanBench::number(QStringLiteral("/GUICOMMON/IF_LEVELMINIMUM"));
    QCOMPARE(top, 70.0);
    QVERIFY(bottom < 0 && bottom > -15);
}

void TestIfControlMenu::theTraceIsCopiedAsCsvWithHeaderAndUnits()
{
    ScanBench bench;
    bench.run();
    QVERIFY(choose(bench, "copyTrace"));
    const QStringList lines = QGuiApplication::clipboard()->text().split(QLatin1Char('\n'));
    QVERIFY2(lines[0].startsWith(QStringLiteral("# Spectrum of 2023-11-14T22:13:20")), qPrintable(lines[0]));
    QVERIFY(lines[0].contains(QStringLiteral("resolution bandwidth 2000 Hz")));
    QCOMPARE(lines[1], QStringLiteral("Frequency in Hz,Level in dBµV"));
    QCOMPARE(int(lines.size()), 2000 + 3);
    QCOMPARE(lines[2].section(QLatin1Char(','), 0, 0), QStringLiteral("97500500.0"));
    QVERIFY(lines.contains(QStringLiteral("98700500.0,60.00")));
    QCOMPARE(lines.last(), QString());
}

void TestIfControlMenu::anEmptyBinHasAnEmptyLevelInCsv()
{
    ScanBench bench;
    bench.run();
    Link::ScanData data = panorama();
    const float bad = std::numeric_limits<float>::quiet_NaN();
    data.levels.replace(0, sizeof bad, Link::packLevels(&bad, 1));
    bench.feed(data);
    QVERIFY(bench.parts().traceAsCsv().contains(QStringLiteral("\n97500500.0,\n97501500.0,")));
}

void TestIfControlMenu::thePictureIsCopied()
{
    ScanBench bench;
    bench.run();
    QVERIFY(choose(bench, "copyPicture"));
    const QImage image = QGuiApplication::clipboard()->image();
    QCOMPARE(image.size(), bench.control->size() * bench.control->devicePixelRatioF());
}

void TestIfControlMenu::thePictureIsSavedAsPng()
{
    QTemporaryDir folder;
    ScanBench bench;
    bench.run();
    const QString name = folder.filePath(QStringLiteral("a picture.png"));
    QString problem;
    QVERIFY2(bench.parts().savePicture(name, &problem), qPrintable(problem));
    QCOMPARE(QImage(name).size(), bench.control->size() * bench.control->devicePixelRatioF());
}

void TestIfControlMenu::aPictureThatCannotBeSavedIsSaidAndTheFormerStays()
{
    QTemporaryDir folder;
    ScanBench bench;
    bench.run();
    QString problem;
    const QString name = folder.filePath(QStringLiteral("not there/picture.png"));
    QVERIFY(!bench.parts().savePicture(name, &problem));
    QVERIFY(problem.contains(name));
    QVERIFY(problem.contains(QStringLiteral("Choose another folder")));
    QVERIFY(choose(bench, "savePicture"));
    auto* const dialog = bench.control->findChild<QFileDialog*>();
    QVERIFY(dialog);
    emit dialog->fileSelected(name);
    auto* const box = bench.control->findChild<QMessageBox*>();
    QVERIFY(box && box->text().contains(name));
    box->close();
    dialog->close();
}

void TestIfControlMenu::theDialogOffersAName()
{
    ScanBench bench;
    bench.run();
    QVERIFY(choose(bench, "savePicture"));
    auto* const dialog = bench.control->findChild<QFileDialog*>();
    QVERIFY(dialog);
    QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
    QVERIFY(dialog->selectedFiles().value(0).contains(QStringLiteral("spectrum-")));
    dialog->close();
}

void TestIfControlMenu::withoutATraceNothingOfItIsOffered()
{
    ScanBench bench;
    bench.makeValues();
    bench.show();
    for (const char* name : {"copyTrace", "peakTable", "fitLevels"})
        QVERIFY2(!actionOf(bench, name)->isEnabled(), name);
    QCOMPARE(bench.parts().traceAsCsv(), QString());
}

void TestIfControlMenu::looksAreKeptBetweenRunsBesideWhatElseIsInTheFile()
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("looks.ini"));
    {
        QSettings other(file, QSettings::IniFormat);
        other.setValue(QStringLiteral("Window/size"), 7);
    }
    SpectrumHost::SetSettingsFile(file);
    {
        ScanBench bench;
        bench.run();
        QVERIFY(choose(bench, "palette1"));
        QVERIFY(choose(bench, "average4"));
        bench.parts().splitter->setSizes({300, 100});
    }
    {
        ScanBench bench;
        bench.run();
        QCOMPARE(bench.parts().palette(), ScanPalette::Ocean);
        QCOMPARE(bench.parts().averaging(), 4);
        QVERIFY(bench.spectrum().height() > 2.5 * bench.waterfall().height());
    }
    SpectrumHost::SetSettingsFile(QString());
    QCOMPARE(QSettings(file, QSettings::IniFormat).value(QStringLiteral("Window/size")).toInt(), 7);
    ScanBench bench;
    QCOMPARE(bench.parts().palette(), ScanPalette::Thermal);
}

void TestIfControlMenu::senselessLooksInTheFileAreAsAtTheFirstStart()
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("looks.ini"));
    {
        QSettings bad(file, QSettings::IniFormat);
        bad.setValue(QStringLiteral("Scan-IFCONTROL/Palette"), 99);
        bad.setValue(QStringLiteral("Scan-IFCONTROL/Averaging"), QStringLiteral("many"));
        bad.setValue(QStringLiteral("Scan-IFCONTROL/Splitter"), QStringLiteral("no state"));
    }
    SpectrumHost::SetSettingsFile(file);
    ScanBench bench;
    bench.run();
    SpectrumHost::SetSettingsFile(QString());
    QCOMPARE(bench.parts().palette(), ScanPalette::Thermal);
    QCOMPARE(bench.parts().averaging(), 0);
    QVERIFY(bench.waterfall().height() >= 60);
}

QTEST_MAIN(TestIfControlMenu)
#include "tst_ifcontrol_menu.moc"
