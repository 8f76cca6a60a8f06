#include "ddcgui.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <memory>
#include <new>

#include "base/errorhandler.h"
#include "ddcguimain.h"
#include "ddctrace.h"
#include "devicecontrol/guicentral.h"
#include "guibase/guibase.h"
#include "hostplugins.h"
#include "startup/cfgcenter.h"
#include "startup/kestapplication.h"
#include "startup/translationcenter.h"
#include "valueframework/valuedescriptor.h"
#include "valueframework/vtclientcenter.h"
#include "valuetree/valuepaths.h"

namespace {

const int connectWaitMs = 35000;
const unsigned short connectedTraceLine = 134;
const char* const catalogue = "DDCGui";

void RaiseSplash()
{
    if (KestApplication::m_pThis)
        KestApplication::m_pThis->RaiseSplash();
}

void HideSplash()
{
    if (KestApplication::m_pThis)
        KestApplication::m_pThis->HideSplash();
}

}  // namespace

DDCGui::DDCGui(const QString& name)
    : QObject(nullptr),
      IDllInstance(name),
      m_pVtClient(nullptr),
      m_pNode(nullptr),
      m_pMainWindow(nullptr),
      m_pConnectTimer(nullptr),
      m_pWaitBox(nullptr),
      m_pFailedBox(nullptr),
      m_ServerValuesHooked(this),
      m_ConfigKey(name),
      m_bConnected(false),
      m_bHooksRequested(false),
      m_bReserved(false),
      m_bMainStarted(false)
{
    TranslationCenter::Instance()->Register(QLatin1String(catalogue));
    RaiseSplash();
    ReadConfiguration();
    if (!m_pMainWindow)
        CreateMainWindow();
}

DDCGui::~DDCGui()
{
    TranslationCenter::Instance()->Unregister(QLatin1String(catalogue));

    // Only the pair of the own values is released: other plug-ins of the process live on the
    // administration values.
    if (m_pVtClient) {
        m_pVtClient->ReleaseValues(ValuePaths::HookPair(m_ValuePath).toUtf8());
        m_pVtClient->DeleteObserver(this);
        m_pVtClient = nullptr;
    }
    delete m_pWaitBox;
    m_pWaitBox = nullptr;
    delete m_pFailedBox;
    m_pFailedBox = nullptr;
    delete m_pConnectTimer;
    m_pConnectTimer = nullptr;
    delete m_pMainWindow;
    m_pMainWindow = nullptr;
    m_ConnectionState.DisconnectFromTree();
    GuiCentral::Instance()->StoreWidgetSize();
}

void DDCGui::ReadConfiguration()
{
    const std::unique_ptr<ICfg> configuration(
        CfgCenter::Instance()->CreateCfg(m_ConfigKey, HostPlugins::mergedConfiguration, QString()));
    if (!configuration)
        return;
    m_ValuePath = configuration->GetString(QLatin1String("ValuePath"), QString(), "");
    m_DdcName = configuration->GetString(QLatin1String("DdcName"), QString(), "");
    m_Caption = configuration->GetString(QLatin1String("Caption"), QString(), "");
}

void DDCGui::CreateMainWindow()
{
    m_pMainWindow = new DdcGuiMain(m_ConfigKey);
    GuiBase::Instance()->SetMainWidget(m_pMainWindow);
    m_pMainWindow->hide();
    GuiCentral::Instance()->SetApplication(qobject_cast<QApplication*>(QCoreApplication::instance()));
    RaiseSplash();
    StartConnection();
}

void DDCGui::StartConnection()
{
    if (!Tree::Instance())
        return;
    m_bConnected = false;

    m_pWaitBox =
        new QMessageBox(QMessageBox::Question, tr("Connection"),
                        tr("Could not establish a connection to the driver. Do you want to wait longer?"),
                        QMessageBox::Yes | QMessageBox::No);

    m_pConnectTimer = new QTimer(this);
    m_pConnectTimer->setSingleShot(true);
    connect(m_pConnectTimer, SIGNAL(timeout()), this, SLOT(SlotConnectonTimedOut()));
    m_pConnectTimer->start(connectWaitMs);

    m_pNode = ValueDescriptor::CreateNodeAbsolute(m_ValuePath, nullptr);
    m_pVtClient = VtClientCenter::Instance()->GetVtClient(QLatin1String(ValuePaths::driverClient));
    if (m_pVtClient) {
        m_pVtClient->AddObserver(this);
        m_bConnected = m_pVtClient->IsConnected();
    }

    m_ConnectionState.Connect2Tree();
    connect(&m_ConnectionState, SIGNAL(StateChanged()), this, SLOT(SlotConnectionStateChanged()));
    SlotConnectionStateChanged();
}

void DDCGui::SlotConnectonTimedOut()
{
    HideSplash();

    // Nothing of this object is touched after the box: the start of the main window may have closed
    // it, and so may the end of the plug-in.
    if (m_pWaitBox->exec() == QMessageBox::No)
        QCoreApplication::exit(0);
}

void DDCGui::SlotConnectionStateChanged()
{
    if (m_ConnectionState.GetConnected()) {
        if (m_pFailedBox)
            m_pFailedBox->close();
    } else if (m_ConnectionState.GetConnectionTimedout()) {
        delete m_pFailedBox;
        m_pFailedBox = nullptr;
        HideSplash();
        AskOnConnectionFailed();
    }
}

// The texts of this box are not translated, so that a photograph of it can be read anywhere.
void DDCGui::AskOnConnectionFailed()
{
    // Neither kept nor deleted: one box for each time-out stays behind until the process ends.
    QMessageBox* box = new QMessageBox;
    box->setIcon(QMessageBox::Question);
    box->setWindowTitle(QLatin1String("Connection failed"));
    box->setText(QLatin1String("The receiver seems to be unreachable. "));
    box->setInformativeText(QLatin1String("Do you want to.."));
    box->addButton(QLatin1String(" wait longer "), QMessageBox::YesRole);
    QPushButton* exitButton = box->addButton(QLatin1String(" exit the application "), QMessageBox::NoRole);
    box->addButton(QLatin1String(" connect to the simulation "), QMessageBox::ActionRole);
    box->exec();
    if (box->clickedButton() == exitButton)
        QCoreApplication::exit(0);
}

void DDCGui::Update(Observable* subject, TChangeCode code)
{
    switch (code) {
        case CC_DISCONNECTED:
            if (IsClient(subject))
                HandleDisconnected();
            break;
        case CC_CONNECTED:
            if (IsClient(subject))
                HandleConnected();
            break;
        case CC_HOOKS_SERVED:
            if (IsClient(subject))
                HandleHooksServed();
            break;
        case CC_VALUE:
            if (m_ServerValuesHooked.IsSubject(subject) && m_ServerValuesHooked.value->GetValue())
                StartMainWindow();
            break;
        default:
            break;
    }
}

bool DDCGui::IsClient(Observable* subject) const
{
    return m_pVtClient && dynamic_cast<IVtClient*>(subject) == m_pVtClient;
}

void DDCGui::HandleDisconnected()
{
    if (!m_bConnected)
        return;
    ErrorHandler::Instance()->ReportError(tr("No connection to the driver."));
    m_bConnected = false;
}

void DDCGui::HandleConnected()
{
    m_bConnected = true;
    if (!m_pVtClient->IsNodeServed(m_pNode) && !m_bHooksRequested) {
        m_bHooksRequested = true;
        m_pVtClient->HookValues(ValuePaths::administrationHook, QByteArray(""));
        m_pVtClient->HookValues(ValuePaths::HookPair(m_ValuePath).toUtf8(), QByteArray(""));
    }
    m_pVtClient->GetServerAddress();
    m_pVtClient->Flush();
    DdcTrace::Write(QLatin1String("DDCGUI connected to driver"), "ddcgui", connectedTraceLine);
}

void DDCGui::HandleHooksServed()
{
    if (!m_pVtClient->HasServedValues() || !m_bHooksRequested)
        return;
    m_ServerValuesHooked.Attach(QLatin1String(ValuePaths::serverValuesHooked));
    if (m_ServerValuesHooked.value && m_ServerValuesHooked.value->GetValue())
        m_ServerValuesHooked.value->NotifyObservers(CC_VALUE, nullptr);
}

void DDCGui::StartMainWindow()
{
    HideSplash();
    m_pConnectTimer->stop();
    m_pWaitBox->hide();
    if (!m_pMainWindow)
        return;
    if (m_bMainStarted) {
        m_pMainWindow->ReconnectFfmClient();
        return;
    }
    // Set ahead of the start: that runs the selection dialog, and a driver that comes back
    // meanwhile must not bring up a second one.
    m_bMainStarted = true;
    m_pMainWindow->Start(m_ValuePath, m_Caption, m_DdcName);
}

IDllInstance* ARCreate(const wchar_t* name)
{
    return new (std::nothrow) DDCGui(name ? QString::fromWCharArray(name) : QString());
}

void ARDestroy(IDllInstance* instance)
{
    // Through the object's own type; null, and what is not of this library, is left alone.
    delete dynamic_cast<DDCGui*>(instance);
}
