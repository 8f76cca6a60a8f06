#pragma once

#include <QObject>
#include <QPointer>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "receiver/dsp/engine.h"
#include "receiver/dsp/levelmeter.h"
#include "receiver/dsp/pace.h"
#include "receiver/dsp/samplebuffer.h"

namespace Receiver {

struct ChannelSetting
{
    double frequency = 0;  // Hz
    double bandwidth = 0;  // Hz; 0: the channel measures nothing
};

// What the engine tells its worker. The mutex is held for copies only.
struct EngineOrders
{
    mutable std::mutex mutex;
    std::condition_variable changed;  // stop, or room in the mailbox
    bool stop = false;
    std::optional<double> center;  // asked for and not taken yet
    std::vector<ChannelSetting> channels;
};

// What the worker tells the engine, carried over to the thread in which the mailbox lives.
class Mailbox : public QObject
{
    Q_OBJECT
public:
    enum class Kind
    {
        Levels,
        Ended,
        Failed
    };
    struct Letter
    {
        Kind kind = Kind::Levels;
        Engine::Levels levels;
        QString reason;
    };

    // `wait`: a full mailbox makes the worker wait; else the oldest report is left out and counted.
    Mailbox(EngineOrders* orders, bool wait) : m_orders(orders), m_wait(wait) {}

    void post(Letter letter);  // by the worker
    void clear();

signals:
    void arrived(const Receiver::Mailbox::Letter& letter);

private slots:
    void deliver();

private:
    bool take(Letter* letter);
    void call();  // asks for deliver(); with the mutex held

    static constexpr int lettersAtOnce = 16;      // then other events of the thread get their turn
    static constexpr std::size_t capacity = 200;  // letters: ten seconds of reports

    EngineOrders* m_orders;
    bool m_wait;
    bool m_calling = false;  // deliver() is asked for
    qint64 m_skipped = 0;
    std::deque<Letter> m_letters;
};

// The engine's thread: reads the source, measures report by report.
class EngineWorker
{
public:
    EngineWorker(IqSource* source, const Engine::Options& options, EngineOrders* orders, Mailbox* mailbox,
                 PanoramaTap* tap);

    void run();  // until stop, the source's end or its failure

private:
    struct Report
    {
        qint64 begin = 0;  // sample numbers
        qint64 end = 0;
    };

    Report reportAt(qint64 number) const;
    void takeCenter();
    bool measure(const Report& report);
    bool fill(qint64 until);
    bool waitFor(qint64 sample);
    bool readSome(std::size_t count);
    void tap(const Sample* samples, std::size_t count);
    qint64 timeOf(qint64 sample) const;
    void send(qint64 end);
    double positionOf(qint64 sample);
    void finish();
    bool stopped() const;

    IqSource* m_source;
    Engine::Options m_options;
    EngineOrders* m_orders;
    Mailbox* m_mailbox;
    PanoramaTap* m_tap;
    double m_rate;
    LevelMeter m_meter;
    SampleBuffer m_buffer;
    Pace m_pace;
    qint64 m_startTime;              // microseconds since 1970, without real time
    qint64 m_settled = 0;            // samples before this one are of the centre before
    bool m_ended = false;            // the buffer's end is the source's
    std::deque<qint64> m_rounds{0};  // where the source began (again), oldest still needed first
    qint64 m_invalid = 0;
    std::vector<ChannelSetting> m_channels;
};

}  // namespace Receiver
