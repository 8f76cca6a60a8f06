#include "valuecontrols/valuebinding.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QWidget>
#include <cmath>
#include <limits>

#include "valuecontrols/controllook.h"
#include "valuecontrols/missingvalues.h"
#include "valuecontrols/numbertext.h"
#include "valuecontrols/operatorjournal.h"
#include "valueframework/tree.h"

namespace {

// Answers that come sooner are shown as what they are; a look that flickers for one frame at each
// step would only disturb.
const int pendingLookDelayMs = 150;

}  // namespace

ValueBinding::ValueBinding(QWidget* control) : m_Control(control), m_Throttle([this]() { Refresh(); })
{
    m_PendingDelay.setSingleShot(true);
    m_PendingDelay.setInterval(pendingLookDelayMs);
    connect(&m_PendingDelay, &QTimer::timeout, this, [this]() {
        m_PendingShown = true;
        m_Control->update();
    });
}

ValueBinding::~ValueBinding()
{
    MissingValues::Instance().Remove(this);
    LetGo();
    delete m_Note;
}

QString ValueBinding::Text(const char* text)
{
    return QCoreApplication::translate("ValueControls", text);
}

bool ValueBinding::Bind(const QString& path)
{
    LetGo();
    DropNote();
    m_Path = path;
    if (!path.isEmpty() && !Find())
        MissingValues::Instance().Add(this);
    m_Throttle.Now();
    return m_Value != nullptr;
}

bool ValueBinding::Find()
{
    Tree* const tree = Tree::Instance();
    ValueBase* const value = tree ? tree->FindValue(m_Path) : nullptr;
    if (!value || value->GetState() == VS_DELETING || !Accepts(ValueHost::TypeOf(*value)))
        return false;
    m_Value = value;
    m_Subject = value;
    MissingValues::Instance().Remove(this);
    value->AddObserver(this);
    ShowPending(ValueHost::Status(*value).pending);
    ContentChanged();
    return true;
}

void ValueBinding::LookAgain()
{
    if (!m_Value && !m_Path.isEmpty() && Find())
        RequestRefresh();
}

void ValueBinding::LetGo()
{
    if (m_Value)
        m_Value->DeleteObserver(this);
    m_Value = nullptr;
    m_Subject = nullptr;
    m_AwaitsAnswer = false;
    ShowPending(false);
}

ValueBinding::Presence ValueBinding::GetPresence() const
{
    if (m_Path.isEmpty())
        return Presence::Plain;
    if (!m_Value)
        return Presence::Missing;
    switch (m_Value->GetState()) {
        case VS_USABLE:
            return Presence::Usable;
        case VS_STALE:
            return Presence::Stale;
        case VS_DELETING:
            return Presence::Missing;
        default:
            return Presence::NotAvailable;
    }
}

bool ValueBinding::IsShownUsable() const
{
    const Presence presence = GetPresence();
    return presence == Presence::Plain || presence == Presence::Usable;
}

bool ValueBinding::CanWrite() const
{
    return GetPresence() == Presence::Usable && ValueHost::Description(*m_Value).writable;
}

bool ValueBinding::BlocksInput() const
{
    return !m_Path.isEmpty() && !CanWrite();
}

// --- following ----------------------------------------------------------------------------------

void ValueBinding::Update(Observable* subject, TChangeCode code)
{
    if (!m_Value || subject != m_Subject)
        return;
    if (code == CC_STATE) {
        if (m_Value->GetState() == VS_DELETING) {
            LetGo();
            MissingValues::Instance().Add(this);
        }
        ContentChanged();
        m_Throttle.Now();
    } else if (code == CC_VALUE) {
        ContentChanged();
        RequestRefresh();
    } else if (code == CC_DESCRIPTION) {
        FollowStatus();
        RequestRefresh();
    }
}

void ValueBinding::RequestRefresh()
{
    if (!RefreshesWhileHidden() && (!m_Control->isVisible() || m_Control->window()->isMinimized()))
        m_RefreshOnShow = true;
    else
        m_Throttle.Request();
}

void ValueBinding::CatchUp()
{
    if (m_Throttle.IsWaiting() || m_RefreshOnShow)
        m_Throttle.Now();
}

void ValueBinding::Refresh()
{
    m_RefreshOnShow = false;
    const Presence presence = GetPresence();
    if (presence != m_PresenceShown) {
        m_PresenceShown = presence;
        m_Control->update();
    }
    if (m_BlockShown != BlocksInput()) {
        m_BlockShown = BlocksInput();
        InputBlockChanged();
    }
    ShowContent();
}

// --- writing ------------------------------------------------------------------------------------

bool ValueBinding::Write(const QVariant& content)
{
    if (!CanWrite())
        return false;
    const QPointer<ValueBinding> alive(this);
    const bool written = OperatorJournal::Write(*m_Value, content, this);
    if (!alive)
        return written;
    m_AwaitsAnswer = m_Value != nullptr;
    FollowStatus();
    if (alive)
        m_Throttle.Now();
    return written;
}

bool ValueBinding::WriteText(const QString& text)
{
    if (!CanWrite())
        return false;
    const QPointer<ValueBinding> alive(this);
    const bool written = OperatorJournal::WriteText(*m_Value, text, this);
    if (!alive)
        return written;
    m_AwaitsAnswer = m_Value != nullptr;
    FollowStatus();
    if (alive)
        m_Throttle.Now();
    return written;
}

bool ValueBinding::IsNumeric() const
{
    if (!m_Value)
        return false;
    const ValueType type = ValueHost::TypeOf(*m_Value);
    return type == ValueType::Float || type == ValueType::Integer;
}

bool ValueBinding::WriteEntry(const QString& entry)
{
    if (!IsNumeric()) {
        WriteText(entry);
        return true;
    }
    const ValueDescription description = ValueHost::Description(*m_Value);
    NumberText::Reading reading = NumberText::Read(entry, description.unit);
    QVariant content = reading.value;
    if (reading.ok && description.type == ValueType::Integer) {
        if (reading.value != std::floor(reading.value)) {
            reading.ok = false;
            reading.problem = Text("\"%1\" is not a whole number. Enter for example %2.")
                                  .arg(NumberText::Quoted(entry),
                                       NumberText::Show(std::floor(reading.value), 0, QString()));
        }
        content = int(qBound(double(std::numeric_limits<int>::min()), reading.value,
                             double(std::numeric_limits<int>::max())));
    }
    if (!reading.ok) {
        Tell(ControlNote::Refused, reading.problem);
        return false;
    }
    Write(content);
    return true;
}

double ValueBinding::Stepped(double from, double step, int decimals) const
{
    double number = NumberText::AddDecimal(from, step, decimals);
    const ValueDescription& description = ValueHost::Description(*m_Value);
    if (description.hasLimits)
        number = qBound(description.minimum, number, qMax(description.minimum, description.maximum));
    if (description.type == ValueType::Integer)
        number = qBound(double(std::numeric_limits<int>::min()), std::round(number),
                        double(std::numeric_limits<int>::max()));
    return number;
}

void ValueBinding::FollowStatus()
{
    if (!m_Value)
        return;
    const WriteStatus status = ValueHost::Status(*m_Value);
    ShowPending(status.pending);
    if (m_AwaitsAnswer && !status.pending && status.answer != WriteStatus::None) {
        m_AwaitsAnswer = false;
        ShowAnswer(status);
    }
}

void ValueBinding::ShowAnswer(const WriteStatus& status)
{
    switch (status.answer) {
        case WriteStatus::Refused:
            Tell(ControlNote::Refused, status.reason.isEmpty()
                                           ? Text("Refused by the driver, without a reason.")
                                           : Text("Refused: %1").arg(status.reason));
            break;
        case WriteStatus::Clamped:
            Tell(ControlNote::Limited,
                 status.reason.isEmpty() ? Text("Taken with another value.") : status.reason);
            break;
        case WriteStatus::Unanswered:
            Tell(ControlNote::Refused, status.reason.isEmpty()
                                           ? Text("The driver did not answer. Check the value and try again.")
                                           : status.reason);
            break;
        default:
            DropNote();
            break;
    }
}

void ValueBinding::ShowPending(bool pending)
{
    if (pending) {
        if (!m_PendingShown && !m_PendingDelay.isActive())
            m_PendingDelay.start();
        return;
    }
    m_PendingDelay.stop();
    if (m_PendingShown) {
        m_PendingShown = false;
        m_Control->update();
    }
}

void ValueBinding::Tell(ControlNote::Kind kind, const QString& text)
{
    DropNote();
    if (text.isEmpty())
        return;
    m_Note = new ControlNote(m_Control, kind, text);
    m_Control->setAccessibleDescription(text);
    connect(m_Note, &QObject::destroyed, m_Control, [control = m_Control]() {
        control->setAccessibleDescription(QString());
        control->update();
    });
    m_Control->update();
}

void ValueBinding::DropNote()
{
    delete m_Note;
}

// --- painting -----------------------------------------------------------------------------------

void ValueBinding::PaintState(QPainter& painter) const
{
    const QRect rect = m_Control->rect();
    if (!IsShownUsable())
        ControlLook::PaintWash(painter, rect, m_Control->palette());
    if (m_PendingShown)
        ControlLook::PaintPending(painter, rect, m_Control->palette());
    if (m_Note)
        ControlLook::PaintTold(painter, rect, m_Control->palette(),
                               m_Note->GetKind() == ControlNote::Refused);
}

QString ValueBinding::DisplayText(const ValueBase& value, bool translate)
{
    const ValueDescription& description = ValueHost::Description(value);
    switch (description.type) {
        case ValueType::Float:
        case ValueType::Integer:
            return NumberText::Show(ValueHost::Content(value).toDouble(), description.precision,
                                    description.unit);
        case ValueType::Selection: {
            const QByteArray context = ValueHost::TranslationContext(value);
            const QByteArray text = value.GetText().toUtf8();
            return translate && !context.isEmpty() && !text.isEmpty()
                       ? QCoreApplication::translate(context.constData(), text.constData())
                       : QString::fromUtf8(text);
        }
        default:
            return value.GetText();
    }
}
