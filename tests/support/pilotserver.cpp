#include "pilotserver.h"

#include <QJsonDocument>
#include <QLocalSocket>
#include <QLoggingCategory>

#include "pilotcommands.h"

namespace {
Q_LOGGING_CATEGORY(lcPilot, "rx.test.pilot")
}

PilotServer::PilotServer(const QString& socketName)
{
    connect(&m_server, &QLocalServer::newConnection, this, &PilotServer::accept);
    if (!m_server.listen(socketName)) {
        qCCritical(lcPilot).noquote() << "cannot listen on" << socketName << m_server.errorString();
    }
}

void PilotServer::accept()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void PilotServer::readFrom(QLocalSocket* socket)
{
    while (socket->canReadLine()) {
        const QByteArray line = socket->readLine();
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        const QJsonObject answer = document.isObject()
                                       ? PilotCommands::run(document.object())
                                       : QJsonObject{{"ok", false}, {"error", error.errorString()}};
        socket->write(QJsonDocument(answer).toJson(QJsonDocument::Compact) + '\n');
        socket->flush();
    }
}
