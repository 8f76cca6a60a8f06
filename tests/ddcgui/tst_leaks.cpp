#include <malloc.h>

#include <QPixmapCache>

#include "ddcgui.h"
#include "ddcguimain.h"
#include "guibase/guibasehost.h"
#include "tests/ddcgui/panelfixture.h"

namespace {

const int repetitions = 1000;
const int warmUp = 100;

// What the toolkit's caches take at most, however often a thing is repeated. One forgotten object of
// 32 bytes in each repetition, less than the smallest there is of a value, a timer or a widget, is
// more. A cache fills up once; what is forgotten adds up in every round, so that the best one counts.
const qint64 cacheBytes = 32000;
const int rounds = 3;

const char* const hookedPath = "/ADMINISTRATION/SERVERVALUESHOOKED";

// What is alive and can be counted from outside.
struct Alive
{
    int values = 0;
    int observers = 0;
    int topLevels = 0;
    int clientObservers = 0;
    qint64 heap = 0;  // bytes in use; 0 under a sanitizer's allocator, which looks for leaks itself
};

Alive Count(const TestClient& client)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QPixmapCache::clear();
    Alive alive;
    alive.values = ValueHost::CountValues();
    for (ValueBase* value : ValueHost::ValuesBelow(QString()))
        alive.observers += value->CountObservers();
    alive.topLevels = int(QApplication::topLevelWidgets().size());
    alive.clientObservers = client.CountObservers();
    alive.heap = qint64(mallinfo2().uordblks);
    return alive;
}

// Repeats `once` and checks that nothing stays.
void CheckRepetitions(const TestClient& client, std::function<void()> once)
{
    for (int i = 0; i < warmUp; ++i)
        once();
    qint64 grown = cacheBytes + 1;
    for (int round = 0; round < rounds && grown > cacheBytes; ++round) {
        const Alive before = Count(client);
        for (int i = 0; i < repetitions; ++i)
            once();
        const Alive after = Count(client);
        QCOMPARE(after.values, before.values);
        QCOMPARE(after.observers, before.observers);
        QCOMPARE(after.topLevels, before.topLevels);
        QCOMPARE(after.clientObservers, before.clientObservers);
        grown = after.heap - before.heap;
        qInfo("heap after %d repetitions: %+lld bytes", repetitions, static_cast<long long>(grown));
    }
    QVERIFY2(grown <= cacheBytes, qPrintable(QString("%1 bytes stayed").arg(grown)));
}

}  // namespace

class tst_Leaks : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        BaseHost::SetTraceMask(0);
        QString error;
        QVERIFY2(
            StartupHost::LoadConfigurationText(
                "Name = 'RxTest'\n[AdditionalDlls.DDCGUI.Config]\nValuePath = '/RX1'\nDdcName = 'DDC1'\n",
                "test", &error),
            qPrintable(error));
    }
    void cleanup() { StartupHost::ClearConfiguration(); }

    void thousandCreationsAndDestructionsOfThePluginLeaveNothing()
    {
        TestTree tree;
        TestClient client;
        tree.AddDevice();
        tree.AddChannel("/RX1/DDC/DDC1");
        CheckRepetitions(client, [&] {
            ARDestroy(ARCreate(L"RxTest\\AdditionalDlls\\DDCGUI\\Config"));
            client.calls.clear();
        });
    }

    void thousandRunningWindowsLeaveNothing()
    {
        TestTree tree;
        TestClient client;
        tree.AddDevice();
        tree.AddChannel("/RX1/DDC/DDC1");
        TestTree::AddBool(hookedPath, true);
        CheckRepetitions(client, [&] {
            IDllInstance* instance = ARCreate(L"RxTest\\AdditionalDlls\\DDCGUI\\Config");
            client.Tell(CC_CONNECTED);
            client.Tell(CC_HOOKS_SERVED);
            QVERIFY(GuiBaseHost::MainWidget()->isVisible());
            ARDestroy(instance);
            client.calls.clear();
            QCoreApplication::processEvents();
        });
    }

    void thousandBindingsOfAPanelLeaveNothing()
    {
        PanelFixture fixture;
        BaseHost::SetTraceMask(0);
        TestClient client;
        fixture.tree.AddChannel("/RX1/DDC/DDC1");
        fixture.tree.AddChannel("/RX1/DDC/DDC2");
        DdcGuiFfm& panel = fixture.Make("DDC1");
        int turn = 0;
        CheckRepetitions(client, [&] {
            panel.ConnectVtValuesToControls(++turn % 2 ? "DDC1" : "DDC2");
            QCoreApplication::processEvents();
        });
    }

    void everyTimedOutConnectionLeavesItsBoxOnPurposeAndNothingElse()
    {
        const int timeOuts = 20;
        TestTree tree;
        TestClient client;
        ReceiverCommonHost::SetConnectionTimeout(1);
        const int before = int(QApplication::topLevelWidgets().size());
        ModalAnswers answers([](QWidget* window) { window->hide(); });
        for (int i = 1; i <= timeOuts; ++i) {
            IDllInstance* instance = ARCreate(L"RxTest\\AdditionalDlls\\DDCGUI\\Config");
            QTRY_COMPARE(answers.count, i);
            ARDestroy(instance);
        }
        ReceiverCommonHost::SetConnectionTimeout(60000);
        int boxes = 0;
        for (QWidget* widget : QApplication::topLevelWidgets())
            boxes += widget->windowTitle() == "Connection failed";
        QCOMPARE(boxes, timeOuts);
        QCOMPARE(int(QApplication::topLevelWidgets().size()), before + timeOuts);
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->windowTitle() == "Connection failed")
                delete widget;
    }

    void everyRefusedTextValueStaysOnPurposeAndIsHeldByItsPointer()
    {
        TestTree tree;
        TestTree::AddBool("/D/Taken", true);
        QVector<TextValue*> freeStanding;
        for (int i = 0; i < repetitions; ++i) {
            ValuePtr<TextValue> pointer;
            QVERIFY(pointer.AttachOrCreate("/D/Taken"));
            QCOMPARE(pointer.value->CountObservers(), 1);
            freeStanding.append(pointer.value);
        }
        for (TextValue* value : freeStanding)
            QCOMPARE(value->CountObservers(), 0);
        QCOMPARE(ValueHost::CountValues(), 1);
        qDeleteAll(freeStanding);
    }
};

DDCGUI_TEST_MAIN(tst_Leaks)
#include "tst_leaks.moc"
