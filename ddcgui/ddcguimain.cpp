#include "ddcguimain.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFrame>
#include <QPointer>
#include <cmath>

#include "ddcguiffm.h"
#include "ddcifspectrum.h"
#include "ddcselectiondlg.h"
#include "ddctrace.h"
#include "receivercommon/ifmappinghelper.h"
#include "valuecontrols/vclabel.h"
#include "valuetree/valuepaths.h"

namespace {

const int minimumWindowWidth = 460;
const int minimumWindowHeight = 500;
const double hertzPerMegahertz = 1000000.0;
const int switchingKey = 14;  // of DRVCOMMANDS: a mode change is under way
const unsigned short runningTraceLine = 212;
const char* const initials = "T&K";

QString MegahertzText(double hertz)
{
    return QString::fromLatin1("%1").arg(hertz / hertzPerMegahertz, 0, 'f', 1, QLatin1Char(' ')) +
           QLatin1String(" MHz");
}

}  // namespace

DdcGuiMain::DdcGuiMain(const QString& configKey)
    : QMainWindow(nullptr),
      m_pFfm(nullptr),
      m_pIfSpectrum(nullptr),
      m_pSelectionDlg(nullptr),
      m_pRangeLabel(nullptr),
      m_IfPanSpan(this),
      m_DrvCommands(this),
      m_Frequency(this),
      m_DeviceCaption(this),
      m_DfEnabled(this),
      m_ConfigKey(configKey)
{
    setObjectName(tr("DDC"));
    setSizePolicy(QSizePolicy());
    setMinimumSize(minimumWindowWidth, minimumWindowHeight);
}

DdcGuiMain::~DdcGuiMain()
{
    delete m_pRangeLabel;
    m_pRangeLabel = nullptr;
    delete m_pFfm;
    m_pFfm = nullptr;
    delete m_pIfSpectrum;
    m_pIfSpectrum = nullptr;
}

void DdcGuiMain::SetTitle(const QString& text)
{
    const QString maker = QLatin1String(initials);
    setWindowTitle(text.contains(maker) ? text : maker + QLatin1Char(' ') + text);
}

void DdcGuiMain::Start(const QString& valuePath, const QString& caption, const QString& ddcName)
{
    m_ValuePath = valuePath;
    m_DeviceCaption.Attach(m_ValuePath + ValuePaths::deviceCaption);
    m_IfPanSpan.Attach(ValuePaths::KeyPath(m_ValuePath, ValueKeys::IFPANSPAN));
    m_DrvCommands.Attach(ValuePaths::KeyPath(m_ValuePath, ValueKeys::DRVCOMMANDS));
    m_Frequency.Attach(ValuePaths::KeyPath(m_ValuePath, ValueKeys::FREQUENCY));
    m_DfEnabled.Attach(m_ValuePath + ValuePaths::dfEnabled);

    QString title;
    if (m_DeviceCaption.value)
        title = m_DeviceCaption.value->GetValue();
    if (title.isEmpty())
        title = caption;
    title += QLatin1String(" DDCs");
    SetTitle(title);

    m_pMappingHelper.reset(new IFMappingHelper(m_ValuePath));
    m_pMappingHelper->Init();

    if (!ddcName.isEmpty() && IsDdcFree(ddcName)) {
        QString ddc = ddcName;
        SlotDDCSelected(ddc);
        return;
    }
    RunSelectionDialog(title);
}

bool DdcGuiMain::IsDdcFree(const QString& ddcName) const
{
    ValuePtr<TextValue> client;
    client.Attach(ValuePaths::DdcPath(m_ValuePath, ddcName) + ValuePaths::connectedClient);
    return client.value && client.value->GetValue().isEmpty();
}

void DdcGuiMain::RunSelectionDialog(const QString& title)
{
    m_pSelectionDlg = new DdcSelectionDlg(nullptr, title, m_ValuePath);
    connect(m_pSelectionDlg, SIGNAL(SignalDDCSelected(QString&)), this, SLOT(SlotDDCSelected(QString&)));

    const QPointer<DdcGuiMain> self(this);
    m_pSelectionDlg->exec();  // WA_DeleteOnClose: the dialog is gone afterwards
    if (self)
        m_pSelectionDlg = nullptr;
}

void DdcGuiMain::ReconnectFfmClient()
{
    if (m_pFfm)
        m_pFfm->ReconnectClient();
}

void DdcGuiMain::SlotDDCSelected(QString& ddc)
{
    if (ddc.isEmpty()) {
        close();
        return;
    }
    m_CurrentDdc = ddc;
    DdcTrace::Write(QLatin1String("Currently running DDC: ") + m_CurrentDdc, "ddcguimain", runningTraceLine);

    QString title;
    if (m_DeviceCaption.value)
        title = m_DeviceCaption.value->GetValue();
    if (title.isEmpty())
        title = windowTitle();
    SetTitle(title + QLatin1Char(' ') + m_CurrentDdc);

    CreateDdcFrame();
    if (m_Frequency.value)
        Update(m_Frequency.value, CC_VALUE);
    if (m_DrvCommands.value)
        Update(m_DrvCommands.value, CC_VALUE);
    show();
}

void DdcGuiMain::CreateDdcFrame()
{
    const QString ddcPath = ValuePaths::DdcPath(m_ValuePath, m_CurrentDdc);

    // Shown before it has a parent: a widget that is visible when it becomes the central one needs
    // no further show of its own.
    QFrame* frame = new QFrame;
    frame->setObjectName(QLatin1String("DDCFrame"));
    frame->show();

    QVBoxLayout* layout = new QVBoxLayout(frame);
    layout->addLayout(CreateHeaderRow(frame));

    m_pFfm = new DdcGuiFfm(frame, nullptr, m_CurrentDdc, m_ValuePath, ddcPath, true);
    m_pFfm->SetConfigKey(m_ConfigKey);
    m_pFfm->ConnectVtValuesToControls(m_CurrentDdc);

    m_pIfSpectrum = new DdcIfSpectrum(frame, m_ValuePath, ddcPath);
    m_pIfSpectrum->BindValuePaths();

    layout->addWidget(m_pFfm);
    layout->addWidget(m_pIfSpectrum);
    setCentralWidget(frame);
}

QBoxLayout* DdcGuiMain::CreateHeaderRow(QFrame* frame)
{
    enum Kind
    {
        Caption,   // a plain label
        ValueText  // a label of the host that can follow a value
    };
    enum
    {
        free = -1  // pixels: no bound
    };
    const struct
    {
        Kind kind;
        QString text;
        QString objectName;
        QString toolTip;
        int minimumWidth;
        int maximumWidth;
    } items[] = {
        {Caption, tr("Range:"), QString(), tr("Frequency Range"), free, 35},
        {ValueText, QString(), QLatin1String("Valid Range"), tr("Valid Frequency Range"), 30, free},
        {Caption, QString(), QString(), QString(), 180, 180},
        {Caption, tr("Mode:"), QString(), QString(), free, 30},
        {ValueText, QString(), QLatin1String("Current Mode"), tr("Current Mode"), 30, free},
    };
    const int rangeItem = 1;
    const int modeItem = 4;

    QHBoxLayout* row = new QHBoxLayout;
    for (int i = 0; i < int(sizeof(items) / sizeof(items[0])); ++i) {
        QLabel* label =
            items[i].kind == Caption ? new QLabel(items[i].text, frame) : new VCLabel(frame, nullptr, 0);
        label->setObjectName(items[i].objectName);
        label->setToolTip(items[i].toolTip);
        if (items[i].minimumWidth != free)
            label->setMinimumWidth(items[i].minimumWidth);
        if (items[i].maximumWidth != free)
            label->setMaximumWidth(items[i].maximumWidth);
        // As high as its text: the height of the window belongs to the panels.
        label->setSizePolicy(label->sizePolicy().horizontalPolicy(), QSizePolicy::Maximum);
        row->addWidget(label);

        if (i == rangeItem)
            m_pRangeLabel = label;
        else if (i == modeItem)
            static_cast<VCLabel*>(label)->SetText_ValuePath(
                ValuePaths::KeyPath(m_ValuePath, ValueKeys::DRVCOMMANDS), true);
    }
    row->addStretch();
    return row;
}

void DdcGuiMain::Update(Observable* subject, TChangeCode code)
{
    if (code != CC_VALUE)
        return;
    if (m_IfPanSpan.IsSubject(subject) || m_Frequency.IsSubject(subject))
        UpdateRange();
    else if (m_DrvCommands.IsSubject(subject) || m_DfEnabled.IsSubject(subject))
        SwitchPanel();
    else if (m_DeviceCaption.IsSubject(subject))
        SetTitle(m_DeviceCaption.value->GetValue() + QLatin1Char(' ') + m_CurrentDdc);
}

void DdcGuiMain::UpdateRange()
{
    if (!m_pRangeLabel || !m_IfPanSpan.value || !m_Frequency.value)
        return;
    const double half = std::trunc(m_IfPanSpan.value->GetCurrentNumber() * 0.5);
    const double frequency = m_Frequency.value->GetValue();
    const QString text =
        QString::fromLatin1("%1 - %2").arg(MegahertzText(frequency - half), MegahertzText(frequency + half));
    static_cast<VCLabel*>(m_pRangeLabel)->SetText(text);
}

void DdcGuiMain::SwitchPanel()
{
    if (!m_pFfm)
        return;
    const bool dfMode = m_DfEnabled.value && m_DfEnabled.value->GetCurrentText() == QLatin1String("ON");
    const bool switching = m_DrvCommands.value && m_DrvCommands.value->GetCurrentKey() == switchingKey;
    if (!dfMode && switching)
        return;
    // The pane is not there yet when the mode changes while the panel is being bound.
    QWidget* const parts[] = {m_pFfm, m_pIfSpectrum};
    for (QWidget* part : parts)
        if (part)
            part->setVisible(!dfMode);
}

void DdcGuiMain::closeEvent(QCloseEvent* event)
{
    event->accept();
    if (m_pFfm)
        m_pFfm->ClearConnectedClient();
    QCoreApplication::quit();
}
