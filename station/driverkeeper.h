#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include "station/child.h"

// Keeps one receiver driver alive on one loopback port: the port is chosen at the first start and
// stays the same for every restart, so that windows find their driver again.
class DriverKeeper : public QObject
{
    Q_OBJECT
public:
    DriverKeeper(const QString& program, const QStringList& arguments, QObject* parent);

    void start();
    void stop();

    // "127.0.0.1:PORT"; empty until the driver has told its port.
    QString address() const;

Q_SIGNALS:
    void ready();               // once, when the driver listens for the first time
    void failed(int exitCode);  // it ended before it listened for the first time

private:
    void launch();
    void readLine(const QString& text);
    void ended(int exitCode, QProcess::ExitStatus status);
    void restartLater(const QString& why);

    QString m_program;
    QStringList m_arguments;
    Child m_child;
    QTimer m_restart;
    QElapsedTimer m_running;
    int m_port = 0;
    int m_failures = 0;  // in a row, each soon after its start
    bool m_heard = false;
    bool m_stopping = false;
};
