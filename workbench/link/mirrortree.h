#pragma once

#include <deque>
#include <memory>
#include <optional>

#include "link/messages.h"
#include "link/mirrortable.h"
#include "valueframework/iobserver.h"

// Keeps a part of the tree equal to what the driver tells, and hands local writes to the driver.
//
// What came from the driver waits in a queue and is applied step by step. An observer may do
// anything in the middle of a batch: run an event loop (then run() is entered again and goes on with
// the rest of that batch before anything newer), delete values, or destroy the client.
class MirrorTree : public IObserver, public std::enable_shared_from_this<MirrorTree>
{
public:
    // What the mirror needs of the client that owns it.
    class Owner
    {
    public:
        virtual ~Owner() = default;
        virtual void wake() = 0;                      // have run() called by the event loop
        virtual void wakeLater() = 0;                 // the same, after input and sockets had their turn
        virtual void wakeWrites() = 0;                // have sendWrites() called by the event loop
        virtual void announce(TChangeCode code) = 0;  // to the client's observers
        // 0: not sent, because that connection (as given to connected()) is no more.
        virtual quint32 write(quint64 connection, quint32 id, const Link::Content& content) = 0;
    };

    explicit MirrorTree(Owner* owner);
    ~MirrorTree() override;

    // The owner goes: observes nothing and calls nobody any more.
    void leave();

    // --- from the driver, in this order; applied by run()
    void connected(quint64 connection);
    void lost(const QString& reason);
    void snapshot(Link::Snapshot&& snapshot);
    void describe(Link::Describe&& describe);
    void batch(Link::Batch&& batch);
    void answer(const Link::Answer& answer);
    void unanswered(quint32 number, const QString& reason);

    // Applies what waits, for a bounded time; asks to be woken for the rest.
    void run();

    // Updates in batches that were not applied yet.
    qint64 updatesWaiting() const { return m_updatesWaiting; }

    // --- hooks
    void addHook(quint32 number, const QString& source, const QString& target);
    void releaseHook(quint32 number);
    void announceServed(quint32 number);  // again, for somebody who asked for the same later

    // --- facts
    bool isConnected() const { return m_connected; }
    bool isServed(const QString& target) const;
    bool lastServedValues() const { return m_lastServedValues; }
    quint64 skippedChanges() const { return m_skipped; }
    quint64 lostEvents() const { return m_lostEvents; }

    // Sends the local writes that wait.
    void sendWrites();

    void Update(Observable* subject, TChangeCode code) override;

private:
    struct Hook
    {
        quint32 number = 0;
        QString source;
        QString target;
        bool served = false;
        quint64 round = 0;
        int values = 0;  // brought by the last complete snapshot, or by the one under way
        bool underWay = false;
    };

    struct Lost
    {
        QString reason;
    };
    struct Connected
    {
        quint64 connection;
    };
    struct Unanswered
    {
        quint32 number;
        QString reason;
    };
    struct Released
    {
        quint32 number;
    };
    struct Served
    {
        quint32 number;
    };
    struct Job
    {
        std::variant<Connected, Lost, Link::Snapshot, Link::Describe, Link::Batch, Link::Answer, Unanswered,
                     Released, Served>
            what;
        qsizetype next = 0;  // the next element, counted over all phases
        bool begun = false;
    };

    // Each goes on where `job.next` stands, and returns when nothing is left (or the owner left).
    void work(Job& job, const Connected& connected);
    void work(Job& job, const Lost& lost);
    void work(Job& job, Link::Snapshot& snapshot);
    void work(Job& job, Link::Describe& describe);
    void work(Job& job, Link::Batch& batch);
    void work(Job& job, const Link::Answer& answer);
    void work(Job& job, const Unanswered& unanswered);
    void work(Job& job, const Released& released);
    void work(Job& job, const Served& served);

    void enqueue(Job&& job);
    void loseOne(Mirror* mirror);
    void releaseOne(Mirror* mirror, quint32 hook);
    void beginSnapshot(Hook* hook);
    void endSnapshot(Hook* hook);
    void describeValue(const Hook& hook, const Link::Description& description, const Link::Update* update);
    bool place(Mirror* mirror, const Link::Description& description);
    void attach(Mirror* mirror, ValueBase* value);
    void forget(Mirror* mirror);
    void makeUnavailable(Mirror* mirror);
    void applyUpdate(const Link::Update& update);
    void applyTo(Mirror* mirror, const Link::Update& update);
    void setState(Mirror* mirror, TValueState state);
    Hook* findHook(quint32 number);

    // mirrorwrites.cpp
    void localWrite(Mirror* mirror);
    void sendOne(Mirror* mirror);
    void settle(Mirror* mirror, WriteStatus::Answer answer, const QString& reason);
    void restore(Mirror* mirror);
    void dropWrites(Mirror* mirror);

    Owner* m_owner;  // null: left
    MirrorTable m_mirrors;
    std::vector<Hook> m_hooks;
    std::deque<std::shared_ptr<Job>> m_jobs;
    qint64 m_updatesWaiting = 0;
    bool m_connected = false;
    quint64 m_connection = 0;
    QString m_lostReason;
    bool m_lastServedValues = false;
    quint64 m_round = 0;
    quint64 m_skipped = 0;
    quint64 m_lostEvents = 0;
    const Mirror* m_describing = nullptr;  // its next CC_VALUE comes of its items, not of an operator
    std::deque<Mirror*> m_queuedWrites;
    QHash<quint32, Mirror*> m_pendingWrites;
};
