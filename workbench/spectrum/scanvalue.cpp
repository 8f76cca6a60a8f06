#include "spectrum/scanvalue.h"

#include <QCoreApplication>
#include <cmath>
#include <limits>

namespace {

constexpr int writeIntervalMs = 34;  // at most 30 in a second

}

ScanValue::ScanValue(QWidget* noteHome, Kind kind, std::function<void()> changed)
    : ValueBinding(noteHome), m_kind(kind), m_changed(std::move(changed))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { writeWaiting(); });
}

ScanValue::~ScanValue() = default;

bool ScanValue::Accepts(ValueType type) const
{
    if (m_kind == Selection)
        return type == ValueType::Selection;
    return type == ValueType::Float || type == ValueType::Integer;
}

const ValueSelection* ScanValue::selection() const
{
    return dynamic_cast<const ValueSelection*>(BoundValue());
}

double ScanValue::number() const
{
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    if (!BoundValue())
        return nothing;
    const ValueSelection* const items = selection();
    const double number = items ? items->GetCurrentNumber() : ValueHost::Content(*BoundValue()).toDouble();
    return std::isfinite(number) ? number : nothing;
}

bool ScanValue::has() const
{
    return !std::isnan(number());
}

bool ScanValue::isStale() const
{
    return BoundValue() && !IsShownUsable();
}

double ScanValue::target() const
{
    return m_timer.isActive() ? m_waiting : number();
}

bool ScanValue::checkWritable()
{
    if (Path().isEmpty())
        return false;
    if (CanWrite())
        return true;
    const char* why = QT_TRANSLATE_NOOP("ScanValue", "cannot be set at present: there is no such value");
    if (GetPresence() == Presence::Stale)
        why = QT_TRANSLATE_NOOP("ScanValue", "cannot be set at present: the driver is away");
    else if (GetPresence() == Presence::NotAvailable)
        why = QT_TRANSLATE_NOOP("ScanValue", "cannot be set at present: the driver does not serve it");
    else if (GetPresence() == Presence::Usable)
        why = QT_TRANSLATE_NOOP("ScanValue", "is shown only and cannot be set");
    const QString name = Path().section(QLatin1Char('/'), -1);
    Tell(ControlNote::Refused,
         QStringLiteral("%1 %2.").arg(name, QCoreApplication::translate("ScanValue", why)));
    return false;
}

bool ScanValue::writeMerged(double number)
{
    if (!std::isfinite(number) || !checkWritable()) {
        forget();
        return false;
    }
    m_waiting = number;
    if (m_timer.isActive())
        return true;
    const qint64 since = m_since.isValid() ? m_since.elapsed() : writeIntervalMs;
    if (since >= writeIntervalMs)
        writeWaiting();
    else
        m_timer.start(int(writeIntervalMs - since));
    return true;
}

void ScanValue::writeNow(double number)
{
    forget();
    if (!std::isfinite(number) || !checkWritable())
        return;
    m_waiting = number;
    writeWaiting();
}

void ScanValue::flush()
{
    if (!m_timer.isActive())
        return;
    m_timer.stop();
    writeWaiting();
}

void ScanValue::forget()
{
    m_timer.stop();
}

// A selection is written by the key of its item, which stands in m_waiting then.
void ScanValue::writeWaiting()
{
    if (!CanWrite())
        return;
    const ValueSelection* const items = selection();
    const QVariant content = items || ValueHost::TypeOf(*BoundValue()) == ValueType::Integer
                                 ? QVariant(int(std::lround(m_waiting)))
                                 : QVariant(m_waiting);
    if (content == ValueHost::Content(*BoundValue()))
        return;
    m_since.start();
    Write(content);
}
