#include "station.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QUuid>

namespace RxTest {

namespace {

constexpr int endMs = 30000;

const char configurationText[] = R"(Name = "%1"
ConnectionTimeout = %2
TraceMask = 0x20

[AdditionalDlls.Pilot]
FileName = "libtestpilot"
[AdditionalDlls.Pilot.Config]
Socket = "%3"

[AdditionalDlls.DDCGUI]
FileName = "libddcgui"
[AdditionalDlls.DDCGUI.Config]
ValuePath = "/RX1"
DdcName = "%4"
Caption = "Receiver"
)";

}  // namespace

Station::Station() : m_marker(QUuid::createUuid().toString(QUuid::Id128)) {}

Station::~Station()
{
    if (!m_finished) {
        finish();
    }
}

QProcessEnvironment Station::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", m_folder.path());
    environment.insert("XDG_RUNTIME_DIR", m_folder.path());
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.remove("QT_LOGGING_RULES");
    return environment;
}

bool Station::startDriver(const QStringList& arguments)
{
    m_driver = std::make_unique<Program>(m_marker, environment());
    const QStringList all = QStringList{"--listen", QString("127.0.0.1:%1").arg(m_port)} + arguments;
    if (!m_driver->start("rxdriver", all)) {
        return false;
    }
    if (!until([this] { return !m_driver->firstLine().isEmpty() || !m_driver->isRunning(); }) ||
        !m_driver->isRunning()) {
        return false;
    }
    static const QRegularExpression portAtEnd(":(\\d{1,5})\\b(?!.*:\\d)");
    m_port = portAtEnd.match(m_driver->firstLine()).captured(1).toInt();
    return m_port != 0;
}

void Station::killDriver()
{
    if (m_driver) {
        m_driver->kill();
        const QString fault = m_driver->fault();
        if (!fault.isEmpty()) {
            m_faults << fault;
        }
    }
}

QString Station::driverAddress() const
{
    return QString("127.0.0.1:%1").arg(m_port == 0 ? 9 : m_port);
}

QString Station::writeConfiguration(const WindowSetup& setup, const QString& socket)
{
    const QString name = QString("Test%1").arg(++m_count);
    const QString fileName = m_folder.filePath(name + ".toml");
    QFile file(fileName);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QString(configurationText)
                       .arg(name, QString::number(setup.connectionTimeout, 'f', 3), socket, setup.ddc)
                       .toUtf8());
    }
    return fileName;
}

Window* Station::openWindow(const WindowSetup& setup)
{
    const QString socket = m_folder.filePath(QString("pilot%1").arg(m_count + 1));
    const QString configuration = writeConfiguration(setup, socket);
    auto window = std::make_unique<Window>(m_marker, environment(), socket);
    window->state = m_folder.filePath(QString("state%1").arg(m_count));
    const QStringList arguments{
        "--config",   configuration, "--driver",    setup.driver.isEmpty() ? driverAddress() : setup.driver,
        "--headless", "--state",     window->state, "--plugins",
        RX_PILOT_DIR};
    Window* opened = window.get();
    m_windows.push_back(std::move(window));
    if (!opened->program.start("rxworkbench", arguments + setup.arguments)) {
        return nullptr;
    }
    return opened->pilot.reach(patienceMs) ? opened : nullptr;
}

Window* Station::openChannel(const WindowSetup& setup)
{
    Window* window = openWindow(setup);
    if (window == nullptr) {
        return nullptr;
    }
    const bool shown = until([window] { return !window->pilot.window("DdcGuiMain").isEmpty(); });
    return shown ? window : nullptr;
}

QString Station::ctl(const QStringList& arguments, int* exitCode)
{
    Program program(m_marker, environment());
    if (!program.start("rxctl", QStringList{"--driver", driverAddress()} + arguments) ||
        !program.waitForEnd()) {
        return QString();
    }
    if (exitCode != nullptr) {
        *exitCode = program.exitCode();
    }
    return program.output().trimmed();
}

QString Station::finish()
{
    m_finished = true;
    for (const auto& window : m_windows) {
        if (window->program.isRunning()) {
            window->program.terminate();
        }
        if (!window->program.waitForEnd(endMs)) {
            m_faults << QString("the window does not end:\n%1").arg(window->program.output());
            window->program.kill();
        }
        m_faults << window->program.fault();
    }
    if (m_driver) {
        if (m_driver->isRunning()) {
            m_driver->terminate();
            if (!m_driver->waitForEnd(endMs)) {
                m_faults << QString("the driver does not end:\n%1").arg(m_driver->output());
                m_driver->kill();
            }
        }
        m_faults << m_driver->fault();
    }
    for (const QString& process : processesWith(m_marker)) {
        m_faults << "left over: " + process;
    }
    m_faults.removeAll(QString());
    return m_faults.join('\n');
}

Target At::named(const QString& name)
{
    return {{"name", name}};
}
Target At::button(const QString& text)
{
    return {{"text", text}, {"class", "QAbstractButton"}};
}

}  // namespace RxTest
