// The panel towards the host's plug-ins: message-sender client, claim of the channel, audio link.
#include <QHostInfo>
#include <QToolBar>
#include <memory>

#include "ddcguiffm.h"
#include "ddctrace.h"
#include "floatlayout.h"
#include "hostplugins.h"
#include "mshsender.h"
#include "receivercommon/rxconfiguration.h"
#include "startup/cfgcenter.h"
#include "startup/imshclientdll.h"
#include "valuetree/valuepaths.h"

namespace {

enum ReceiverGuiState
{
    Boxed,      // the version that is embedded in a device
    Present,    // the application loads the receiver window's plug-in
    NotPresent  // this plug-in is on its own
};

ReceiverGuiState DetermineReceiverGuiState()
{
    if (RxCommon::Configuration::Instance()->GetBoxedVersion())
        return Boxed;
    ICfg* application = CfgCenter::Instance()->GetAppCfg(HostPlugins::mergedConfiguration);
    ICfg* plugins = application ? application->GetGroup(QLatin1String("AdditionalDlls")) : nullptr;
    if (!plugins)
        return NotPresent;
    int index = 0;
    while (ICfg* entry = plugins->GetChild(index)) {
        if (entry->GetString(QLatin1String("FileName"), QString()) ==
            QLatin1String(HostPlugins::receiverGuiFile))
            return Present;
        ++index;
    }
    return NotPresent;
}

const char* BoolText(bool on)
{
    return on ? "true" : "false";
}

}  // namespace

bool DdcGuiFfm::LoadMshClient()
{
    const QString fileName = QLatin1String(HostPlugins::messageSenderFile);
    IDllInstance* instance =
        CfgCenter::Instance()->CreateDllInstanceByFileName(fileName, QString(), false, false);
    m_pMshClient = dynamic_cast<IMshClientDll*>(instance);
    if (!m_pMshClient)
        DdcTrace::Write(QLatin1String("Not able to load ") + fileName + QLatin1String(" for DDC"),
                        "ddcguiffm", __LINE__);
    return m_pMshClient != nullptr;
}

void DdcGuiFfm::CreateDDCMSHSender()
{
    if (!LoadMshClient())
        return;
    ConfigureMshSender(m_pMshClient, m_Name, false);
    m_pMshClient->SetFrequencyPath(m_DdcPath + ValuePaths::frequency);

    const struct
    {
        const char* tag;
        const char* suffix;
        const char* algorithm;
    } values[] = {
        {"FRQ", ValuePaths::frequency, ""},
        {"BW", ValuePaths::bandwidth, "AdAlgSelectEqualOrBiggerValue"},
        {"DEM", ValuePaths::demodulation, ""},
    };
    for (const auto& published : values)
        m_pMshClient->AddValue(QLatin1String(published.tag), m_DdcPath + published.suffix,
                               QLatin1String(published.algorithm));

    if (!m_pSenderToolBar) {
        CreateSenderToolBar();
        m_pSenderToolBar->hide();
    }
    m_pMshClient->SetToolBar(m_pSenderToolBar, true);
    m_pMshClient->Start();
}

void DdcGuiFfm::LoadAndConfigureMSH()
{
    if (!LoadMshClient())
        return;
    m_pMshClient->SetName(m_Name);
    m_pMshClient->SetApplication(QLatin1String("PulseAnalysis"));
    m_pMshClient->SetGroup(QLatin1String("DDC"));
    m_pMshClient->SetServer(MshServer::LoopbackAddress(), MshServer::port);
    m_pMshClient->SetFlag1(false);
    m_pMshClient->SetFlag2(true);
    m_pMshClient->SetFlag4(true);
    m_pMshClient->SetFlag5(false);
    m_pMshClient->SetPdwPath(m_DdcPath + ValuePaths::pdwPath);
    m_pMshClient->AddValue(QLatin1String("Recording_RDS"), m_DdcPath + ValuePaths::handoverPath, QString());
    if (!m_pSenderToolBar)
        CreateSenderToolBar();
    m_pMshClient->SetToolBar(m_pSenderToolBar, true);
    m_pMshClient->Start();
}

void DdcGuiFfm::CreateSenderToolBar()
{
    m_pSenderToolBar = new QToolBar(QLatin1String("DDC-Bar"), this);
    m_pLayout->addWidget(m_pSenderToolBar);
}

void DdcGuiFfm::ReconnectClient()
{
    // A value that names a client already is another station's claim.
    if (m_ConnectedClient.value && m_ConnectedClient.value->GetValue().isEmpty())
        m_ConnectedClient.value->SetValue(QHostInfo::localHostName(), nullptr);
}

void DdcGuiFfm::ClearConnectedClient()
{
    if (m_ConnectedClient.value)
        m_ConnectedClient.value->SetValue(QString(), nullptr);
}

void DdcGuiFfm::StartAudioLink(const QString& ddcName)
{
    bool localRecorder = false;
    const std::unique_ptr<ICfg> configuration(
        CfgCenter::Instance()->CreateCfg(m_ConfigKey, HostPlugins::mergedConfiguration, QString()));
    if (configuration)
        localRecorder = configuration->GetBool(QLatin1String("LocalRecorder"), false);

    if (isWPU() || ddcName.contains(QLatin1String("SCUP")))
        return;
    // Beside a receiver window only the plug-in of that window makes the sound.
    if (DetermineReceiverGuiState() != NotPresent && !m_ConfigKey.contains(QLatin1String("GUI")))
        return;

    const QString separator = QLatin1String(";");
    const QString arguments = m_DevicePath + separator + ddcName + separator + BoolText(false) + separator +
                              m_DdcPath + separator + BoolText(localRecorder);
    CfgCenter::Instance()->CreateDllInstanceByFileName(QLatin1String(HostPlugins::audioLinkFile), arguments,
                                                       false, false);
}
