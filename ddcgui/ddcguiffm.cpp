#include "ddcguiffm.h"

#include <QBoxLayout>
#include <QLabel>
#include <QToolBar>
#include <QToolButton>

#include "floatlayout.h"
#include "frequencyrangevalidator.h"
#include "icons/activityoff.h"
#include "icons/activityon.h"
#include "icons/audiotapeoff.h"
#include "icons/audiotapeon.h"
#include "icons/iftapeoff.h"
#include "icons/iftapeon.h"
#include "icons/recorddot.h"
#include "startup/translationcenter.h"
#include "valuecontrols/vcbar.h"
#include "valuecontrols/vcbutton.h"
#include "valuecontrols/vccheckbox.h"
#include "valuecontrols/vccomboboxclassic.h"
#include "valuecontrols/vclabel.h"
#include "valuecontrols/vclineedit.h"
#include "valuecontrols/vcnumericfloatspin.h"
#include "valuecontrols/vcslider.h"
#include "valuetree/panelhelpers.h"
#include "valuetree/valuepaths.h"

namespace {

const char* const catalogue = "DDCGui";
const char* const ddcMark = "DDC";  // in the name of every channel but the receiver's own

// Widths and heights in pixels, chosen for a narrow face.
const int selectablePanelWidth = 400;
const int panelWidth = 200;
const int flowOrientation = 1;
const int flowGap = 10;
const int nameLabelWidth = 40;
const int modeButtonWidth = 70;
const int levelHeight = 20;
const int recordRowSpacing = 10;

const int frequencyPointSize = 8;
const double levelScaleStart = -30.0;  // dBµV
const double levelScaleStop = 130.0;

}  // namespace

DdcGuiFfm::DdcGuiFfm(QWidget* parent, QWidget*, const QString& name, const QString& devicePath,
                     const QString& ddcPath, bool selectableDdc)
    : QFrame(parent),
      m_pLayout(nullptr),
      m_pNameWidget(nullptr),
      m_pFrequency(nullptr),
      m_pLevel(nullptr),
      m_pCoupleFrequency(nullptr),
      m_pCoupleDemodulation(nullptr),
      m_pDemodulation(nullptr),
      m_pBandwidth(nullptr),
      m_pSquelchState(nullptr),
      m_pSquelchValue(nullptr),
      m_pAudioMute(nullptr),
      m_pAudioVolume(nullptr),
      m_pAudioBalance(nullptr),
      m_pAudioRecording(nullptr),
      m_pIfRecording(nullptr),
      m_pChannelRecording(nullptr),
      m_pActivityGeneration(nullptr),
      m_ConnectedClient(this),
      m_ChannelRecordingValue(this),
      m_AudioRecordingValue(this),
      m_FrequencyCoupled(this),
      m_DemodulationCoupled(this),
      m_AudioMuteValue(this),
      m_DevicePath(devicePath),
      m_DdcPath(ddcPath),
      m_bSelectableDdc(selectableDdc),
      m_DdcMode(this),
      m_PdwPath(this),
      m_HandoverPath(this),
      m_pMshClient(nullptr),
      m_pSenderToolBar(nullptr),
      m_pRangeValidator(new FrequencyRangeValidator(this)),
      m_pToolbarController(nullptr)
{
    TranslationCenter::Instance()->Register(QLatin1String(catalogue));
    setObjectName(name);
    m_Name = name;
    setFrameShape(QFrame::Box);
    setMinimumWidth(m_bSelectableDdc ? selectablePanelWidth : panelWidth);
    m_pLayout = new FloatLayout(flowOrientation, this, flowGap);

    CreateFreqLevelControls();
    CreateCoupledControls();
    CreateDemodulationControls();
    if (!isWPU()) {
        CreateAudioControls();
        CreateRecordControls();
    }
    CreateVordaControls();
    connect(m_pRangeValidator, SIGNAL(si_inRangeChanged(bool)), this,
            SLOT(slotFrequencyInRangeChanged(bool)));
}

DdcGuiFfm::~DdcGuiFfm()
{
    TranslationCenter::Instance()->Unregister(QLatin1String(catalogue));
    ClearConnectedClient();

    // In the order of the fields. What is not named here, Qt deletes with the panel.
    delete m_pNameWidget;
    m_pNameWidget = nullptr;
    delete m_pFrequency;
    m_pFrequency = nullptr;
    delete m_pLevel;
    m_pLevel = nullptr;
    delete m_pCoupleFrequency;
    m_pCoupleFrequency = nullptr;
    delete m_pCoupleDemodulation;
    m_pCoupleDemodulation = nullptr;
    delete m_pDemodulation;
    m_pDemodulation = nullptr;
    delete m_pBandwidth;
    m_pBandwidth = nullptr;
    delete m_pSquelchState;
    m_pSquelchState = nullptr;
    delete m_pSquelchValue;
    m_pSquelchValue = nullptr;
    delete m_pAudioMute;
    m_pAudioMute = nullptr;
    delete m_pAudioVolume;
    m_pAudioVolume = nullptr;
    delete m_pAudioBalance;
    m_pAudioBalance = nullptr;
    delete m_pAudioRecording;
    m_pAudioRecording = nullptr;
    delete m_pIfRecording;
    m_pIfRecording = nullptr;
    delete m_pChannelRecording;
    m_pChannelRecording = nullptr;
    delete m_pLayout;
    m_pLayout = nullptr;
}

bool DdcGuiFfm::isWPU() const
{
    return m_DdcMode.value != nullptr;
}

void DdcGuiFfm::SetConfigKey(const QString& key)
{
    m_ConfigKey = key;
}

void DdcGuiFfm::CreateFreqLevelControls()
{
    QVBoxLayout* column = new QVBoxLayout;
    AddColumn(m_pLayout, column);
    QHBoxLayout* row = new QHBoxLayout;

    m_DdcMode.Attach(m_DdcPath + ValuePaths::ddcMode);
    m_pNameWidget = isWPU() ? CreateModeButton() : CreateNameLabel();

    m_pFrequency = new VCLineEdit(this, "frequency", VCLineEdit::NUMBER);
    m_pFrequency->setToolTip(tr("Frequency"));
    m_pFrequency->setObjectName(QLatin1String("Frequency"));
    m_pFrequency->setMinimumWidth(100);
    m_pFrequency->setMaximumWidth(150);
    QFont font(m_pFrequency->font());
    font.setPointSize(frequencyPointSize);
    m_pFrequency->setFont(font);

    row->addWidget(m_pNameWidget);
    row->addWidget(m_pFrequency);
    column->addLayout(row);
    CreateLevelBar();
    column->addWidget(m_pLevel);
}

QWidget* DdcGuiFfm::CreateModeButton()
{
    QToolButton* button = new QToolButton(this);
    m_pNameWidget = button;  // ahead of the rest: ShowDdcMode below checks it
    button->setObjectName(m_Name);
    button->setText(m_Name);
    button->setCheckable(true);
    button->setMaximumWidth(modeButtonWidth);
    button->setAutoRaise(true);

    m_PdwPath.AttachOrCreate(m_DdcPath + ValuePaths::pdwPath);
    m_HandoverPath.AttachOrCreate(m_DdcPath + ValuePaths::handoverPath);
    LoadAndConfigureMSH();
    Update(m_DdcMode.value, CC_VALUE);
    connect(button, SIGNAL(clicked(bool)), this, SLOT(slotDDCModeClicked(bool)));
    return button;
}

QWidget* DdcGuiFfm::CreateNameLabel()
{
    VCLabel* label = new VCLabel(this, nullptr, 0);
    label->SetText(m_Name);
    label->setObjectName(m_Name);
    QFont font(label->font());
    font.setWeight(QFont::Bold);
    label->setFont(font);
    label->setFixedWidth(nameLabelWidth);
    label->setAlignment(Qt::AlignLeft);
    CreateDDCMSHSender();
    return label;
}

void DdcGuiFfm::CreateLevelBar()
{
    m_pLevel = new VCBar(this, tr("Graphical Level Display").toUtf8().constData(), 17, 6, 1);
    m_pLevel->setObjectName(QLatin1String("Level"));
    m_pLevel->setFixedHeight(levelHeight);
    m_pLevel->setMinimumWidth(130);
    m_pLevel->setMaximumWidth(180);
    m_pLevel->SetStartValue(levelScaleStart);
    m_pLevel->SetStopValue(levelScaleStop);
    m_pLevel->SetShowTextValueInside(true);
    m_pLevel->SetShowMinMaxInside(true);
    m_pLevel->setToolTip(tr("Level Value"));
}

VCCheckBox* DdcGuiFfm::CreateCheckBox(const QString& name, const QString& text, const QString& toolTip,
                                      const char* objectName, int minimumWidth)
{
    VCCheckBox* box = new VCCheckBox(this, name.toUtf8().constData(), 1);
    box->SetText(text);
    box->setToolTip(toolTip);
    box->setObjectName(QLatin1String(objectName));
    box->setMinimumWidth(minimumWidth);
    return box;
}

void DdcGuiFfm::CreateCoupledControls()
{
    QVBoxLayout* column = new QVBoxLayout;
    AddColumn(m_pLayout, column);

    m_pCoupleFrequency = CreateCheckBox(tr("Couple Frequency"), tr("Couple Frequency"),
                                        tr("Couple Frequency To Main"), "Couple Frequency", 120);
    connect(m_pCoupleFrequency, SIGNAL(clicked()), this, SLOT(slotCoupleFrqClicked()));
    column->addWidget(m_pCoupleFrequency);

    if (!m_Name.contains(QLatin1String(ddcMark)) || isWPU())
        return;
    m_pCoupleDemodulation = CreateCheckBox(tr("Couple Demodulation"), tr("Couple Demodulation"),
                                           tr("Couple Demodulation To Main"), "Couple Demodulation", 120);
    connect(m_pCoupleDemodulation, SIGNAL(clicked()), this, SLOT(slotCoupleDemClicked()));
    column->addWidget(m_pCoupleDemodulation);
}

void DdcGuiFfm::CreateDemodulationControls()
{
    QVBoxLayout* column = new QVBoxLayout;
    AddColumn(m_pLayout, column);
    QHBoxLayout* modeRow = new QHBoxLayout;
    QHBoxLayout* squelchRow = new QHBoxLayout;
    column->addLayout(modeRow);
    column->addLayout(squelchRow);

    if (!isWPU()) {
        m_pDemodulation = new VCComboBoxClassic(this, "Demodulation", 1);
        m_pDemodulation->setToolTip(tr("Demodulation"));
        m_pDemodulation->setObjectName(QLatin1String("Demodulation"));
        m_pDemodulation->setMinimumWidth(50);
        modeRow->addWidget(m_pDemodulation);
    }
    m_pBandwidth = new VCComboBoxClassic(this, "Bandwidth", 1);
    m_pBandwidth->setToolTip(tr("Demodulation Bandwidth"));
    m_pBandwidth->setObjectName(QLatin1String("Bandwidth"));
    m_pBandwidth->setMinimumWidth(70);
    modeRow->addWidget(m_pBandwidth);

    m_pSquelchState = CreateCheckBox(QLatin1String("Use Squelch"), tr("Use Squelch"), tr("Use Squelch"),
                                     "SquelchState", 80);
    squelchRow->addWidget(m_pSquelchState);
    m_pSquelchValue = new VCNumericFloatSpin(this, "SquelchValue", true, 1);
    m_pSquelchValue->setToolTip(tr("Squelch Value"));
    m_pSquelchValue->setObjectName(QLatin1String("SquelchValue"));
    m_pSquelchValue->setMinimumWidth(40);
    squelchRow->addWidget(m_pSquelchValue);
}

void DdcGuiFfm::CreateAudioControls()
{
    QVBoxLayout* column = new QVBoxLayout;
    AddColumn(m_pLayout, column);
    column->setSizeConstraint(QLayout::SetMinimumSize);
    QHBoxLayout* muteRow = new QHBoxLayout;
    QHBoxLayout* balanceRow = new QHBoxLayout;
    column->addLayout(muteRow);
    column->addLayout(balanceRow);

    m_pAudioMute = CreateCheckBox(QLatin1String("Mute"), tr("Mute"), tr("Mute"), "AudioState", 80);
    connect(m_pAudioMute, SIGNAL(clicked()), this, SLOT(slotAudioMuteClicked()));
    muteRow->addWidget(m_pAudioMute);

    // Kept for embedding programs that look it up by its name; no channel has a volume of its own.
    m_pAudioVolume = new VCSlider(this, "AudioVolume");
    m_pAudioVolume->setToolTip(tr("Channel Audio Volume"));
    m_pAudioVolume->setObjectName(QLatin1String("AudioVolume"));
    m_pAudioVolume->setOrientation(Qt::Horizontal);
    m_pAudioVolume->setMinimumWidth(40);
    m_pAudioVolume->setVisible(false);
    muteRow->addWidget(m_pAudioVolume);

    QLabel* caption = new QLabel(tr("Audio Balance"), this);
    caption->setObjectName(QLatin1String("Level"));  // the bar's name once more, on purpose
    caption->setMinimumWidth(70);
    balanceRow->addWidget(caption);

    m_pAudioBalance = new VCSlider(this, "Audio Balance");
    m_pAudioBalance->setToolTip(tr("Audio Balance"));
    m_pAudioBalance->setObjectName(QLatin1String("AudioBalance"));
    m_pAudioBalance->setOrientation(Qt::Horizontal);
    m_pAudioBalance->setMinimumWidth(40);
    balanceRow->addWidget(m_pAudioBalance);
}

void DdcGuiFfm::CreateRecordControls()
{
    const struct
    {
        VCButton* DdcGuiFfm::*field;
        const char* name;
        const char* objectName;
        QString toolTip;
        const char* const* picture0;
        bool active0;
        const char* const* picture1;
        bool active1;
        const char* const* defaultPicture;  // null: none
        int place;                          // in the row
    } buttons[] = {
        {&DdcGuiFfm::m_pAudioRecording, "AudioRecording", "AudioRecording", tr("Audio Recording"),
         audiotapeon_xpm, true, audiotapeoff_xpm, false, nullptr, 1},
        {&DdcGuiFfm::m_pIfRecording, "IfRecording", "IFRecording", tr("If Recording"), iftapeon_xpm, true,
         iftapeoff_xpm, false, nullptr, 2},
        {&DdcGuiFfm::m_pChannelRecording, "ChannelRecording", "ChannelRecording", tr("Channel Recording"),
         recorddot_xpm, false, recorddot_xpm, false, recorddot_xpm, 3},
        {&DdcGuiFfm::m_pActivityGeneration, "Enable Activity Generation", "DDCActivityGenerationBtn",
         tr("Enable Activity Generation"), activityoff_xpm, false, activityon_xpm, true, recorddot_xpm, 0},
    };
    const int buttonCount = int(sizeof(buttons) / sizeof(buttons[0]));

    QHBoxLayout* row = new QHBoxLayout;
    row->setSpacing(recordRowSpacing);
    AddColumn(m_pLayout, row);
    VCButton* placed[buttonCount] = {};
    for (const auto& description : buttons) {
        VCButton* button = new VCButton(this, QLatin1String(description.name), false, 1);
        button->setObjectName(QLatin1String(description.objectName));
        button->setToolTip(description.toolTip);
        button->SetSpecialPicture(1, description.picture1, description.active1);
        button->SetSpecialPicture(0, description.picture0, description.active0);
        if (description.defaultPicture)
            button->SetDefaultPicture(description.defaultPicture);
        this->*description.field = button;
        placed[description.place] = button;
    }
    for (VCButton* button : placed)
        row->addWidget(button);
    m_pChannelRecording->hide();
}
