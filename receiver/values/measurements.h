#pragma once

#include <QVector>

#include "receiver/values/paths.h"
#include "receiver/values/valuestore.h"

namespace Receiver {

// Carries what is measured into the channels' values: the level with the time of its measurement,
// and whether the squelch is open. The store must live longer.
class Measurements : public StoreListener
{
public:
    // At or below this a level is no measurement: the channel lies outside the source's band.
    static constexpr float outsideBand = -200;  // dBµV

    // `channels` in the order in which levels are reported.
    Measurements(ValueStore& store, const Paths& paths, const QStringList& channels);
    ~Measurements() override;

    // Levels in dBµV, by channel; `time` in microseconds since 1970. While the driver is told to
    // stop they are not shown.
    void report(qint64 time, const QVector<float>& levels);

    // Nothing is measured any more: the last levels stay, marked as not available.
    void end();

    void valueChanged(ValueId id) override;
    void descriptionChanged(ValueId) override {}
    void valueRemoved(ValueId) override {}

private:
    struct Channel
    {
        ValueId level = 0;
        ValueId squelchOpen = 0;
        ValueId squelchState = 0;
        ValueId squelchValue = 0;
    };

    bool isStopped() const;
    void updateSquelch(const Channel& channel, qint64 time);

    ValueStore& m_store;
    ValueId m_commands;
    QVector<Channel> m_channels;
};

}  // namespace Receiver
