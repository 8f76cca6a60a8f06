#include "receiver/main/driver.h"

#include "receiver/main/receiversetup.h"

namespace Receiver {

namespace {

// Contents of SOURCE/State.
const auto stateWaiting = QStringLiteral("waiting");  // for the first client
const auto stateRunning = QStringLiteral("running");
const auto stateEnded = QStringLiteral("ended");      // a recording played once
const auto stateMissing = QStringLiteral("missing");  // failed, or gone

ServerOptions serverOptions()
{
    ServerOptions options;
    options.driver = QStringLiteral("rxdriver " RX_VERSION);
    return options;
}

Engine::Options engineOptions(const DriverOptions& options)
{
    Engine::Options engine;
    engine.loop = !options.once;
    return engine;
}

}  // namespace

Driver::Driver(const DriverOptions& options, std::unique_ptr<IqSource> source, QObject* parent)
    : QObject(parent),
      m_options(options),
      m_authority(m_store, receiverSetup(options, *source)),
      m_measurements(m_store, m_authority.paths(), m_authority.channels()),
      m_server(m_store, serverOptions()),
      m_engine(std::move(source), engineOptions(options))
{
    const Paths& paths = m_authority.paths();
    const QStringList& channels = m_authority.channels();
    m_engine.setChannelCount(int(channels.size()));
    for (int i = 0; i < channels.size(); ++i) {
        for (const char* suffix : {"/Frequency", "/Bandwidth"}) {
            m_settings.insert(m_store.find(paths.channel(channels[i], QString::fromLatin1(suffix))),
                              [this, i] { tuneChannel(i); });
        }
        tuneChannel(i);
    }
    const ValueId center = m_store.find(paths.device(QStringLiteral("/FREQUENCY")));
    m_settings.insert(center, [this, center] { m_engine.setCenter(m_store.number(center)); });
    setState(stateWaiting);
    m_store.addListener(this);

    connect(&m_server, &Server::served, this, &Driver::startIfHeard);
    connect(&m_engine, &Engine::levelsReady, this,
            [this](const Engine::Levels& levels) { m_measurements.report(levels.time, levels.levels); });
    connect(&m_engine, &Engine::ended, this, [this] {
        m_measurements.end();
        setState(stateEnded);
    });
    connect(&m_engine, &Engine::failed, this, [this](const QString& reason) {
        m_measurements.end();
        setState(stateMissing);
        emit sourceFailed(reason);
    });
}

Driver::~Driver()
{
    m_engine.stop();
    m_server.close(QStringLiteral("the driver ends"));
    m_store.removeListener(this);
}

bool Driver::listen(QString* error)
{
    return m_server.listen(m_options.host, m_options.port, error);
}

QString Driver::address() const
{
    const bool isIpv6 = m_options.host.contains(QLatin1Char(':'));
    return QStringLiteral("%1:%2")
        .arg(isIpv6 ? QStringLiteral("[%1]").arg(m_options.host) : m_options.host)
        .arg(m_server.port());
}

void Driver::start()
{
    if (!m_options.waitForClient)
        run();
}

void Driver::startIfHeard()
{
    const QString path =
        m_authority.paths().channel(m_authority.channels().constFirst(), QStringLiteral("/LevelValue"));
    if (m_options.waitForClient && m_server.hasTold(m_store.find(path)))
        run();
}

void Driver::run()
{
    if (m_running)
        return;
    m_running = true;
    setState(stateRunning);
    m_engine.start();
}

void Driver::setState(const QString& state)
{
    m_store.set(m_store.find(m_authority.paths().device(QStringLiteral("/SOURCE/State"))), state);
}

void Driver::tuneChannel(int channel)
{
    const QString& name = m_authority.channels()[channel];
    const Paths& paths = m_authority.paths();
    const double frequency = m_store.number(m_store.find(paths.channel(name, QStringLiteral("/Frequency"))));
    const double bandwidth = m_store.number(m_store.find(paths.channel(name, QStringLiteral("/Bandwidth"))));
    m_engine.setChannel(channel, frequency, bandwidth);
}

void Driver::valueChanged(ValueId id)
{
    const auto setting = m_settings.constFind(id);
    if (setting != m_settings.constEnd())
        (*setting)();
}

}  // namespace Receiver
