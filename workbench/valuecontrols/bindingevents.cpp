// What the pointer and the keyboard meet at every bound control: tool tip, context menu, and the
// blocked input of a control whose value cannot be written now.

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDateTime>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMenu>
#include <QToolTip>
#include <QWidget>

#include "valuecontrols/numbertext.h"
#include "valuecontrols/valuebinding.h"

namespace {

QString AgeText(qint64 microseconds)
{
    const qint64 seconds = qMax<qint64>(0, QDateTime::currentMSecsSinceEpoch() - microseconds / 1000) / 1000;
    if (seconds < 120)
        return ValueBinding::Text("%1 s").arg(seconds);
    if (seconds < 7200)
        return ValueBinding::Text("%1 min").arg(seconds / 60);
    return ValueBinding::Text("%1 h").arg(seconds / 3600);
}

}  // namespace

bool ValueBinding::HandleEvent(QEvent* event)
{
    switch (event->type()) {
        case QEvent::ToolTip:
            return ShowToolTip(static_cast<QHelpEvent*>(event));
        case QEvent::Show:
            if (!m_Path.isEmpty())
                m_Throttle.Now();
            return false;
        case QEvent::LanguageChange:
            if (!m_Path.isEmpty())
                RequestRefresh();
            return false;
        case QEvent::KeyPress:
            if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && HasNote()) {
                DropNote();
                if (HasEntry())
                    return false;  // the control takes that back with the same key
                event->accept();
                return true;
            }
            return BlockEvent(event);
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
            return BlockEvent(event);
        default:
            return false;
    }
}

// Keys that only look around go on; the rest goes to the parent, as from a label.
bool ValueBinding::BlockEvent(QEvent* event) const
{
    if (!BlocksEvents())
        return false;
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab || key == Qt::Key_Menu)
            return false;
    }
    event->ignore();
    return true;
}

bool ValueBinding::ShowToolTip(QHelpEvent* event)
{
    const QString text = ComposeToolTip();
    if (text.isEmpty() || (m_Path.isEmpty() && !NeedsWholeText()))
        return false;
    QToolTip::showText(event->globalPos(), text, m_Control);
    return true;
}

QString ValueBinding::ComposeToolTip() const
{
    QStringList lines = FactLines();
    if (NeedsWholeText() && WholeText() != m_Control->toolTip())
        lines.prepend(WholeText());
    const QString own = m_Control->toolTip();
    if (own.isEmpty())
        return lines.join(QLatin1Char('\n'));
    if (lines.isEmpty())
        return own;
    if (Qt::mightBeRichText(own))
        return own + QLatin1String("<br>") +
               lines.join(QLatin1Char('\n'))
                   .toHtmlEscaped()
                   .replace(QLatin1Char('\n'), QLatin1String("<br>"));
    return own + QLatin1Char('\n') + lines.join(QLatin1Char('\n'));
}

QStringList ValueBinding::FactLines() const
{
    QStringList lines;
    if (m_Path.isEmpty())
        return lines;
    lines << Text("Path: %1").arg(m_Path);
    if (!m_Value)
        return lines << Text("There is no such value at present.");
    const ValueDescription& description = ValueHost::Description(*m_Value);
    if (description.hasLimits)
        lines << Text("Limits: %1 to %2")
                     .arg(NumberText::Show(description.minimum, -1, QString()),
                          NumberText::Show(description.maximum, -1, description.unit));
    if (!description.unit.isEmpty())
        lines << Text("Unit: %1").arg(description.unit);
    if (!description.writable)
        lines << Text("Shown only, cannot be set.");
    const QString age = AgeLine();
    if (!age.isEmpty())
        lines << age;
    const WriteStatus& status = ValueHost::Status(*m_Value);
    if (status.pending)
        lines << Text("Waiting for the driver's answer.");
    else if (status.answer != WriteStatus::None && !status.reason.isEmpty())
        lines << status.reason;
    return lines;
}

QString ValueBinding::AgeLine() const
{
    const qint64 stamp = ValueHost::TimeStamp(*m_Value);
    const QString age = stamp ? AgeText(stamp) : QString();
    switch (GetPresence()) {
        case Presence::Stale:
            return age.isEmpty() ? Text("The driver is away.")
                                 : Text("The driver is away; told %1 ago.").arg(age);
        case Presence::NotAvailable:
            return age.isEmpty() ? Text("Not available at the driver at present.")
                                 : Text("Not available at the driver at present; told %1 ago.").arg(age);
        default:
            return age.isEmpty() ? QString() : Text("Age: %1").arg(age);
    }
}

void ValueBinding::ShowContextMenu(QContextMenuEvent* event, QMenu* menu)
{
    if (m_Path.isEmpty() && !menu) {
        event->ignore();
        return;
    }
    if (!menu)
        menu = new QMenu(m_Control);
    menu->setObjectName(QStringLiteral("valueMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (!m_Path.isEmpty()) {
        if (!menu->isEmpty())
            menu->addSeparator();
        QAction* const copyPath = menu->addAction(Text("Copy path"));
        copyPath->setObjectName(QStringLiteral("copyPath"));
        connect(copyPath, &QAction::triggered, this,
                [this]() { QGuiApplication::clipboard()->setText(m_Path); });
        QAction* const copyValue = menu->addAction(Text("Copy value"));
        copyValue->setObjectName(QStringLiteral("copyValue"));
        copyValue->setEnabled(m_Value != nullptr);
        connect(copyValue, &QAction::triggered, this, [this]() {
            if (m_Value)
                QGuiApplication::clipboard()->setText(m_Value->GetText());
        });
    }
    event->accept();
    menu->popup(event->globalPos());
}
