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

StreamOptions streamOptions(const DriverOptions& options)
{
    StreamOptions streams;
    streams.devicePath = options.devicePath;
    return streams;
}

WindowFunction windowOf(Link::StreamWindow window)
{
    switch (window) {
        case Link::StreamWindow::Hann:
            return WindowFunction::Hann;
        case Link::StreamWindow::FlatTop:
            return WindowFunction::FlatTop;
        case Link::StreamWindow::BlackmanHarris:
            break;
    }
    return WindowFunction::BlackmanHarris;
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
      m_streams(streamOptions(options)),
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
    for (const char* suffix : {"/IFPANSPAN", "/DRVCOMMANDS"})
        m_settings.insert(m_store.find(paths.device(QString::fromLatin1(suffix))),
                          [this] { updatePanorama(); });
    setState(stateWaiting);
    m_store.addListener(this);

    connect(&m_streams, &StreamServer::demandChanged, this, &Driver::updatePanorama);
    connect(&m_engine, &Engine::panoramaReady, &m_streams, &StreamServer::deliver);

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
    m_streams.close(QStringLiteral("the driver ends"));
    m_server.close(QStringLiteral("the driver ends"));
    m_store.removeListener(this);
}

bool Driver::listen(QString* error)
{
    if (!m_server.listen(m_options.host, m_options.port, error) || !listenForStreams(error))
        return false;
    m_server.setStreamPort(m_streams.port());
    return true;
}

bool Driver::listenForStreams(QString* error)
{
    if (m_options.streamPort)
        return m_streams.listen(m_options.host, *m_options.streamPort, error);
    const bool hasNext = m_options.port != 0 && m_options.port != 65535;
    return (hasNext && m_streams.listen(m_options.host, quint16(m_options.port + 1), error)) ||
           m_streams.listen(m_options.host, 0, error);
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

// A panorama only while somebody looks at it and the driver is not told to stop.
void Driver::updatePanorama()
{
    const Paths& paths = m_authority.paths();
    const std::optional<StreamDemand>& demand = m_streams.demand();
    if (!demand ||
        m_store.key(m_store.find(paths.device(QStringLiteral("/DRVCOMMANDS")))) == DriverCommand::stop) {
        m_engine.setPanorama({});
        return;
    }
    PanoramaSettings settings;
    settings.span = m_store.number(m_store.find(paths.device(QStringLiteral("/IFPANSPAN"))));
    settings.points = Panorama::pointsFor(m_engine.sampleRate(), settings.span, demand->points);
    settings.frameRate = demand->frameRate;
    settings.window = windowOf(demand->window);
    m_engine.setPanorama(settings);
}

void Driver::valueChanged(ValueId id)
{
    const auto setting = m_settings.constFind(id);
    if (setting != m_settings.constEnd())
        (*setting)();
}

}  // namespace Receiver
