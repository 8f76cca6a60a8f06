#include "ddcifspectrum.h"

#include "spectrum/coloritemmapadapter.h"
#include "spectrum/vcifcontrol.h"
#include "spectrum/xaxiswidget.h"
#include "valueframework/vtclientcenter.h"
#include "valuetree/valuepaths.h"

namespace {

const int minimumControlSide = 400;  // pixels, in both directions
const unsigned levelTicks = 4;
const unsigned trace = 0;         // the only one of the control
const unsigned passbandItem = 1;  // among the coloured things in the picture
const char* const loopback = "127.0.0.1";

// Where the panorama comes from; a driver on this machine where there is no client to ask.
QString ScanbufferAddress()
{
    IVtClient* client = VtClientCenter::Instance()->GetVtClient(QLatin1String(ValuePaths::driverClient));
    return client ? client->GetServerAddress() : QString::fromLatin1(loopback);
}

}  // namespace

DdcIfSpectrum::DdcIfSpectrum(QWidget* parent, const QString& valuePath, const QString& ddcPath)
    : Splitter(Qt::Vertical, parent), m_pIfControl(nullptr), m_ValuePath(valuePath), m_DdcPath(ddcPath)
{
    setOpaqueResize(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    CreateIfControl();
}

void DdcIfSpectrum::CreateIfControl()
{
    m_pIfControl = new glWidgets::VCIFControl(this, "IF Panorama", false, true, QLatin1String("IFCONTROL"),
                                              true, levelTicks, true);
    m_pIfControl->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_pIfControl->setMinimumSize(minimumControlSide, minimumControlSide);
    if (XAxisWidget* axis = qobject_cast<XAxisWidget*>(m_pIfControl->GetXAxis()))
        axis->ApplyLeftRightButtons(false);
}

void DdcIfSpectrum::BindValuePaths()
{
    using ValuePaths::KeyPath;
    const QString common = ValueKeys::GUICOMMON;
    const QString frequency = m_DdcPath + ValuePaths::frequency;

    m_pIfControl->SetScanbufferIPAddress(ScanbufferAddress());

    m_pIfControl->SetZStop_ValuePath(trace, KeyPath(common, ValueKeys::IF_LEVELMAXIMUM));
    m_pIfControl->SetZStart_ValuePath(trace, KeyPath(common, ValueKeys::IF_LEVELMINIMUM));
    m_pIfControl->SetHalfWidth_ValuePath(KeyPath(common, ValueKeys::IFPANHALFWIDTH), false);

    m_pIfControl->SetMapping_ValuePath(KeyPath(m_ValuePath, ValueKeys::IFMAPPING));
    m_pIfControl->SetCenter_ValuePath(KeyPath(m_ValuePath, ValueKeys::FREQUENCY));

    // The passband stays around the channel's frequency: both follow the same value.
    m_pIfControl->SetFrequency_ValuePath(frequency);
    m_pIfControl->SetAudioBandWidthCenter_ValuePath(frequency, true);
    m_pIfControl->SetThreshold_ValuePath(trace, m_DdcPath + ValuePaths::squelchValue);
    m_pIfControl->SetAudioBandWidth_ValuePath(m_DdcPath + ValuePaths::bandwidth);
    m_pIfControl->GetColorItemMapAdapter4IF()->SetDemodulation_ValuePath(
        passbandItem, m_DdcPath + ValuePaths::demodulation);

    m_pIfControl->SetXStart_ValuePath(KeyPath(common, ValueKeys::IFPANSTARTFREQ));
    m_pIfControl->SetXStop_ValuePath(KeyPath(common, ValueKeys::IFPANSTOPFREQ));
}
