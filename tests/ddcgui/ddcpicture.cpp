// Builds the main window with its panel on a filled tree, in the face that the workbench sets, and
// saves pictures: for looking at them, not a test.
//   ddcpicture FOLDER [LANGUAGE]
#include <QDir>
#include <cstdio>

#include "ddcguiffm.h"
#include "ddcguimain.h"
#include "ddcselectiondlg.h"
#include "startup/translationcenter.h"
#include "tests/ddcgui/modulefixture.h"

namespace {

bool Save(QWidget& widget, const QString& file)
{
    widget.show();
    if (!QTest::qWaitForWindowExposed(&widget))
        return false;
    QCoreApplication::processEvents();
    return widget.grab().save(file);
}

void FillTree(TestTree& tree)
{
    tree.AddDevice();
    for (const char* name : {"DDC1", "DDC2", "DDC3"})
        tree.AddChannel(QString("/RX1/DDC/") + name);
    tree.AddChannel("/RX1/DDC/DDC4", TestTree::PulseAnalysis);
    TestTree::AddBool("/RX1/DDC/DDC3/RecorderAvailable", true);
    TestTree::Text("/RX1/DDC/DDC2/ConnectedClient").SetValue("station-7", nullptr);
    TestTree::Float("/RX1/DDC/DDC1/Frequency").SetValue(98500000, nullptr);
}

}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    KestApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle("fusion");
    application.setFont(QFont("Roboto Condensed", 9));
    if (argc < 2) {
        std::fprintf(stderr, "ddcpicture: no folder given; say where the pictures go: ddcpicture FOLDER\n");
        return 2;
    }
    const QDir folder(argv[1]);
    if (argc > 2)
        StartupHost::SetTranslations(RX_BIN_DIR "/translations", argv[2]);

    TranslationCenter::Instance()->Register("DDCGui");  // as the plug-in's instance does

    bool saved = true;
    TestTree tree;
    FillTree(tree);
    for (const char* name : {"DDC1", "DDC3", "DDC4"}) {
        DdcGuiMain window("DDCGUI");
        window.Start("/RX1", "caption", name);
        window.findChild<DdcGuiFfm*>()->SetFrqCoupled(true);
        saved = Save(window, folder.filePath(QString("main-%1.png").arg(name))) && saved;
    }
    DdcGuiFfm narrow(nullptr, nullptr, "MAIN", "/RX1", "/RX1/DDC/DDC1", false);
    narrow.ConnectVtValuesToControls("MAIN");
    narrow.resize(200, 420);
    saved = Save(narrow, folder.filePath("panel-narrow.png")) && saved;
    DdcSelectionDlg dialog(nullptr, "Receiver 1 DDCs", "/RX1");
    dialog.setAttribute(Qt::WA_DeleteOnClose, false);
    saved = Save(dialog, folder.filePath("dialog.png")) && saved;
    if (!saved)
        std::fprintf(stderr, "ddcpicture: cannot save in %s; is the folder there and writable?\n", argv[1]);
    return saved ? 0 : 2;
}
