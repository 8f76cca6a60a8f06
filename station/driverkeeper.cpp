#include "station/driverkeeper.h"

#include <QRegularExpression>
#include <algorithm>

namespace {

constexpr int stableAfterMs = 10000;  // a driver that ran that long is not failing over and over
constexpr int stopWaitMs = 5000;
constexpr int restartDelaysMs[] = {200, 500, 1000, 2000, 5000};

}  // namespace

DriverKeeper::DriverKeeper(const QString& program, const QStringList& arguments, QObject* parent)
    : QObject(parent), m_program(program), m_arguments(arguments), m_child(QString(), this)
{
    m_restart.setSingleShot(true);
    connect(&m_restart, &QTimer::timeout, this, &DriverKeeper::launch);
    connect(&m_child, &Child::line, this, &DriverKeeper::readLine);
    connect(&m_child, &QProcess::finished, this, &DriverKeeper::ended);
    connect(&m_child, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) {
            return;
        }
        say(QString("cannot start %1: %2").arg(m_program, m_child.errorString()));
        if (m_port == 0) {
            Q_EMIT failed(1);
        } else {
            restartLater("could not be started");
        }
    });
}

void DriverKeeper::start()
{
    launch();
}

void DriverKeeper::stop()
{
    m_stopping = true;
    m_restart.stop();
    m_child.stop(stopWaitMs);
}

QString DriverKeeper::address() const
{
    return m_port == 0 ? QString() : QString("127.0.0.1:%1").arg(m_port);
}

void DriverKeeper::launch()
{
    m_heard = false;
    m_running.start();
    QStringList arguments{"--listen", QString("127.0.0.1:%1").arg(m_port)};
    m_child.launch(m_program, arguments + m_arguments);
}

void DriverKeeper::readLine(const QString& text)
{
    if (m_heard) {
        return;
    }
    m_heard = true;
    static const QRegularExpression portAtEnd(":(\\d{1,5})\\b(?!.*:\\d)");
    const int port = portAtEnd.match(text).captured(1).toInt();
    if (m_port != 0) {
        say(QString("the driver is back on %1").arg(address()));
        return;
    }
    if (port == 0) {
        say(QString("the driver's first line names no port: \"%1\"").arg(text));
        stop();
        Q_EMIT failed(1);
        return;
    }
    m_port = port;
    say(QString("the driver listens on %1 (process %2)").arg(address()).arg(m_child.processId()));
    Q_EMIT ready();
}

void DriverKeeper::ended(int exitCode, QProcess::ExitStatus status)
{
    if (m_stopping) {
        return;
    }
    const QString how = status == QProcess::CrashExit ? QString("was killed by signal %1").arg(exitCode)
                                                      : QString("ended with code %1").arg(exitCode);
    if (m_port == 0) {
        if (status == QProcess::CrashExit) {
            say("the driver " + how + " before it was ready");
        }
        Q_EMIT failed(status == QProcess::NormalExit && exitCode == 2 ? 2 : 1);
        return;
    }
    restartLater(how);
}

void DriverKeeper::restartLater(const QString& why)
{
    if (m_running.isValid() && m_running.elapsed() >= stableAfterMs) {
        m_failures = 0;
    }
    const int last = static_cast<int>(std::size(restartDelaysMs)) - 1;
    const int delay = restartDelaysMs[std::min(m_failures, last)];
    ++m_failures;
    say(QString("the driver %1; starting it again on %2 in %3 s").arg(why, address()).arg(delay / 1000.0));
    m_restart.start(delay);
}
