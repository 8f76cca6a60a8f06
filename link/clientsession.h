#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QTimer>

#include "link/messages.h"

class QTcpSocket;

namespace Link {

class Channel;
class Heart;

struct SessionOptions
{
    int connectMs = 5000;      // from the attempt to the connection
    int welcomeMs = 3000;      // from the connection to the driver's Welcome
    int heartbeatMs = 1000;    // a sign of life this often
    int lostMs = 3000;         // silence after which the driver counts as lost
    int backoffFirstMs = 100;  // pause before the second attempt; doubles
    int backoffLastMs = 5000;  // up to this
    int answerMs = 5000;       // a write that is not answered by then counts as unanswered
    bool reconnect = true;     // false: stay away after the first failure
};

// The client's end of the link: connects, greets, keeps the hooks over any number of losses and
// tells what comes. No tree, no widgets; everything on the event loop of its thread, nothing
// blocks except stop(). Signals are emitted while the socket is being read: a slot must neither
// run an event loop nor delete the session; it may call every function of it.
class ClientSession : public QObject
{
    Q_OBJECT
public:
    enum class State
    {
        Stopped,     // start() was not called, or stop() was; or a failure without reconnect
        Connecting,  // waits for the connection
        Greeting,    // waits for Welcome
        Connected,
        Waiting  // for the next attempt
    };

    explicit ClientSession(const SessionOptions& options = {}, QObject* parent = nullptr);
    ~ClientSession() override;

    // Connects, and again after each loss. Called again: ends what was and begins anew.
    void start(const QString& host, quint16 port);

    // Sends what waits, says goodbye and disconnects. Waits for the bytes to leave and for the driver
    // to have taken them, `waitMs` at most. Hooks are kept for the next start.
    void stop(int waitMs = 1000);

    State state() const { return m_state; }
    bool isConnected() const { return m_state == State::Connected; }
    QString host() const { return m_host; }
    quint16 port() const { return m_port; }

    // Of this connection or, while there is none, of the last one.
    const Welcome& welcome() const { return m_welcome; }

    // Why the last attempt failed or the connection was lost, for the operator; empty: no failure yet.
    QString lastFailure() const { return m_lastFailure; }

    // Asks for all values at and below a path; the empty path stands for all. Kept over losses.
    // The number comes back with the snapshots.
    quint32 hook(const QString& path);
    void release(quint32 number);

    // Asks to set a value. The number comes back with answered() or unanswered(); 0: not connected.
    quint32 write(quint32 id, const Content& content);

    // The driver sends a snapshot of every hook again.
    void resync();

    // Hands what is buffered to the operating system now.
    void flush();

    // While paused nothing is read: the driver merges what changes meanwhile.
    void setPaused(bool paused);

signals:
    void connected(const Link::Welcome& welcome);
    void disconnected(const QString& reason);   // after connected() only
    void attemptFailed(const QString& reason);  // no connection came about
    void snapshotReceived(Link::Snapshot& snapshot);
    void describeReceived(Link::Describe& describe);
    void batchReceived(Link::Batch& batch);
    void answered(const Link::Answer& answer);

    // No answer came within SessionOptions::answerMs, or the connection was lost before. The driver
    // may have carried the write out.
    void unanswered(quint32 number, const QString& reason);

private:
    void attempt();
    void socketConnected();
    void handle(Message& message);
    void handleWelcome(const Welcome& welcome);
    void handleBatch(Batch& batch);
    void handleSnapshot(Snapshot& snapshot);
    void handleAnswer(const Answer& answer);
    void checkAnswers();
    void fail(const QString& reason, bool tellPeer);
    void dropSocket();
    void failWrites(const QString& reason);
    QString unexpected(const Message& message) const;

    SessionOptions m_options;
    State m_state = State::Stopped;
    QString m_host;
    quint16 m_port = 0;
    QByteArray m_session;
    Welcome m_welcome;
    QString m_lastFailure;

    QTcpSocket* m_socket = nullptr;
    Channel* m_channel = nullptr;
    Heart* m_heart = nullptr;
    QTimer m_step;  // connection, welcome or the pause before the next attempt
    QTimer m_answers;
    int m_backoffMs = 0;

    QMap<quint32, QString> m_hooks;  // in the order in which they were asked for
    quint32 m_nextHook = 1;
    quint64 m_sequence = 0;
    bool m_resyncing = false;
    quint32 m_resyncUntil = 0;  // the hook whose last snapshot ends the resynchronisation

    QElapsedTimer m_clock;
    QMap<quint32, qint64> m_writes;  // number to the time by which an answer must have come
    quint32 m_nextWrite = 1;
};

}  // namespace Link
