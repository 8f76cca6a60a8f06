// The panel's values: binding, notifications, accessors and slots.
#include <QToolButton>

#include "ddcguiffm.h"
#include "ddctrace.h"
#include "frequencyrangevalidator.h"
#include "recordertoolbar/vordatoolbarcontroller.h"
#include "valuecontrols/vcbar.h"
#include "valuecontrols/vcbutton.h"
#include "valuecontrols/vccheckbox.h"
#include "valuecontrols/vccomboboxclassic.h"
#include "valuecontrols/vclabel.h"
#include "valuecontrols/vclineedit.h"
#include "valuecontrols/vcnumericfloatspin.h"
#include "valuecontrols/vcslider.h"
#include "valuetree/valuepaths.h"

namespace {

const char* const ddcMark = "DDC";
const unsigned short validatorTraceLine = 304;
const char* const bandwidthContext = "DemodBandwidth";

typedef bool (*BindFunction)(QWidget* control, const QString& path);

// Makes one kind of function of every control's own operation, so that a table can name them.
template <class Control, bool (Control::*operation)(const QString&)>
bool Bind(QWidget* control, const QString& path)
{
    return (static_cast<Control*>(control)->*operation)(path);
}

}  // namespace

void DdcGuiFfm::ConnectVtValuesToControls(const QString& ddcName)
{
    if (m_bSelectableDdc)
        TakeDdcName(ddcName);
    BindControls();
    AttachValues();
    ReconnectClient();

    // A channel that is chosen at run time starts muted; through the control, so that the value
    // follows and the signal comes.
    if (m_bSelectableDdc && m_pAudioMute && !m_pAudioMute->isChecked())
        m_pAudioMute->click();

    AttachAudioRecording();
    StartAudioLink(ddcName);
    ArmRangeValidator();
}

void DdcGuiFfm::TakeDdcName(const QString& ddcName)
{
    m_Name = ddcName;
    m_DdcPath = ValuePaths::DdcPath(m_DevicePath, ddcName);
    if (VCLabel* label = qobject_cast<VCLabel*>(m_pNameWidget))
        label->SetText(m_Name);
    else if (QToolButton* button = qobject_cast<QToolButton*>(m_pNameWidget))
        button->setText(m_Name);
}

void DdcGuiFfm::BindControls()
{
    using ValuePaths::KeyPath;
    const struct
    {
        QWidget* control;  // null where the panel leaves it out
        BindFunction bind;
        QString path;
    } bindings[] = {
        {m_pCoupleDemodulation, &Bind<VCCheckBox, &VCCheckBox::Set_ValuePath>,
         m_DdcPath + ValuePaths::demodulationCoupled},
        {m_pFrequency, &Bind<VCLineEdit, &VCLineEdit::SetText_ValuePath>, m_DdcPath + ValuePaths::frequency},
        {m_pLevel, &Bind<VCBar, &VCBar::SetPeak_ValuePath>, m_DdcPath + ValuePaths::levelValue},
        {m_pCoupleFrequency, &Bind<VCCheckBox, &VCCheckBox::Set_ValuePath>,
         m_DdcPath + ValuePaths::frequencyCoupled},
        {m_pDemodulation, &Bind<VCComboBoxClassic, &VCComboBoxClassic::SetValueSelection_ValuePath>,
         m_DdcPath + ValuePaths::demodulation},
        {m_pBandwidth, &Bind<VCComboBoxClassic, &VCComboBoxClassic::SetValueSelection_ValuePath>,
         m_DdcPath + ValuePaths::bandwidth},
        {m_pSquelchState, &Bind<VCCheckBox, &VCCheckBox::Set_ValuePath>,
         m_DdcPath + ValuePaths::squelchState},
        {m_pSquelchValue, &Bind<VCNumericFloatSpin, &VCNumericFloatSpin::SetNumeric_ValuePath>,
         m_DdcPath + ValuePaths::squelchValue},
        {m_pAudioMute, &Bind<VCCheckBox, &VCCheckBox::Set_ValuePath>, m_DdcPath + ValuePaths::audioMute},
        {m_pAudioBalance, &Bind<VCSlider, &VCSlider::SetNumeric_ValuePath>,
         m_DdcPath + ValuePaths::audioBalance},
        {m_pAudioRecording, &Bind<VCButton, &VCButton::SetValueSelection_ValuePath>,
         KeyPath(m_DdcPath, ValueKeys::AudioRecording)},
        {m_pIfRecording, &Bind<VCButton, &VCButton::SetValueSelection_ValuePath>,
         KeyPath(m_DdcPath, ValueKeys::IfRecording)},
        {m_pChannelRecording, &Bind<VCButton, &VCButton::SetValueSelection_ValuePath>,
         KeyPath(m_DdcPath, ValueKeys::ChannelRecording)},
        {m_pActivityGeneration, &Bind<VCButton, &VCButton::SetValueSelection_ValuePath>,
         m_DdcPath + ValuePaths::writeDb},
    };
    for (const auto& binding : bindings) {
        // Ahead of the control, so that it shows the items translated from the start; also on a
        // panel where somebody else shows them.
        if (binding.control == m_pBandwidth)
            TranslateBandwidthItems();
        if (!binding.control)
            continue;
        const bool bound = binding.bind(binding.control, binding.path);
        if (!bound && binding.control == m_pActivityGeneration)
            m_pActivityGeneration->hide();
    }
}

void DdcGuiFfm::TranslateBandwidthItems()
{
    ValuePtr<ValueSelection> bandwidth;
    if (bandwidth.Attach(m_DdcPath + ValuePaths::bandwidth))
        bandwidth.value->SetTranslationNamespace(bandwidthContext, nullptr);
}

void DdcGuiFfm::AttachValues()
{
    m_ChannelRecordingValue.Attach(m_DdcPath + ValuePaths::channelRecording);
    m_FrequencyCoupled.Attach(m_DdcPath + ValuePaths::frequencyCoupled);
    m_DemodulationCoupled.Attach(m_DdcPath + ValuePaths::demodulationCoupled);
    m_ConnectedClient.Attach(m_DdcPath + ValuePaths::connectedClient);
    m_AudioMuteValue.Attach(m_DdcPath + ValuePaths::audioMute);
}

void DdcGuiFfm::AttachAudioRecording()
{
    m_AudioRecordingValue.Attach(ValuePaths::KeyPath(m_DdcPath, ValueKeys::AudioRecording));
    if (!m_AudioRecordingValue.value)
        return;
    // First, so that a recording that may not be is taken back before anybody else sees it.
    if (m_Name.contains(QLatin1String(ddcMark)))
        m_AudioRecordingValue.value->MakeFirstObserver(this);
    else if (!m_bSelectableDdc)
        m_AudioRecordingValue.value->DeleteObserver(this);
}

void DdcGuiFfm::ArmRangeValidator()
{
    const bool armed = m_pRangeValidator->Connect(m_DdcPath + ValuePaths::frequency,
                                                  ValuePaths::KeyPath(m_DevicePath, ValueKeys::FREQUENCY),
                                                  ValuePaths::KeyPath(m_DevicePath, ValueKeys::IFPANSPAN));
    if (armed)
        return;
    DdcTrace::Write(QLatin1String("Unable to connect to Value Tree Frequency Values"), "ddcguiffm",
                    validatorTraceLine);
    if (m_pToolbarController)
        m_pToolbarController->hideStatusIcon();
}

void DdcGuiFfm::Update(Observable* subject, TChangeCode code)
{
    if (code == CC_STATE) {
        if (m_ChannelRecordingValue.IsSubject(subject) && m_pChannelRecording)
            m_pChannelRecording->setVisible(m_ChannelRecordingValue.value->GetState() == VS_USABLE);
        return;
    }
    if (code == CC_VALUE) {
        if (m_AudioRecordingValue.IsSubject(subject)) {
            HandleAudioRecording();
            return;
        }
        if (m_DdcMode.IsSubject(subject)) {
            ShowDdcMode();
            return;
        }
        if (m_AudioMuteValue.IsSubject(subject)) {
            Q_EMIT audioMuteChanged();
            return;
        }
    }
    if ((code == CC_VALUE || code == CC_HOOKS_SERVED) && m_PdwPath.IsSubject(subject))
        HandOverPdw();
}

// Without the button's signals: what the tree says must not go back to the tree.
void DdcGuiFfm::ShowDdcMode()
{
    QToolButton* button = qobject_cast<QToolButton*>(m_pNameWidget);
    if (!button)
        return;
    const bool wasBlocked = button->blockSignals(true);
    button->setChecked(m_DdcMode.value->GetCurrentIndex() >= 1);
    button->blockSignals(wasBlocked);
}

bool DdcGuiFfm::GetAudioMute() const
{
    return m_AudioMuteValue.value && m_AudioMuteValue.value->GetValue();
}

void DdcGuiFfm::SetAudioMute(bool mute)
{
    if (m_AudioMuteValue.value)
        m_AudioMuteValue.value->SetValue(mute, nullptr);
}

bool DdcGuiFfm::GetFrqCoupled() const
{
    return m_FrequencyCoupled.value && m_FrequencyCoupled.value->GetValue();
}

void DdcGuiFfm::SetFrqCoupled(bool coupled)
{
    if (m_FrequencyCoupled.value)
        m_FrequencyCoupled.value->SetValue(coupled, nullptr);
}

bool DdcGuiFfm::GetDemCoupled() const
{
    return m_DemodulationCoupled.value && m_DemodulationCoupled.value->GetValue();
}

void DdcGuiFfm::SetDemCoupled(bool coupled)
{
    if (m_DemodulationCoupled.value)
        m_DemodulationCoupled.value->SetValue(coupled, nullptr);
}

void DdcGuiFfm::slotCoupleFrqClicked()
{
    Q_EMIT coupleFrqChanged();
}

void DdcGuiFfm::slotCoupleDemClicked()
{
    Q_EMIT coupleDemChanged();
}

void DdcGuiFfm::slotAudioMuteClicked()
{
    Q_EMIT audioMuteChanged();
}

void DdcGuiFfm::slotDDCModeClicked(bool checked)
{
    if (m_DdcMode.value)
        m_DdcMode.value->SelectIndex(checked ? 1 : 0, nullptr);
}

void DdcGuiFfm::slotFrequencyInRangeChanged(bool inRange)
{
    if (!m_pToolbarController)
        return;
    if (inRange)
        m_pToolbarController->hideStatusIcon();
    else
        m_pToolbarController->showStatusWarning(
            tr("Recording will produce no data as current frequency not within valid range!"));
}
