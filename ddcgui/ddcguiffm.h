#ifndef DDCGUI_DDCGUIFFM_H
#define DDCGUI_DDCGUIFFM_H

#include <QFrame>
#include <QString>

#include "ddcgui_global.h"
#include "valuetree/valueptr.h"

class FloatLayout;
class FrequencyRangeValidator;
class IMshClientDll;
class QToolBar;
class VCBar;
class VCButton;
class VCCheckBox;
class VCComboBoxClassic;
class VCLineEdit;
class VCNumericFloatSpin;
class VCSlider;

namespace receiver {
namespace vorda {
class VordaToolbarController;
}
}  // namespace receiver

// The panel of one receiver channel in fixed-frequency mode: frequency, level, coupling,
// demodulation, squelch, audio, recording. A channel with a "/DDCMode" value (pulse analysis) has a
// mode button in place of its name, and neither audio nor recording controls.
//
// Make it, then ConnectVtValuesToControls once the channel is known. The controls write their values
// by themselves; the panel claims the channel, checks what an audio recording needs, publishes the
// channel through the message-sender client and warns in the recorder's tool bar. A value that the
// tree lacks is never an error: its control stays unbound.
class DDCGUI_EXPORT DdcGuiFfm : public QFrame, public IObserver
{
    Q_OBJECT
public:
    // `devicePath` and `ddcPath` without a trailing "/". `reserved` is not used. With `selectableDdc`
    // the panel serves a channel that is chosen at run time: ConnectVtValuesToControls names it, and
    // it starts muted. The name "MAIN" is the receiver's own channel.
    DdcGuiFfm(QWidget* parent, QWidget* reserved, const QString& name, const QString& devicePath,
              const QString& ddcPath, bool selectableDdc);

    // Gives the channel up.
    ~DdcGuiFfm() override;

    // Whether the channel has a mode of its own (pulse analysis).
    bool isWPU() const;

    // The plug-in's configuration key; decides about the audio link. Set it before the binding.
    void SetConfigKey(const QString& key);

    // Binds every control and value. Binding again moves the panel to another channel.
    void ConnectVtValuesToControls(const QString& ddcName);

    // Claims a channel that nobody holds with this computer's name; gives up the claim.
    void ReconnectClient();
    void ClearConnectedClient();

    // The channel's flags; false, and no write, while the tree has no such value.
    bool GetAudioMute() const;
    void SetAudioMute(bool mute);
    bool GetFrqCoupled() const;
    void SetFrqCoupled(bool coupled);
    bool GetDemCoupled() const;
    void SetDemCoupled(bool coupled);

    void Update(Observable* subject, TChangeCode code) override;

Q_SIGNALS:
    void audioMuteChanged();  // the value changed, or the operator clicked
    void coupleDemChanged();  // the operator clicked
    void coupleFrqChanged();  // the operator clicked

public Q_SLOTS:
    void slotCoupleFrqClicked();
    void slotCoupleDemClicked();
    void slotAudioMuteClicked();
    void slotDDCModeClicked(bool checked);
    void slotFrequencyInRangeChanged(bool inRange);

private:
    Q_DISABLE_COPY(DdcGuiFfm)

    // Groups of controls, in their order in the panel.
    void CreateFreqLevelControls();
    QWidget* CreateModeButton();
    QWidget* CreateNameLabel();
    void CreateLevelBar();
    void CreateCoupledControls();
    void CreateDemodulationControls();
    void CreateAudioControls();
    void CreateRecordControls();
    void CreateVordaControls();
    VCCheckBox* CreateCheckBox(const QString& name, const QString& text, const QString& toolTip,
                               const char* objectName, int minimumWidth);

    // Binding.
    void TakeDdcName(const QString& ddcName);
    void BindControls();
    void TranslateBandwidthItems();
    void AttachValues();
    void AttachAudioRecording();
    void ArmRangeValidator();
    void ShowDdcMode();

    // Recording.
    void HandleAudioRecording();
    bool ValidateDDCRecording();
    bool ValidateReceiverRecording(const QString& devicePath);
    bool AskToUnmute();
    void WarnNoAudioMode();
    void HandOverPdw();

    // Message sender and audio link.
    bool LoadMshClient();
    void CreateDDCMSHSender();
    void LoadAndConfigureMSH();
    void CreateSenderToolBar();
    void StartAudioLink(const QString& ddcName);

    FloatLayout* m_pLayout;
    QWidget* m_pNameWidget;  // a checkable QToolButton where isWPU(), else a VCLabel
    VCLineEdit* m_pFrequency;
    VCBar* m_pLevel;
    VCCheckBox* m_pCoupleFrequency;
    VCCheckBox* m_pCoupleDemodulation;   // null on MAIN and where isWPU()
    VCComboBoxClassic* m_pDemodulation;  // null where isWPU()
    VCComboBoxClassic* m_pBandwidth;
    VCCheckBox* m_pSquelchState;
    VCNumericFloatSpin* m_pSquelchValue;
    VCCheckBox* m_pAudioMute;  // this and the next six: null where isWPU()
    VCSlider* m_pAudioVolume;  // never visible, never bound
    VCSlider* m_pAudioBalance;
    VCButton* m_pAudioRecording;
    VCButton* m_pIfRecording;
    VCButton* m_pChannelRecording;  // hidden until its value can be used
    VCButton* m_pActivityGeneration;
    ValueObservingPtr<TextValue> m_ConnectedClient;
    ValueObservingPtr<ValueSelection> m_ChannelRecordingValue;
    ValueObservingPtr<ValueSelection> m_AudioRecordingValue;
    ValueObservingPtr<BoolValue> m_FrequencyCoupled;
    ValueObservingPtr<BoolValue> m_DemodulationCoupled;
    ValueObservingPtr<BoolValue> m_AudioMuteValue;
    QString m_DevicePath;
    QString m_DdcPath;
    QString m_Name;
    QString m_ConfigKey;
    bool m_bSelectableDdc;
    ValueObservingPtr<ValueSelection> m_DdcMode;
    ValueObservingPtr<TextValue> m_PdwPath;
    ValueObservingPtr<TextValue> m_HandoverPath;
    IMshClientDll* m_pMshClient;  // the host's; null until loaded
    QToolBar* m_pSenderToolBar;
    FrequencyRangeValidator* m_pRangeValidator;
    receiver::vorda::VordaToolbarController* m_pToolbarController;  // null without a recorder
};

#endif
