#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QLocalSocket>
#include <QPointF>
#include <QString>

namespace RxTest {

// A widget of the workbench: what chooses it, see pilotcommands.h.
using Target = QJsonObject;

// The hand of the operator: drives one running workbench through its test plug-in.
class Pilot
{
public:
    explicit Pilot(const QString& socketName);

    bool reach(int milliseconds);  // the workbench is up and answers
    bool isReached() const { return m_socket.state() == QLocalSocket::ConnectedState; }

    // One command, one answer. {"ok": false} with a reason also when the workbench is gone.
    QJsonObject ask(const QJsonObject& command);

    // --- looking ---
    QJsonArray windows();
    QJsonObject window(const QString& part);   // the visible window whose title or class contains it
    QJsonObject box();                         // the modal window in front; empty when there is none
    QJsonObject widget(const Target& target);  // the first that fits; empty when there is none
    QString text(const Target& target);
    bool isVisible(const Target& target);
    bool isChecked(const Target& target);

    QJsonObject value(const QString& path);  // "exists", "text", "state", "pending", "answer"
    QString valueText(const QString& path);
    int valueState(const QString& path);  // -1 when it is not in the tree

    // --- doing; each says why when it cannot be done ---
    QString click(const Target& target);
    QString press(const QString& button);  // in the box in front
    QString type(const Target& target, const QString& text, const QStringList& keys);
    QString choose(const Target& target, const QString& item);
    QString wheel(const Target& target, int notches);
    QString write(const QString& path, const QString& text);
    QString close(const Target& target);
    QString show(const Target& target, const QString& how);
    QString grab(const Target& target, const QString& file);
    QString resize(const Target& target, int width, int height);

    // --- the live scan; see pilotscan.h ---
    QJsonObject scan();                        // empty when there is none
    QJsonObject peak(double from, double to);  // "frequency" Hz, "level" dBµV; of the picture's trace
    // Presses at the first point, moves over the others and releases at the last.
    QString drag(const QList<QPointF>& points);

private:
    QString perform(const char* command, const Target& target, const QJsonObject& more = {});

    QString m_socketName;
    QLocalSocket m_socket;
};

}  // namespace RxTest
