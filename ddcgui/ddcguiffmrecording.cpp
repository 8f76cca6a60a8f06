// The panel's recordings: what an audio recording needs, and the handover of pulse recordings.
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include "ddcguiffm.h"
#include "reportgenerator/recording.h"
#include "valuetree/valuepaths.h"

namespace {

const char* const ddcMark = "DDC";
const int notRecordingKey = 1;  // of AudioRecording
const int notRecordingIndex = 1;
const int noAudioModeKey = 0;  // of AUDIOMODE

}  // namespace

void DdcGuiFfm::HandleAudioRecording()
{
    if (m_AudioRecordingValue.value->GetCurrentKey() == notRecordingKey)
        return;

    // The checks ask the operator; until he answers, the value or the panel may be gone.
    const QPointer<DdcGuiFfm> self(this);
    const bool possible = m_Name.contains(QLatin1String(ddcMark)) ? ValidateDDCRecording()
                                                                  : ValidateReceiverRecording(m_DevicePath);
    if (!possible && self && m_AudioRecordingValue.value)
        m_AudioRecordingValue.value->SelectIndex(notRecordingIndex, this);
}

bool DdcGuiFfm::ValidateDDCRecording()
{
    ValuePtr<BoolValue> audioMode;
    ValuePtr<BoolValue> audioMute;
    audioMode.Attach(m_DdcPath + ValuePaths::audioMode);
    audioMute.Attach(m_DdcPath + ValuePaths::audioMute);
    if (!audioMode.value || !audioMute.value)
        return false;
    if (!audioMute.value->GetValue())
        return true;

    if (!AskToUnmute())
        return false;
    if (audioMode.value)
        audioMode.value->SetValue(true, this);
    if (audioMute.value)
        audioMute.value->SetValue(false, this);
    return true;
}

bool DdcGuiFfm::ValidateReceiverRecording(const QString& devicePath)
{
    using ValuePaths::KeyPath;
    const QString audio = devicePath + ValuePaths::audio;
    ValuePtr<ValueSelection> mode;
    ValuePtr<ValueSelection> source;
    ValuePtr<ValueSelection> audioMode;
    ValuePtr<ValueSelection> channelMute;
    ValuePtr<BoolValue> recordValid;
    mode.Attach(KeyPath(devicePath, ValueKeys::RECORDREPLAY, ValueKeys::MODE));
    source.Attach(KeyPath(devicePath, ValueKeys::RECORDREPLAY, ValueKeys::SOURCE));
    audioMode.Attach(audio + ValueKeys::AUDIOMODE);
    channelMute.Attach(audio + ValueKeys::CHANNELMUTE);
    recordValid.Attach(audio + ValueKeys::AUDRECORDVALID);
    if (!audioMode.value && !channelMute.value)
        return false;
    if (recordValid.value && recordValid.value->GetValue())
        return true;

    // A receiver without an audio mode is one where none is selected.
    const QPointer<DdcGuiFfm> self(this);
    if (audioMode.value && audioMode.value->GetCurrentKey() != noAudioModeKey) {
        const bool muted = channelMute.value && channelMute.value->GetCurrentText() == QLatin1String("On");
        if (!muted || AskToUnmute()) {
            if (muted && channelMute.value)
                channelMute.value->SelectText(QLatin1String("Off"), this);
            if (recordValid.value)
                recordValid.value->SetValue(true, this);
            return true;
        }
    } else {
        WarnNoAudioMode();
    }
    if (!self)
        return false;

    if (mode.value && mode.value->GetCurrentText() == QLatin1String("Record") && source.value &&
        source.value->GetCurrentText().contains(QLatin1String("Audio")))
        mode.value->SelectText(QLatin1String("Stop"), this);
    return false;
}

// "No" is the default, and whatever closes the box otherwise counts as "No". False also when the
// panel went away meanwhile.
bool DdcGuiFfm::AskToUnmute()
{
    const QPointer<DdcGuiFfm> self(this);
    const QPointer<QMessageBox> box(new QMessageBox(
        QMessageBox::Information, tr("Record Confirmation"),
        tr("Record not possible. Audio MUTE is on.\nWould you like to turn it off and proceed with the "
           "recording?"),
        QMessageBox::NoButton, this));
    QPushButton* yes = box->addButton(tr("Yes"), QMessageBox::YesRole);
    QPushButton* no = box->addButton(tr("No"), QMessageBox::NoRole);
    box->setDefaultButton(no);
    box->exec();
    const bool confirmed = box && box->clickedButton() == yes;
    delete box.data();
    return confirmed && self;
}

void DdcGuiFfm::WarnNoAudioMode()
{
    const QPointer<QMessageBox> box(new QMessageBox(
        QMessageBox::Warning, tr("Record Failed"),
        tr("Record not possible. Audio mode is not selected.\nOpen 'Audio Configuration...' from "
           "Configuration menu.\nThen select the desired sample rate."),
        QMessageBox::Ok, this));
    box->exec();
    delete box.data();
}

void DdcGuiFfm::HandOverPdw()
{
    const QString location = m_PdwPath.value->GetValue();
    if (location.isEmpty())
        return;

    REPORTGENERATOR::Recording recording;
    const QDateTime now = QDateTime::currentDateTime();
    recording.GetMetadata()->SetStartTime(now);
    recording.GetMetadata()->SetStopTime(now);
    recording.GetMetadata()->GetDetail()->SetRecordData(QLatin1String("PDW"));

    ValuePtr<FloatValue> frequencyValue;
    ValuePtr<ValueSelection> bandwidthValue;
    frequencyValue.Attach(m_DdcPath + ValuePaths::frequency);
    bandwidthValue.Attach(m_DdcPath + ValuePaths::bandwidth);
    double frequency = 0;
    double bandwidth = 0;
    if (frequencyValue.value && bandwidthValue.value) {
        frequency = frequencyValue.value->GetValue();
        bandwidth = bandwidthValue.value->GetCurrentNumber();
    }
    // The whole bandwidth on each side: generous, so that a pulse at the edge is inside.
    recording.GetMetadata()->GetDetail()->SetStartFrequency(frequency - bandwidth);
    recording.GetMetadata()->GetDetail()->SetStopFrequency(frequency + bandwidth);
    recording.SetURL(location);

    if (m_HandoverPath.value)
        m_HandoverPath.value->SetValue(recording.GetXmlString(), nullptr);
    if (m_PdwPath.value)
        m_PdwPath.value->SetValue(QString(), nullptr);  // so that the next one is seen as new
}
