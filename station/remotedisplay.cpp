#include "station/remotedisplay.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace {

constexpr int stopWaitMs = 2000;
constexpr int probeEveryMs = 100;
constexpr int probesAtMost = 150;
const char screenSize[] = "1280x1024x24";

}  // namespace

RemoteDisplay::RemoteDisplay(int port, QObject* parent)
    : QObject(parent), m_port(port), m_server(QString(), this), m_viewer("vnc", this)
{
    connect(&m_server, &Child::line, this, &RemoteDisplay::displayTold);
    connect(&m_server, &QProcess::finished, this, [this] { ended("the virtual display (Xvfb)"); });
    connect(&m_viewer, &QProcess::finished, this, [this] { ended("the VNC server (x11vnc)"); });
    for (Child* child : {&m_server, &m_viewer}) {
        connect(child, &QProcess::errorOccurred, this, [this, child](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) {
                say(QString("cannot start %1: %2; install the packages xvfb and x11vnc")
                        .arg(child->program(), child->errorString()));
                Q_EMIT failed();
            }
        });
    }
}

void RemoteDisplay::start()
{
    // x11vnc would silently take another port when this one is taken.
    QTcpServer trial;
    if (!trial.listen(QHostAddress::LocalHost, static_cast<quint16>(m_port))) {
        say(QString("--vnc %1: the port is taken (%2); choose another one")
                .arg(m_port)
                .arg(trial.errorString()));
        QTimer::singleShot(0, this, &RemoteDisplay::failed);
        return;
    }
    trial.close();
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.launch("Xvfb", {"-displayfd", "1", "-screen", "0", screenSize, "-nolisten", "tcp", "-noreset"});
}

void RemoteDisplay::displayTold(const QString& number)
{
    if (!m_display.isEmpty()) {
        return;
    }
    m_display = ":" + number;
    m_viewer.setStandardErrorFile(QProcess::nullDevice());
    m_viewer.launch("x11vnc", {"-display", m_display, "-localhost", "-no6", "-noipv6", "-rfbport",
                               QString::number(m_port), "-forever", "-shared", "-nopw", "-quiet"});
    probe();
}

void RemoteDisplay::probe()
{
    auto* socket = new QTcpSocket(this);
    connect(socket, &QTcpSocket::connected, this, [this, socket] {
        socket->deleteLater();
        say(QString("the windows are shown to VNC viewers on 127.0.0.1:%1").arg(m_port));
        Q_EMIT ready();
    });
    connect(socket, &QTcpSocket::errorOccurred, this, [this, socket] {
        socket->deleteLater();
        if (++m_probes > probesAtMost) {
            say("the VNC server does not answer");
            Q_EMIT failed();
            return;
        }
        if (!m_stopping) {
            QTimer::singleShot(probeEveryMs, this, &RemoteDisplay::probe);
        }
    });
    socket->connectToHost(QHostAddress::LocalHost, static_cast<quint16>(m_port));
}

void RemoteDisplay::ended(const char* what)
{
    if (m_stopping) {
        return;
    }
    say(QString("%1 ended unexpectedly").arg(what));
    Q_EMIT failed();
}

void RemoteDisplay::stop()
{
    m_stopping = true;
    m_viewer.stop(stopWaitMs);
    m_server.stop(stopWaitMs);
}
