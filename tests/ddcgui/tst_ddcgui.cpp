#include <QHostInfo>
#include <QSplashScreen>

#include "ddcgui.h"
#include "ddcguiffm.h"
#include "ddcguimain.h"
#include "guibase/guibasehost.h"
#include "tests/ddcgui/modulefixture.h"

namespace {

const wchar_t* const configKey = L"RxTest\\AdditionalDlls\\DDCGUI\\Config";
const char* const configuration =
    "Name = 'RxTest'\n"
    "[AdditionalDlls.DDCGUI]\nFileName = 'libddcgui'\n"
    "[AdditionalDlls.DDCGUI.Config]\nValuePath = '/RX1'\nDdcName = 'DDC1'\nCaption = 'caption'\n";
const char* const hookedPath = "/ADMINISTRATION/SERVERVALUESHOOKED";
const int longTimeoutMs = 3600000;

// Counts how often the splash screen is painted: each raising paints it once at once.
class PaintCounter : public QObject
{
public:
    PaintCounter() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<QSplashScreen*>(object))
            ++painted;
        return false;
    }
    int painted = 0;
};

QSplashScreen* SplashScreen()
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (QSplashScreen* splash = qobject_cast<QSplashScreen*>(widget))
            return splash;
    return nullptr;
}

DdcGuiMain* MainWindow()
{
    return qobject_cast<DdcGuiMain*>(GuiBaseHost::MainWidget());
}

// The boxes that are there, shown or not, by their title.
QList<QMessageBox*> Boxes(const QString& title)
{
    QList<QMessageBox*> boxes;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        QMessageBox* box = qobject_cast<QMessageBox*>(widget);
        if (box && box->windowTitle() == title)
            boxes.append(box);
    }
    return boxes;
}

// Runs the application's loop over `act`; 0 when the application was ended by it, 77 when not.
int RunApplication(std::function<void()> act)
{
    QTimer late;
    late.setSingleShot(true);
    QObject::connect(&late, &QTimer::timeout, [] { QCoreApplication::exit(77); });
    QTimer start;
    start.setSingleShot(true);
    QObject::connect(&start, &QTimer::timeout, [&] {
        act();
        late.start(0);
    });
    start.start(0);
    return QCoreApplication::exec();
}

}  // namespace

class tst_DDCGui : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ReceiverCommonHost::SetConnectionTimeout(longTimeoutMs);
        BaseHost::SetTraceMask(0x20);
        BaseHost::SetErrorListener([this](const QString& message) { m_Errors.append(message); });
        m_Errors.clear();
        m_Tree.reset(new TestTree);
        m_Tree->AddDevice();
        m_Tree->AddChannel("/RX1/DDC/DDC1");
        m_Client.reset(new TestClient);
        QString error;
        QVERIFY2(StartupHost::LoadConfigurationText(configuration, "test", &error), qPrintable(error));
    }
    void cleanup()
    {
        Destroy();
        m_Client.reset();
        m_Tree.reset();
        StartupHost::ClearConfiguration();
        BaseHost::SetErrorListener(nullptr);
        qDeleteAll(Boxes("Connection failed"));  // left behind on purpose
        if (SplashScreen())
            SplashScreen()->hide();
    }

    // --- entry and instance -------------------------------------------------------------------
    void destroyingNothingDoesNothing()
    {
        ARDestroy(nullptr);
        IDllInstance foreign("not of this library");
        ARDestroy(&foreign);
        QCOMPARE(foreign.name, QString("not of this library"));
    }

    void createGivesAnInstanceThatCarriesItsNameAndIsFit()
    {
        Create();
        QCOMPARE(m_Instance->name, QString::fromWCharArray(configKey));
        QVERIFY(m_Instance->InstanceQuery());
        m_Instance->InstanceNotifyA();
        m_Instance->InstanceNotifyB();
        IDllInstance* unnamed = ARCreate(nullptr);
        QVERIFY(unnamed);
        QCOMPARE(unnamed->name, QString());
        ARDestroy(unnamed);
    }

    void metaCastAnswersTheClassAndItsTwoInterfaces()
    {
        Create();
        DDCGui* object = Object();
        QVERIFY(object->qt_metacast("DDCGui") == object);
        QVERIFY(object->qt_metacast("IDllInstance") == static_cast<IDllInstance*>(object));
        QVERIFY(object->qt_metacast("IObserver") == static_cast<IObserver*>(object));
        QVERIFY(object->qt_metacast("QObject") == static_cast<QObject*>(object));
        QVERIFY(!object->qt_metacast("Something"));
    }

    void classHasExactlyTwoSlotsInTheirOrderAndNoSignals()
    {
        const QMetaObject& meta = DDCGui::staticMetaObject;
        QStringList methods;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
            methods.append(meta.method(i).methodSignature());
        }
        QCOMPARE(methods, QStringList({"SlotConnectonTimedOut()", "SlotConnectionStateChanged()"}));
    }

    void mainWindowExistsHiddenFromTheStart()
    {
        Create();
        QVERIFY(MainWindow());
        QVERIFY(MainWindow()->isHidden());
        Destroy();
        QVERIFY(!MainWindow());
    }

    void splashScreenIsRaisedTwiceAndHiddenByTheConnectionOnly()
    {
        KestApplication::m_pThis->RaiseSplash();
        QVERIFY(QTest::qWaitForWindowExposed(SplashScreen()));
        QCoreApplication::processEvents();
        PaintCounter counter;
        Create();
        QCOMPARE(counter.painted, 2);
        QVERIFY(SplashScreen()->isVisible());
        m_Client->Tell(CC_CONNECTED);
        QVERIFY(SplashScreen()->isVisible());
        ServeHooks(true);
        QVERIFY(!SplashScreen()->isVisible());
    }

    void missingConfigurationIsEmptyAndNotReported()
    {
        StartupHost::ClearConfiguration();
        Create();
        m_Client->Tell(CC_CONNECTED);
        QVERIFY(m_Client->calls.contains("Hook , []"));
        Destroy();
        QVERIFY(m_Client->calls.contains("Release ,"));
        QCOMPARE(m_Errors, QStringList());
    }

    void destructionReleasesItsOwnHookAndLeavesTheClient()
    {
        Create();
        QCOMPARE(m_Client->CountObservers(), 2);  // the plug-in and the connection watcher
        m_Client->Tell(CC_CONNECTED);
        ServeHooks(true);
        m_Client->calls.clear();
        Destroy();
        QCOMPARE(m_Client->calls, QStringList({"Release /RX1,/RX1"}));
        QCOMPARE(m_Client->CountObservers(), 0);
        QCOMPARE(TestTree::Bool(hookedPath).CountObservers(), 0);
        QCOMPARE(Boxes("Connection").size(), 0);
    }

    // --- waiting ------------------------------------------------------------------------------
    void withoutATreeNothingIsStarted()
    {
        m_Client.reset();
        m_Tree.reset();
        Create();
        QVERIFY(!Timer());
        QCOMPARE(Boxes("Connection").size(), 0);
        QVERIFY(MainWindow()->isHidden());
        Destroy();
        m_Tree.reset(new TestTree);
    }

    void waitIsGuardedByASingleTimerOf35Seconds()
    {
        Create();
        QVERIFY(Timer());
        QVERIFY(Timer()->isSingleShot());
        QVERIFY(Timer()->isActive());
        QCOMPARE(Timer()->interval(), 35000);
    }

    void waitBoxAsksWithItsTextAndAnswerDecides_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("yes waits on") << int(QMessageBox::Yes) << 77;
        QTest::newRow("no ends the application") << int(QMessageBox::No) << 0;
        QTest::newRow("escape is no") << 0 << 0;
    }
    void waitBoxAsksWithItsTextAndAnswerDecides()
    {
        QFETCH(int, button);
        QFETCH(int, exitCode);
        Create();
        ModalAnswers answers([&](QWidget* window) {
            QMessageBox* box = qobject_cast<QMessageBox*>(window);
            QCOMPARE(box->windowTitle(), QString("Connection"));
            QCOMPARE(box->text(), QString("Could not establish a connection to the driver. Do you want to "
                                          "wait longer?"));
            QCOMPARE(box->icon(), QMessageBox::Question);
            QCOMPARE(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
            QVERIFY(!box->parentWidget());
            QVERIFY(!SplashScreen()->isVisible());
            if (button)
                box->button(QMessageBox::StandardButton(button))->click();
            else
                QTest::keyClick(box, Qt::Key_Escape);
        });
        QCOMPARE(RunApplication([&] { LetTimerFire(); }), exitCode);
        QCOMPARE(answers.count, 1);
    }

    void waitBoxAnsweredYesNeverComesBack()
    {
        Create();
        ModalAnswers answers(
            [](QWidget* window) { qobject_cast<QMessageBox*>(window)->button(QMessageBox::Yes)->click(); });
        LetTimerFire();
        QCOMPARE(answers.count, 1);
        QVERIFY(!Timer()->isActive());
        m_Client->Tell(CC_CONNECTED);
        m_Client->Tell(CC_DISCONNECTED);
        QVERIFY(!Timer()->isActive());
        ServeHooks(true);
        QVERIFY(MainWindow()->isVisible());
    }

    void startOfTheMainWindowClosesTheOpenWaitBox()
    {
        Create();
        m_Client->Tell(CC_CONNECTED);
        ModalAnswers answers([&](QWidget* window) {
            ServeHooks(true);
            QVERIFY(window->isHidden());
        });
        QCOMPARE(RunApplication([&] { LetTimerFire(); }), 77);
        QCOMPARE(answers.count, 1);
        QVERIFY(MainWindow()->isVisible());
        QVERIFY(!Timer()->isActive());
    }

    void pluginDestroyedWhileTheWaitBoxIsOpenDoesNoHarm()
    {
        Create();
        ModalAnswers answers([&](QWidget*) { Destroy(); });
        QCOMPARE(RunApplication([&] { LetTimerFire(); }), 77);
        QCOMPARE(answers.count, 1);
    }

    // --- the receiver seems to be unreachable --------------------------------------------------
    void failedBoxOffersThreeWaysAndOnlyTheExitEndsTheApplication_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("wait longer") << Answer::First << 77;
        QTest::newRow("exit the application") << Answer::Second << 0;
        QTest::newRow("connect to the simulation") << Answer::Third << 77;
    }
    void failedBoxOffersThreeWaysAndOnlyTheExitEndsTheApplication()
    {
        QFETCH(Answer, answer);
        QFETCH(int, exitCode);
        const QStringList texts = {" wait longer ", " exit the application ", " connect to the simulation "};
        ReceiverCommonHost::SetConnectionTimeout(1);
        Create();
        bool answered = false;
        ModalAnswers answers([&](QWidget* window) {
            QMessageBox* box = qobject_cast<QMessageBox*>(window);
            QCOMPARE(box->windowTitle(), QString("Connection failed"));
            QCOMPARE(box->text(), QString("The receiver seems to be unreachable. "));
            QCOMPARE(box->informativeText(), QString("Do you want to.."));
            QCOMPARE(box->icon(), QMessageBox::Question);
            QVERIFY(!box->parentWidget());
            QVERIFY(!SplashScreen()->isVisible());
            const QMessageBox::ButtonRole roles[] = {QMessageBox::YesRole, QMessageBox::NoRole,
                                                     QMessageBox::ActionRole};
            QCOMPARE(box->buttons().size(), 3);
            for (QAbstractButton* button : box->buttons())
                QCOMPARE(box->buttonRole(button), roles[texts.indexOf(button->text())]);
            GiveAnswer(box, answer, texts);
            answered = true;
        });
        QCOMPARE(RunApplication([&] { QTRY_VERIFY(answered); }), exitCode);
        QCOMPARE(answers.count, 1);
        QCOMPARE(Boxes("Connection failed").size(), 1);  // neither kept nor deleted
        Destroy();
        QCOMPARE(Boxes("Connection failed").size(), 1);
    }

    void connectionInTimeShowsNoFailedBox()
    {
        Create();
        m_Client->Tell(CC_CONNECTED);
        Call("SlotConnectionStateChanged");
        QCOMPARE(Boxes("Connection failed").size(), 0);
    }

    // --- connecting ---------------------------------------------------------------------------
    void connectionHooksAdministrationAndTheValuePathInThisOrder()
    {
        Create();
        TraceNotes notes;
        m_Client->Tell(CC_CONNECTED);
        QCOMPARE(m_Client->calls, QStringList({"Hook /ADMINISTRATION,/ADMINISTRATION []", "Hook /RX1,/RX1 []",
                                               "GetServerAddress", "Flush"}));
        QCOMPARE(notes.traces,
                 QStringList(
                     {"DDCGUI connected to driver [devicecontrol\\receiver\\common\\ddcgui\\ddcgui:134]"}));
    }

    void connectionIsNotTracedWithoutTheMaskBit()
    {
        Create();
        BaseHost::SetTraceMask(~0x20u);
        TraceNotes notes;
        m_Client->Tell(CC_CONNECTED);
        QCOMPARE(notes.traces, QStringList());
    }

    void hooksAreRequestedAtMostOnce()
    {
        Create();
        for (int i = 0; i < 3; ++i) {
            m_Client->Tell(CC_CONNECTED);
            m_Client->Tell(CC_DISCONNECTED);
        }
        QCOMPARE(m_Client->calls.filter("Hook").size(), 2);
    }

    void nodeThatIsServedAlreadyIsNotHooked()
    {
        Create();
        m_Client->nodeServed = true;
        m_Client->Tell(CC_CONNECTED);
        QCOMPARE(m_Client->calls, QStringList({"GetServerAddress", "Flush"}));
    }

    void flagThatIsTrueWhenTheHooksArriveStartsTheMainWindowAtOnce()
    {
        Create();
        m_Client->Tell(CC_CONNECTED);
        QVERIFY(MainWindow()->isHidden());
        ServeHooks(true);
        QVERIFY(MainWindow()->isVisible());
        QCOMPARE(MainWindow()->windowTitle(), QString("T&K Receiver 1 DDC1"));
        QVERIFY(!Timer()->isActive());
    }

    void flagThatTurnsTrueLaterStartsTheMainWindowThen()
    {
        Create();
        m_Client->Tell(CC_CONNECTED);
        ServeHooks(false);
        QVERIFY(MainWindow()->isHidden());
        TestTree::Bool(hookedPath).SetValue(true, nullptr);
        QVERIFY(MainWindow()->isVisible());
    }

    void flagThatIsMissingOrNoSwitchNeverStartsTheMainWindow()
    {
        Create();
        m_Client->Tell(CC_CONNECTED);
        m_Client->Tell(CC_HOOKS_SERVED);
        QVERIFY(MainWindow()->isHidden());
        TestTree::AddText(hookedPath, "true");
        m_Client->Tell(CC_HOOKS_SERVED);
        QVERIFY(MainWindow()->isHidden());
        QVERIFY(Timer()->isActive());  // the question still comes
    }

    void hooksServedIsIgnoredWhenNothingWasAskedForOrServed()
    {
        Create();
        ServeHooks(true);  // before any hook was requested
        QVERIFY(MainWindow()->isHidden());
        m_Client->Tell(CC_CONNECTED);
        m_Client->servedValues = false;
        m_Client->Tell(CC_HOOKS_SERVED);
        QVERIFY(MainWindow()->isHidden());
        QCOMPARE(TestTree::Bool(hookedPath).CountObservers(), 0);
        m_Client->servedValues = true;
        m_Client->Tell(CC_HOOKS_SERVED);
        QVERIFY(MainWindow()->isVisible());
    }

    void noticesOfOtherSubjectsAreIgnored()
    {
        Create();
        TestTree::AddBool(hookedPath, true);
        BoolValue& other = TestTree::Bool("/RX1/DDC/DDC1/AudioMute");
        for (int code = 0; code < 20; ++code) {
            Object()->Update(&other, TChangeCode(code));
            Object()->Update(nullptr, TChangeCode(code));
        }
        QCOMPARE(m_Client->calls, QStringList());
        QCOMPARE(m_Errors, QStringList());
        QVERIFY(MainWindow()->isHidden());
    }

    void lostDriverIsReportedOnceWithoutADialog()
    {
        Create();
        m_Client->Tell(CC_DISCONNECTED);  // was not connected
        QCOMPARE(m_Errors, QStringList());
        m_Client->Tell(CC_CONNECTED);
        ServeHooks(true);
        m_Client->Tell(CC_DISCONNECTED);
        m_Client->Tell(CC_DISCONNECTED);
        QCOMPARE(m_Errors, QStringList({"No connection to the driver."}));
        QVERIFY(MainWindow()->isVisible());
        QVERIFY(!QApplication::activeModalWidget());
    }

    void secondStartOnlyClaimsTheChannelAgain()
    {
        Create();
        m_Client->Tell(CC_CONNECTED);
        ServeHooks(true);
        DdcGuiFfm* panel = MainWindow()->findChild<DdcGuiFfm*>();
        QVERIFY(panel);
        TextValue& client = TestTree::Text("/RX1/DDC/DDC1/ConnectedClient");
        m_Client->Tell(CC_DISCONNECTED);
        TestTree::Bool(hookedPath).SetValue(false, nullptr);
        client.SetValue(QString(), nullptr);  // the driver freed the channel with the connection
        m_Client->Tell(CC_CONNECTED);
        TestTree::Bool(hookedPath).SetValue(true, nullptr);
        QCOMPARE(client.GetValue(), QHostInfo::localHostName());
        QCOMPARE(MainWindow()->findChildren<DdcGuiFfm*>().size(), 1);
        QCOMPARE(MainWindow()->findChild<DdcGuiFfm*>(), panel);
    }

    void driverThatComesBackWhileTheDialogIsOpenBringsUpNoSecondOne()
    {
        TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").SetValue("other station", nullptr);
        Create();
        m_Client->Tell(CC_CONNECTED);
        ModalAnswers answers([&](QWidget* window) {
            m_Client->Tell(CC_DISCONNECTED);
            TestTree::Bool(hookedPath).SetValue(false, nullptr);
            m_Client->Tell(CC_CONNECTED);
            TestTree::Bool(hookedPath).SetValue(true, nullptr);
            m_Client->Tell(CC_HOOKS_SERVED);
            QVERIFY(window->isVisible());
            window->close();
        });
        QCOMPARE(RunApplication([&] { ServeHooks(true); }), 0);
        QCOMPARE(answers.count, 1);
    }

    void clientThatIsConnectedAlreadyIsTakenAsConnected()
    {
        m_Client->connected = true;
        Create();
        m_Client->Tell(CC_DISCONNECTED);
        QCOMPARE(m_Errors, QStringList({"No connection to the driver."}));
    }

    void withoutAClientTheWaitGoesOnByTheTimer()
    {
        m_Client.reset();
        Create();
        QVERIFY(Timer()->isActive());
        QVERIFY(MainWindow()->isHidden());
        m_Client.reset(new TestClient);  // comes too late for this instance
        m_Client->Tell(CC_CONNECTED);
        QVERIFY(m_Client->calls.isEmpty());
    }

    void pluginDestroyedInTheSelectionDialogDoesNoHarm()
    {
        TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").SetValue("other station", nullptr);
        Create();
        m_Client->Tell(CC_CONNECTED);
        ModalAnswers answers([&](QWidget* window) {
            Destroy();
            window->close();
        });
        ServeHooks(true);
        QCOMPARE(answers.count, 1);
    }

private:
    void Create() { m_Instance = ARCreate(configKey); }
    void Destroy()
    {
        ARDestroy(m_Instance);
        m_Instance = nullptr;
    }
    DDCGui* Object() const { return static_cast<DDCGui*>(m_Instance); }
    QTimer* Timer() const { return Object()->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly); }
    void Call(const char* slot) { QMetaObject::invokeMethod(Object(), slot, Qt::DirectConnection); }

    // As if the 35 seconds had passed; returns when the box was answered.
    void LetTimerFire()
    {
        QPointer<QTimer> timer(Timer());
        bool fired = false;
        connect(timer, &QTimer::timeout, this, [&] { fired = true; });
        timer->start(0);
        QTRY_VERIFY(fired || !timer);
    }

    // The driver answers the hooks: the flag is there now.
    void ServeHooks(bool flag)
    {
        TestTree::AddBool(hookedPath, flag);
        m_Client->Tell(CC_HOOKS_SERVED);
    }

    QScopedPointer<TestTree> m_Tree;
    QScopedPointer<TestClient> m_Client;
    IDllInstance* m_Instance = nullptr;
    QStringList m_Errors;
};

DDCGUI_TEST_MAIN(tst_DDCGui)
#include "tst_ddcgui.moc"
