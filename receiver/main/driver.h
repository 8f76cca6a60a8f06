#pragma once

#include <QHash>
#include <QObject>
#include <functional>
#include <memory>

#include "receiver/dsp/engine.h"
#include "receiver/main/driveroptions.h"
#include "receiver/server/server.h"
#include "receiver/streams/streamserver.h"
#include "receiver/values/authority.h"
#include "receiver/values/measurements.h"
#include "receiver/values/valuestore.h"

namespace Receiver {

// The driver: one source, the engine that measures it, the values, and the servers that show them and
// the spectrum. What is set in the values goes to the engine, what the engine measures into the values.
class Driver : public QObject, private StoreListener
{
    Q_OBJECT
public:
    Driver(const DriverOptions& options, std::unique_ptr<IqSource> source, QObject* parent = nullptr);
    ~Driver() override;  // stops the engine and says goodbye to the clients

    // Listens as the options say. False with one line in `error`.
    bool listen(QString* error);
    quint16 streamPort() const { return m_streams.port(); }
    QString address() const;  // "127.0.0.1:4600"; an IPv6 host stands in [ ]

    // Begins to receive: at once, or when the first client has hooked the level of DDC1. What that
    // client set before counts from the first sample on.
    void start();

signals:
    void sourceFailed(const QString& reason);

private:
    bool listenForStreams(QString* error);
    void tuneChannel(int channel);
    void updatePanorama();
    void startIfHeard();
    void run();
    void setState(const QString& state);

    void valueChanged(ValueId id) override;
    void descriptionChanged(ValueId) override {}
    void valueRemoved(ValueId) override {}

    DriverOptions m_options;
    ValueStore m_store;
    Authority m_authority;
    Measurements m_measurements;
    Server m_server;
    StreamServer m_streams;
    Engine m_engine;
    bool m_running = false;
    QHash<ValueId, std::function<void()>> m_settings;  // what the engine is told of
};

}  // namespace Receiver
