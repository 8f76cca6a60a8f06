#include "recordertoolbar/recordertoolbarwidget.h"

#include <QAction>
#include <QLabel>
#include <QToolButton>
#include <QToolTip>

#include "recordertoolbar/recordericons.h"

namespace {

const int iconPixels = 20;

// Decimal steps, as disks are sold: "5.1 MB/s".
QString RateText(double bytesPerSecond)
{
    const char* const units[] = {"B/s", "kB/s", "MB/s", "GB/s"};
    const int lastUnit = 3;
    int unit = 0;
    while (bytesPerSecond >= 999.5 && unit < lastUnit) {
        bytesPerSecond /= 1000;
        ++unit;
    }
    const int digits = bytesPerSecond < 9.95 && unit > 0 ? 1 : 0;
    return QString::number(bytesPerSecond, 'f', digits) + QLatin1Char(' ') + QLatin1String(units[unit]);
}

}  // namespace

RecorderToolBarWidget::RecorderToolBarWidget(bool offerRecording)
{
    setObjectName(QStringLiteral("VordaToolbar"));
    setWindowTitle(tr("Recorder"));
    setAccessibleName(tr("Recorder"));
    setMovable(false);
    setIconSize(QSize(iconPixels, iconPixels));
    if (offerRecording)
        AddActions();
    AddStatus();
    UpdateActions();
}

void RecorderToolBarWidget::AddActions()
{
    m_Record = addAction(RecorderIcons::Record(), tr("Record"));
    m_Record->setObjectName(QStringLiteral("VordaRecord"));
    m_Record->setCheckable(true);
    m_Record->setToolTip(tr("Record this channel"));
    m_Stop = addAction(RecorderIcons::Stop(), tr("Stop"));
    m_Stop->setObjectName(QStringLiteral("VordaStop"));
    m_Stop->setToolTip(tr("Stop the recording of this channel"));
    connect(m_Record, &QAction::triggered, this, [this] {
        UpdateActions();  // what is checked follows the recorder, not the click
        Q_EMIT RecordRequested();
    });
    connect(m_Stop, &QAction::triggered, this, &RecorderToolBarWidget::StopRequested);
    for (QAction* action : {m_Record, m_Stop}) {
        QWidget* const button = widgetForAction(action);
        button->setFocusPolicy(Qt::StrongFocus);
        button->setAccessibleName(action->text());
        button->setAccessibleDescription(action->toolTip());
    }
}

// Room for the longest rate is kept, so that the bar does not move while the bandwidth changes.
void RecorderToolBarWidget::AddStatus()
{
    m_Rate = new QLabel;
    m_Rate->setObjectName(QStringLiteral("VordaDataRate"));
    m_Rate->setAccessibleName(tr("Data rate"));
    m_Rate->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_Rate->setMinimumWidth(m_Rate->fontMetrics().horizontalAdvance(QStringLiteral("8888 MB/s ")));
    addWidget(m_Rate);

    m_Status = new QToolButton;
    m_Status->setObjectName(QStringLiteral("VordaStatus"));
    m_Status->setAutoRaise(true);
    m_Status->setIconSize(iconSize());
    m_Status->setFixedSize(m_Status->sizeHint().expandedTo(QSize(iconPixels + 8, iconPixels + 8)));
    connect(m_Status, &QToolButton::clicked, this, [this] {
        QToolTip::showText(m_Status->mapToGlobal(m_Status->rect().bottomLeft()), m_Status->toolTip(),
                           m_Status);
    });
    addWidget(m_Status);
    SetDataRate(0);
    HideWarning();
}

void RecorderToolBarWidget::SetChannel(const QString& name)
{
    setAccessibleDescription(tr("Records channel %1").arg(name));
}

void RecorderToolBarWidget::SetRecording(Recording recording)
{
    m_Recording = recording;
    UpdateActions();
}

void RecorderToolBarWidget::SetOffered(bool offered)
{
    m_Offered = offered;
    m_Rate->setEnabled(offered);
    UpdateActions();
}

void RecorderToolBarWidget::UpdateActions()
{
    if (!m_Record)
        return;
    m_Record->setChecked(m_Recording == Recording::Running);
    m_Record->setEnabled(m_Offered && m_Recording == Recording::Stopped);
    m_Stop->setEnabled(m_Offered && m_Recording == Recording::Running);
}

void RecorderToolBarWidget::SetDataRate(double bytesPerSecond)
{
    const bool known = bytesPerSecond > 0;
    m_Rate->setText(known ? RateText(bytesPerSecond) : QStringLiteral("–"));
    m_Rate->setToolTip(known
                           ? tr("A recording brings about %1 at this bandwidth").arg(RateText(bytesPerSecond))
                           : tr("The bandwidth is not known"));
    m_Rate->setAccessibleDescription(m_Rate->toolTip());
}

void RecorderToolBarWidget::ShowWarning(const QString& text)
{
    m_Status->setIcon(RecorderIcons::Warning());
    m_Status->setToolTip(text);
    m_Status->setAccessibleName(tr("Warning"));
    m_Status->setAccessibleDescription(text);
    m_Status->setEnabled(true);
    m_Status->setFocusPolicy(Qt::StrongFocus);
}

void RecorderToolBarWidget::HideWarning()
{
    m_Status->setIcon(QIcon());
    m_Status->setToolTip(QString());
    m_Status->setAccessibleName(tr("No warning"));
    m_Status->setAccessibleDescription(QString());
    m_Status->setEnabled(false);
    m_Status->setFocusPolicy(Qt::NoFocus);
}
