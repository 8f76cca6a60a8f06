#pragma once

#include <QLocalServer>
#include <QObject>

class QLocalSocket;

// The far end of a test inside the real workbench: takes one JSON object per line and answers each
// with one. What an operator would do (a click, a key) is done after the answer was sent, so that
// a box that it opens blocks nobody.
class PilotServer : public QObject
{
    Q_OBJECT
public:
    explicit PilotServer(const QString& socketName);

private:
    void accept();
    void readFrom(QLocalSocket* socket);

    QLocalServer m_server;
};
