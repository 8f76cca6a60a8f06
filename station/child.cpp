#include "station/child.h"

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdio>

void say(const QString& text)
{
    const QByteArray line = "rxstation: " + text.toLocal8Bit() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
    std::fflush(stderr);
}

Child::Child(const QString& name, QObject* parent) : QProcess(parent), m_name(name)
{
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
    setInputChannelMode(QProcess::ManagedInputChannel);
    const pid_t launcher = getpid();
    setChildProcessModifier([launcher] {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // Ctrl-C in a terminal is for the launcher alone, which then ends its children in order.
        setpgid(0, 0);
        // The launcher may have gone between fork and the line above: nobody would tell us.
        if (getppid() != launcher) {
            _exit(1);
        }
    });
    connect(this, &QProcess::readyReadStandardOutput, this, &Child::readLines);
}

Child::~Child()
{
    disconnect();
    stop(1000);
}

void Child::launch(const QString& program, const QStringList& arguments)
{
    start(program, arguments);
    closeWriteChannel();
}

void Child::stop(int milliseconds)
{
    if (!isRunning()) {
        return;
    }
    terminate();
    if (!waitForFinished(milliseconds)) {
        kill();
        waitForFinished(milliseconds);
    }
}

void Child::readLines()
{
    while (canReadLine()) {
        const QString text = QString::fromLocal8Bit(readLine()).trimmed();
        Q_EMIT line(text);
        if (!m_name.isEmpty()) {
            const QByteArray bytes = m_name.toLocal8Bit() + ": " + text.toLocal8Bit() + '\n';
            std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
        }
    }
}
