#pragma once

#include <QObject>
#include <QString>

#include "station/child.h"

// A display of its own, shown to VNC viewers of this machine only: a virtual X server, which
// listens on no network at all, and a VNC server bound to the loopback address.
class RemoteDisplay : public QObject
{
    Q_OBJECT
public:
    RemoteDisplay(int port, QObject* parent);

    void start();
    void stop();

    QString display() const { return m_display; }  // ":7"; empty before ready()

Q_SIGNALS:
    void ready();   // the viewer's port can be connected to
    void failed();  // said why already

private:
    void displayTold(const QString& number);
    void ended(const char* what);
    void probe();

    int m_port;
    QString m_display;
    Child m_server;
    Child m_viewer;
    bool m_stopping = false;
    int m_probes = 0;
};
