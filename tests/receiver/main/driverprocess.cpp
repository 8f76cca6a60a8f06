#include "driverprocess.h"

#include <sys/prctl.h>
#include <QDeadlineTimer>
#include <csignal>

DriverProcess::DriverProcess(const QStringList& arguments)
{
    QStringList all = arguments;
    if (!arguments.contains("--listen"))
        all = QStringList({"--listen", "127.0.0.1:0"}) + arguments;
    // A test that crashes leaves no driver behind.
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process.start(QString(RX_BIN_DIR) + "/rxdriver", all);
}

DriverProcess::~DriverProcess()
{
    if (!isRunning())
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(patienceMs)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

bool DriverProcess::waitForPort()
{
    QDeadlineTimer deadline(patienceMs);
    while (!m_process.canReadLine() && !deadline.hasExpired()) {
        if (!m_process.waitForReadyRead(int(deadline.remainingTime())) && !isRunning())
            break;
    }
    m_firstLine = QString::fromUtf8(m_process.readLine()).trimmed();
    m_port = m_firstLine.section(':', -1).toUShort();
    return m_port != 0;
}

bool DriverProcess::waitForEnd()
{
    return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patienceMs);
}

void DriverProcess::send(int signal)
{
    ::kill(pid_t(m_process.processId()), signal);
}
