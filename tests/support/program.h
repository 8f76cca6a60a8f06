#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>

namespace RxTest {

// How long conditions are waited for; generous, since the machine may be busy. RX_PATIENCE_MS in the
// environment shortens it for somebody who looks for a fault.
extern const int patienceMs;

// Runs the event loop until the condition holds. False when it does not in time.
bool until(const std::function<bool()>& condition, int milliseconds = patienceMs);

// A real program under test: always ended, its whole output kept.
class Program : public QObject
{
    Q_OBJECT
public:
    // `marker` goes into the environment of the program and of all that it starts.
    Program(const QString& marker, const QProcessEnvironment& environment);
    ~Program() override;

    // A program of the build by its name ("rxdriver"). False when it cannot be started.
    bool start(const QString& name, const QStringList& arguments);

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    bool waitForEnd(int milliseconds = patienceMs);
    void terminate() { m_process.terminate(); }
    void kill();  // as a crash would end it; returns when it is gone
    void expectKilled() { m_mayBeKilled = true; }

    int exitCode() const { return m_process.exitCode(); }
    qint64 id() const { return m_process.processId(); }

    QString output() const { return m_output; }  // standard output and error as they came
    QString firstLine() const;                   // of standard output; empty before it is complete
    QString name() const { return m_name; }

    // Kept for Station: what the test did not expect of this program's end. Empty: nothing.
    QString fault() const;
    void expectExitCode(int code) { m_expectedCode = code; }

private:
    QProcess m_process;
    QString m_name;
    QString m_output;
    QString m_standardOutput;
    int m_expectedCode = 0;
    bool m_mayBeKilled = false;
};

// Processes that carry the marker in their environment: "pid command line".
QStringList processesWith(const QString& marker);

}  // namespace RxTest
