#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMetaType>
#include <QPointer>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <memory>

#include "receivercommon/rxdatarateconverter.h"
#include "recordertoolbar/vordatoolbarcontroller.h"
#include "valueframework/iobserver.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"
#include "valueframework/valueselection.h"

using receiver::vorda::VordaToolbarController;

namespace {

const int patienceMs = 60000;
const QString device = QStringLiteral("/RX1");
const QString channelPath = QStringLiteral("/RX1/DDC/DDC3");
const QString warning =
    QStringLiteral("Recording will produce no data as current frequency not within valid range!");

ValueBase* MakeBool(const QString& path, bool content)
{
    ValueDescription description;
    description.type = ValueType::Bool;
    return ValueHost::Create(path, description, content);
}

ValueSelection* MakeRecording(int key)
{
    ValueDescription description;
    description.type = ValueType::Selection;
    description.items = {SelectionItem(0, "On", 0), SelectionItem(1, "Off", 0)};
    return dynamic_cast<ValueSelection*>(
        ValueHost::Create(channelPath + QStringLiteral("/ChannelRecording"), description, key));
}

ValueSelection* MakeBandwidth(int key)
{
    ValueDescription description;
    description.type = ValueType::Selection;
    description.items = {SelectionItem(0, "15 kHz", 15e3), SelectionItem(1, "1 MHz", 1e6)};
    return dynamic_cast<ValueSelection*>(
        ValueHost::Create(channelPath + QStringLiteral("/Bandwidth"), description, key));
}

std::shared_ptr<VordaCommon::IDataRateConverter> Converter()
{
    return std::make_shared<RxCommon::RxDataRateConverter>(RECEIVERTYPE_DDC,
                                                           RxCommon::RxDataRateConverter::INTERFACE_LAN);
}

// Notes what was written, and answers as a driver would.
class Recorder : public IObserver
{
public:
    void Update(Observable* subject, TChangeCode code) override
    {
        if (code == CC_VALUE)
            m_Keys.append(dynamic_cast<ValueSelection*>(subject)->GetCurrentKey());
    }
    QList<int> m_Keys;
};

}  // namespace

class TestRecorderToolBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { ValueHost::CreateTree(); }
    void cleanup()
    {
        m_Controller.reset();
        m_Row.reset();
        if (Tree::Instance())
            ValueHost::DestroyTree();
    }

    void aChannelCanBeRecordedWhereItsRecorderIsAvailable_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("content");
        QTest::addColumn<TValueState>("state");
        QTest::addColumn<bool>("possible");
        const QString available = channelPath + QStringLiteral("/RecorderAvailable");
        QTest::newRow("available") << available << true << VS_USABLE << true;
        QTest::newRow("not available") << available << false << VS_USABLE << false;
        QTest::newRow("another channel's") << "/RX1/DDC/DDC1/RecorderAvailable" << true << VS_USABLE << false;
        QTest::newRow("the driver is away") << available << true << VS_STALE << false;
        QTest::newRow("not served") << available << true << VS_NOT_AVAILABLE << false;
    }

    void aChannelCanBeRecordedWhereItsRecorderIsAvailable()
    {
        QFETCH(QString, path);
        QFETCH(bool, content);
        QFETCH(TValueState, state);
        QFETCH(bool, possible);
        ValueHost::SetState(*MakeBool(path, content), state);
        QCOMPARE(VordaToolbarController::IsVordaConnectionPossible(device, 3), possible);
    }

    void withoutTheValueOrTheTreeNothingCanBeRecorded()
    {
        QVERIFY(!VordaToolbarController::IsVordaConnectionPossible(device, 3));
        ValueDescription text;
        ValueHost::Create(channelPath + QStringLiteral("/RecorderAvailable"), text, QStringLiteral("true"));
        QVERIFY(!VordaToolbarController::IsVordaConnectionPossible(device, 3));
        ValueHost::DestroyTree();
        QVERIFY(!VordaToolbarController::IsVordaConnectionPossible(device, 3));
    }

    void theToolBarIsRealAndNamed()
    {
        QToolBar* const bar = Start();
        QVERIFY(bar);
        QCOMPARE(bar->accessibleName(), QStringLiteral("Recorder"));
        for (const char* name : {"VordaRecord", "VordaStop"}) {
            QAction* const action = Action(name);
            QVERIFY(action);
            QVERIFY(!action->icon().isNull());
            QVERIFY(!action->toolTip().isEmpty());
            QWidget* const button = bar->widgetForAction(action);
            QVERIFY(button->focusPolicy() & Qt::TabFocus);
            QCOMPARE(button->accessibleName(), action->text());
        }
        QCOMPARE(m_Controller->m_DDCName, QStringLiteral("DDC3"));
    }

    void recordAndStopAreOfferedAsTheChannelStands()
    {
        ValueSelection* const recording = MakeRecording(1);
        Start();
        QVERIFY(!Action("VordaRecord")->isEnabled());  // until the panel enables the bar
        m_Controller->enableVordaToolbar(true);
        QVERIFY(Action("VordaRecord")->isEnabled());
        QVERIFY(!Action("VordaRecord")->isChecked());
        QVERIFY(!Action("VordaStop")->isEnabled());
        recording->SelectKey(0, nullptr);
        QVERIFY(!Action("VordaRecord")->isEnabled());
        QVERIFY(Action("VordaRecord")->isChecked());
        QVERIFY(Action("VordaStop")->isEnabled());
        m_Controller->enableVordaToolbar(false);
        QVERIFY(!Action("VordaStop")->isEnabled());
    }

    void nothingIsOfferedWhileTheChannelCannotBeRecorded()
    {
        ValueSelection* const recording = MakeRecording(1);
        Start();
        m_Controller->enableVordaToolbar(true);
        ValueHost::SetState(*recording, VS_NOT_AVAILABLE);
        QVERIFY(!Action("VordaRecord")->isEnabled());
        ValueHost::SetState(*recording, VS_USABLE);
        QVERIFY(Action("VordaRecord")->isEnabled());
        Tree::Instance()->DeleteValue(recording->GetPathName());
        QVERIFY(!Action("VordaRecord")->isEnabled());
        MakeRecording(1);
        QTRY_VERIFY_WITH_TIMEOUT(Action("VordaRecord")->isEnabled(), patienceMs);
    }

    void recordAndStopWriteTheChannelsRecording()
    {
        ValueSelection* const recording = MakeRecording(1);
        Recorder recorder;
        Start();
        recording->AddObserver(&recorder);
        m_Controller->enableVordaToolbar(true);
        Action("VordaRecord")->trigger();
        QCOMPARE(recording->GetCurrentKey(), 0);
        Action("VordaStop")->trigger();
        QCOMPARE(recording->GetCurrentKey(), 1);
        QCOMPARE(recorder.m_Keys, QList<int>({0, 1}));
    }

    void recordAndStopWorkFromTheKeyboard()
    {
        ValueSelection* const recording = MakeRecording(1);
        QToolBar* const bar = Start();
        m_Controller->enableVordaToolbar(true);
        Show(bar);
        QTest::keyClick(bar->widgetForAction(Action("VordaRecord")), Qt::Key_Space);
        QCOMPARE(recording->GetCurrentKey(), 0);
        QTest::keyClick(bar->widgetForAction(Action("VordaStop")), Qt::Key_Space);
        QCOMPARE(recording->GetCurrentKey(), 1);
    }

    void withoutTheFlagThereIsNoRecordAndNoStop()
    {
        Start(VordaToolbarController::ACTION_CONFIGURE);
        QVERIFY(!Action("VordaRecord"));
        QVERIFY(!Action("VordaStop"));
        m_Controller->enableVordaToolbar(true);
        QVERIFY(Child<QLabel>("VordaDataRate"));
    }

    void aRefusedRecordingSaysWhy()
    {
        ValueSelection* const recording = MakeRecording(1);
        Start();
        m_Controller->enableVordaToolbar(true);
        ValueHost::SetMirrored(*recording, true);
        Action("VordaRecord")->trigger();
        WriteStatus status = ValueHost::Status(*recording);
        status.pending = true;
        ValueHost::SetStatus(*recording, status);
        QVERIFY(Status()->toolTip().isEmpty());
        status.pending = false;
        status.answer = WriteStatus::Refused;
        status.reason = QStringLiteral("The disk is full");
        ValueHost::SetStatus(*recording, status);
        QCOMPARE(Status()->toolTip(), QStringLiteral("The disk is full"));
        m_Controller->hideStatusIcon();
        ValueHost::SetState(*recording, VS_STALE);  // an old answer does not come back
        QVERIFY(Status()->toolTip().isEmpty());
    }

    void theDataRateFollowsTheBandwidth()
    {
        ValueSelection* const bandwidth = MakeBandwidth(1);
        Start();
        QLabel* const rate = Child<QLabel>("VordaDataRate");
        QCOMPARE(rate->text(), QStringLiteral("–"));
        m_Controller->setDDCBandwidthValuePath(channelPath + QStringLiteral("/Bandwidth"));
        QCOMPARE(rate->text(), QStringLiteral("5.3 MB/s"));
        bandwidth->SelectKey(0, nullptr);
        QCOMPARE(rate->text(), QStringLiteral("178 kB/s"));
        QVERIFY(rate->accessibleDescription().contains(rate->text()));
        Tree::Instance()->DeleteValue(bandwidth->GetPathName());
        QCOMPARE(rate->text(), QStringLiteral("–"));
    }

    void theDataRateComesWithABandwidthThatComesLater()
    {
        Start();
        m_Controller->setDDCBandwidthValuePath(channelPath + QStringLiteral("/Bandwidth"));
        MakeBandwidth(1);
        QTRY_COMPARE_WITH_TIMEOUT(Child<QLabel>("VordaDataRate")->text(), QStringLiteral("5.3 MB/s"),
                                  patienceMs);
    }

    void withoutAConverterTheDataRateIsUnknown()
    {
        MakeBandwidth(1);
        m_Controller = std::make_unique<VordaToolbarController>(nullptr, device, 3, nullptr,
                                                                VordaToolbarController::ACTION_RECORD);
        m_Controller->setDDCBandwidthValuePath(channelPath + QStringLiteral("/Bandwidth"));
        QCOMPARE(Child<QLabel>("VordaDataRate")->text(), QStringLiteral("–"));
    }

    void aWarningShowsAnIconWithItsText()
    {
        QToolBar* const bar = Start();
        Show(bar);
        QVERIFY(Status()->icon().isNull());
        const QImage before = bar->grab().toImage();
        m_Controller->showStatusWarning(warning);
        QVERIFY(!Status()->icon().isNull());
        QCOMPARE(Status()->toolTip(), warning);
        QCOMPARE(Status()->accessibleDescription(), warning);
        QVERIFY(Status()->isEnabled());
        QVERIFY(Status()->focusPolicy() & Qt::TabFocus);
        QVERIFY(bar->grab().toImage() != before);
    }

    void hidingTheWarningDoesNotMoveTheLayout()
    {
        QToolBar* const bar = Start();
        Show(bar);
        const QSize barSize = bar->sizeHint();
        const QRect place = Status()->geometry();
        m_Controller->showStatusWarning(warning);
        QCOMPARE(bar->sizeHint(), barSize);
        m_Controller->hideStatusIcon();
        m_Controller->hideStatusIcon();
        QVERIFY(Status()->icon().isNull());
        QVERIFY(Status()->toolTip().isEmpty());
        QVERIFY(Status()->accessibleDescription().isEmpty());
        QCOMPARE(bar->sizeHint(), barSize);
        QCOMPARE(Status()->geometry(), place);
        QVERIFY(Status()->isVisible());
    }

    void theDataRateDoesNotMoveTheLayout()
    {
        ValueSelection* const bandwidth = MakeBandwidth(0);
        QToolBar* const bar = Start();
        m_Controller->setDDCBandwidthValuePath(channelPath + QStringLiteral("/Bandwidth"));
        const QSize size = bar->sizeHint();
        bandwidth->SelectKey(1, nullptr);
        QCOMPARE(bar->sizeHint(), size);
        Tree::Instance()->DeleteValue(bandwidth->GetPathName());
        QCOMPARE(bar->sizeHint(), size);
    }

    void theToolBarMayGoBeforeTheController()
    {
        ValueSelection* const recording = MakeRecording(1);
        ValueSelection* const bandwidth = MakeBandwidth(1);
        Show(Start());
        m_Controller->setDDCBandwidthValuePath(channelPath + QStringLiteral("/Bandwidth"));
        m_Row.reset();  // took the bar with it
        QVERIFY(!m_Controller->getToolbar());
        recording->SelectKey(0, nullptr);
        bandwidth->SelectKey(0, nullptr);
        m_Controller->enableVordaToolbar(true);
        m_Controller->showStatusWarning(warning);
        m_Controller->hideStatusIcon();
    }

    void aToolBarWithoutAParentGoesWithItsController()
    {
        const QPointer<QWidget> bar = Start();
        m_Controller.reset();
        QVERIFY(!bar);
    }

    void aDestroyedControllerLeavesItsValues()
    {
        ValueSelection* const recording = MakeRecording(1);
        ValueSelection* const bandwidth = MakeBandwidth(1);
        Start();
        m_Controller->setDDCBandwidthValuePath(channelPath + QStringLiteral("/Bandwidth"));
        m_Controller.reset();
        QCOMPARE(recording->CountObservers(), 0);
        QCOMPARE(bandwidth->CountObservers(), 0);
    }

    void aChannelWithoutANumberIsPassedOn()
    {
        m_Controller = std::make_unique<VordaToolbarController>(nullptr, device, 0, Converter(),
                                                                VordaToolbarController::ACTION_RECORD);
        QCOMPARE(m_Controller->m_DDCName, QStringLiteral("DDC0"));
    }

    void theStatesOfItsSignalsAreKnownTypes()
    {
        Start();
        QVERIFY(QMetaType::fromName("VordaGlobal::ChannelAvailableState").isValid());
        QVERIFY(QMetaType::fromName("VordaGlobal::DevicesAvailableState").isValid());
    }

private:
    QToolBar* Start(VordaToolbarController::enUserAction action = VordaToolbarController::ACTION_RECORD)
    {
        m_Controller = std::make_unique<VordaToolbarController>(nullptr, device, 3, Converter(), action);
        return qobject_cast<QToolBar*>(m_Controller->getToolbar());
    }

    void Show(QToolBar* bar)
    {
        m_Row = std::make_unique<QWidget>();
        QHBoxLayout* const layout = new QHBoxLayout(m_Row.get());
        layout->addWidget(new QLabel);
        layout->addWidget(bar);
        m_Row->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_Row.get(), patienceMs));
    }

    template <class T>
    T* Child(const char* name) const
    {
        return m_Controller->getToolbar()->findChild<T*>(QLatin1String(name));
    }

    QAction* Action(const char* name) const { return Child<QAction>(name); }
    QToolButton* Status() const { return Child<QToolButton>("VordaStatus"); }

    std::unique_ptr<VordaToolbarController> m_Controller;
    std::unique_ptr<QWidget> m_Row;
};

QTEST_MAIN(TestRecorderToolBar)
#include "tst_recordertoolbar.moc"
