#include "receiver/values/measurements.h"

#include <algorithm>
#include <cmath>

#include "receiver/values/catalogue.h"

namespace Receiver {

using Link::ValueStatus;

Measurements::Measurements(ValueStore& store, const Paths& paths, const QStringList& channels)
    : m_store(store), m_commands(store.find(paths.device(QStringLiteral("/DRVCOMMANDS"))))
{
    for (const QString& name : channels) {
        Channel channel;
        channel.level = store.find(paths.channel(name, QStringLiteral("/LevelValue")));
        channel.squelchOpen = store.find(paths.channel(name, QStringLiteral("/SquelchOpen")));
        channel.squelchState = store.find(paths.channel(name, QStringLiteral("/SquelchState")));
        channel.squelchValue = store.find(paths.channel(name, QStringLiteral("/SquelchValue")));
        m_channels.append(channel);
    }
    m_store.addListener(this);
}

Measurements::~Measurements()
{
    m_store.removeListener(this);
}

bool Measurements::isStopped() const
{
    return m_store.key(m_commands) == DriverCommand::stop;
}

void Measurements::report(qint64 time, const QVector<float>& levels)
{
    if (isStopped())
        return;
    const int count = int(std::min(levels.size(), m_channels.size()));
    for (int i = 0; i < count; ++i) {
        const Channel& channel = m_channels[i];
        const float level = levels[i];
        if (!std::isfinite(level) || level <= outsideBand) {
            m_store.setStatus(channel.level, ValueStatus::NotAvailable);
            continue;
        }
        m_store.set(channel.level, double(level), time);
        m_store.setStatus(channel.level, ValueStatus::Usable);
        updateSquelch(channel, time);
    }
}

void Measurements::end()
{
    for (const Channel& channel : m_channels)
        m_store.setStatus(channel.level, ValueStatus::NotAvailable);
}

// A change of the switch or of the threshold counts at once, against the level that stands.
void Measurements::valueChanged(ValueId id)
{
    if (id == m_commands && isStopped()) {
        end();
        return;
    }
    for (const Channel& channel : m_channels) {
        if (id == channel.squelchState || id == channel.squelchValue)
            updateSquelch(channel, 0);
    }
}

// Without squelch the channel is always open. An event for each opening and closing.
void Measurements::updateSquelch(const Channel& channel, qint64 time)
{
    const bool used = m_store.flag(channel.squelchState);
    if (used && m_store.status(channel.level) != ValueStatus::Usable)
        return;
    const bool open = !used || m_store.number(channel.level) >= m_store.number(channel.squelchValue);
    if (open != m_store.flag(channel.squelchOpen))
        m_store.set(channel.squelchOpen, open, time);
}

}  // namespace Receiver
