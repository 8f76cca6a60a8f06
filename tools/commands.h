#pragma once

#include <QHash>
#include <QObject>
#include <QTimer>

#include "link/clientsession.h"
#include "tools/commandline.h"

namespace RxCtl {

// Carries out one command over one connection and ends the event loop with its exit code.
class Commands : public QObject
{
    Q_OBJECT
public:
    explicit Commands(const CommandLine& command);

    void start();

signals:
    void finished(int exitCode);

private:
    struct Known
    {
        Link::Description description;
        Link::Update update;
    };

    void snapshot(const Link::Snapshot& snapshot);
    void describe(const Link::Describe& describe);
    void batch(const Link::Batch& batch);
    void answered(const Link::Answer& answer);
    void allServed();
    void list();
    void get();
    void set();
    void info();
    void watch();
    void timedOut();
    Link::SessionOptions sessionOptions() const;
    const Known* find(const QString& path) const;
    void print(const QString& line);
    void printChange(const Known& known);
    void fail(int exitCode, const QString& message);
    void finish(int exitCode);

    CommandLine m_command;
    Link::ClientSession m_session;
    QTimer m_timeout;
    QHash<quint32, Known> m_values;  // by id
    QVector<quint32> m_order;        // as the driver lists them
    QHash<quint32, QString> m_hooks;
    int m_unserved = 0;
    int m_lines = 0;
    bool m_watching = false;
    bool m_finished = false;
};

}  // namespace RxCtl
