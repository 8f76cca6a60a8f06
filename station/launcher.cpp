#include "station/launcher.h"

#include <QDir>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QTimer>
#include <algorithm>

#include "station/child.h"
#include "station/driverkeeper.h"
#include "station/remotedisplay.h"

namespace {

constexpr int windowEndMs = 8000;  // for windows to close when all of it is to end

}  // namespace

Launcher::Launcher(const StationOptions& options, const QString& programs, const QString& configurations)
    : m_options(options), m_programs(programs), m_configurations(configurations)
{}

Launcher::~Launcher() = default;

bool Launcher::start()
{
    for (const QString& name : std::as_const(m_options.configurations)) {
        QString error;
        const QString file = findConfiguration(name, m_configurations, &error);
        if (file.isEmpty()) {
            say(error);
            return false;
        }
        m_files << file;
    }
    if (m_options.vncPort != 0) {
        m_display = new RemoteDisplay(m_options.vncPort, this);
        connect(m_display, &RemoteDisplay::ready, this, &Launcher::showWindows);
        connect(m_display, &RemoteDisplay::failed, this, [this] { finish(1); });
    }
    const auto afterDriver = [this] {
        if (m_display != nullptr) {
            m_display->start();
        } else {
            showWindows();
        }
    };
    if (!m_options.driver.isEmpty()) {
        say("using the driver at " + m_options.driver);
        QTimer::singleShot(0, this, afterDriver);
        return true;
    }
    m_driver = new DriverKeeper(QDir(m_programs).filePath("rxdriver"), m_options.driverArguments, this);
    connect(m_driver, &DriverKeeper::ready, this, afterDriver);
    connect(m_driver, &DriverKeeper::failed, this, &Launcher::finish);
    say("starting the driver");
    m_driver->start();
    return true;
}

void Launcher::showWindows()
{
    if (m_ending || m_finished) {
        finish(m_exitCode);
        return;
    }
    for (const QString& file : std::as_const(m_files)) {
        openWindow(file);
    }
}

void Launcher::openWindow(const QString& configuration)
{
    const QString address = m_driver != nullptr ? m_driver->address() : m_options.driver;
    QStringList arguments{"--config", configuration, "--driver", address};
    const QString name = QFileInfo(configuration).completeBaseName();
    if (!m_options.shots.isEmpty()) {
        // Windows number their pictures by themselves: several windows need a folder each.
        const QDir folder(m_options.shots);
        arguments << "--shots" << (m_files.size() > 1 ? folder.filePath(name) : folder.path());
    }
    arguments += m_options.windowArguments;

    auto* window = new Child(name, this);
    if (m_display != nullptr) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", m_display->display());
        environment.insert("QT_QPA_PLATFORM", "xcb");
        environment.remove("WAYLAND_DISPLAY");
        window->setProcessEnvironment(environment);
    }
    connect(window, &QProcess::finished, this, [this, window] { windowEnded(window); });
    connect(window, &QProcess::errorOccurred, this, [this, window](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            say(QString("cannot start %1: %2").arg(window->program(), window->errorString()));
            m_exitCode = std::max(m_exitCode, 1);
            windowEnded(window);
        }
    });
    m_windows << window;
    say(QString("opening %1").arg(name));
    window->launch(QDir(m_programs).filePath("rxworkbench"), arguments);
}

void Launcher::windowEnded(Child* window)
{
    if (!m_windows.removeOne(window)) {
        return;
    }
    if (window->exitStatus() == QProcess::CrashExit && window->error() != QProcess::FailedToStart) {
        say(QString("a window was killed by signal %1").arg(window->exitCode()));
        m_exitCode = std::max(m_exitCode, 1);
    } else {
        m_exitCode = std::max(m_exitCode, window->exitCode());
    }
    window->deleteLater();
    if (m_windows.isEmpty()) {
        say("the last window has closed");
        finish(m_exitCode);
    }
}

void Launcher::end()
{
    if (m_ending) {
        return;
    }
    m_ending = true;
    say("ending");
    if (m_windows.isEmpty()) {
        finish(m_exitCode);
        return;
    }
    for (Child* window : std::as_const(m_windows)) {
        window->terminate();
    }
    QTimer::singleShot(windowEndMs, this, [this] {
        for (Child* window : std::as_const(m_windows)) {
            window->kill();
        }
    });
}

void Launcher::finish(int exitCode)
{
    if (m_finished) {
        return;
    }
    m_finished = true;
    for (Child* window : std::as_const(m_windows)) {
        window->disconnect(this);
        window->stop(windowEndMs);
    }
    m_windows.clear();
    if (m_display != nullptr) {
        m_display->stop();
    }
    if (m_driver != nullptr) {
        m_driver->stop();
    }
    Q_EMIT finished(exitCode);
}
