#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>

#include "link/clientsession.h"
#include "link/mirrortree.h"
#include "valueframework/ivtclient.h"
#include "valueframework/observable.h"

struct VtClientOptions
{
    Link::SessionOptions session;
    int stopMs = 1000;  // how long Stop() may wait for the driver to take what was written
};

// The tree's connection to a driver, known to VtClientCenter as "VTConnectToDRV" from its making to
// its end. Values appear in the tree as they are hooked, follow the driver, and carry local writes
// to it; over a loss they stand stale and the client hooks again by itself. GUI thread only.
class VtClient : public QObject, public Observable, public IVtClient, private MirrorTree::Owner
{
    Q_OBJECT
public:
    static QString ClientName();  // "VTConnectToDRV"

    explicit VtClient(const VtClientOptions& options = {});

    // Like Stop(), but calls no observer any more. The values stay.
    ~VtClient() override;

    // Connects, and again after each loss, until Stop(). To be called when all plug-ins are loaded,
    // so that they see CC_CONNECTED.
    void Start(const QString& host, quint16 port);

    // Sends the writes that wait and disconnects; see VtClientOptions::stopMs. Observers hear of the
    // end by CC_DISCONNECTED from the event loop.
    void Stop();

    // For the operator: why there is no connection; empty while there is one or nothing failed yet.
    QString LastFailure() const;

    // Changes merged on the way because this end was slow, and events lost, since the start.
    quint64 SkippedChanges() const;
    quint64 LostEvents() const;

    void AddObserver(IObserver* observer) override;
    void DeleteObserver(IObserver* observer) override;
    QString GetServerAddress() override;
    void Flush() override;
    void HookValues(const QByteArray& pathPair, const QByteArray& reserved) override;
    void ReleaseValues(const QByteArray& pathPair) override;
    bool IsNodeServed(Node* node) override;
    bool HasServedValues() override;
    bool IsConnected() override;

signals:
    // An attempt to connect came to nothing; the next one follows by itself.
    void AttemptFailed(const QString& reason);

protected:
    bool event(QEvent* event) override;

private:
    struct Pair
    {
        quint32 number = 0;
        int users = 0;
    };

    void wake() override;
    void wakeLater() override;
    void runMirror();
    void wakeWrites() override;
    void announce(TChangeCode code) override;
    quint32 write(quint64 connection, quint32 id, const Link::Content& content) override;
    void throttle();

    VtClientOptions m_options;
    Link::ClientSession m_session;
    std::shared_ptr<MirrorTree> m_mirror;
    QHash<QByteArray, Pair> m_pairs;  // by the text of the pair
    quint64 m_connection = 0;         // counts the connections of the session
    QTimer m_slice;                   // runs while a part of the work was put off
    bool m_wakePosted = false;
    bool m_writesPosted = false;
    bool m_paused = false;
};
