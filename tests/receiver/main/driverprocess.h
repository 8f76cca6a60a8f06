#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

// The real driver, started for a test and always stopped with it.
class DriverProcess
{
public:
    static constexpr int patienceMs = 60000;  // the machine may be busy

    // Adds "--listen 127.0.0.1:0" where the arguments do not say where to listen.
    explicit DriverProcess(const QStringList& arguments);
    ~DriverProcess();

    // Waits for the first line of output. False: the driver ended without one.
    bool waitForPort();
    quint16 port() const { return m_port; }
    QString firstLine() const { return m_firstLine; }

    bool waitForEnd();
    void send(int signal);
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    int exitCode() const { return m_process.exitCode(); }
    bool endedByItself() const { return m_process.exitStatus() == QProcess::NormalExit; }

    QString errors() { return QString::fromUtf8(m_process.readAllStandardError()); }
    QString moreOutput() { return QString::fromUtf8(m_process.readAllStandardOutput()); }

private:
    QProcess m_process;
    QString m_firstLine;
    quint16 m_port = 0;
};
