#include "pilot.h"

#include <QElapsedTimer>
#include <QJsonDocument>

#include "program.h"

namespace RxTest {

namespace {

constexpr int answerMs = 30000;

}  // namespace

Pilot::Pilot(const QString& socketName) : m_socketName(socketName) {}

bool Pilot::reach(int milliseconds)
{
    return until(
        [this] {
            if (!isReached()) {
                m_socket.abort();
                m_socket.connectToServer(m_socketName);
            }
            return m_socket.waitForConnected(10) && ask({{"cmd", "ping"}})["ok"].toBool();
        },
        milliseconds);
}

QJsonObject Pilot::ask(const QJsonObject& command)
{
    m_socket.write(QJsonDocument(command).toJson(QJsonDocument::Compact) + '\n');
    QElapsedTimer waited;
    waited.start();
    while (!m_socket.canReadLine()) {
        if (!isReached() || waited.elapsed() > answerMs || !m_socket.waitForReadyRead(answerMs)) {
            return {{"ok", false}, {"error", "the workbench does not answer"}};
        }
    }
    return QJsonDocument::fromJson(m_socket.readLine()).object();
}

QJsonArray Pilot::windows()
{
    return ask({{"cmd", "windows"}})["windows"].toArray();
}

QJsonObject Pilot::window(const QString& part)
{
    for (const QJsonValue& entry : windows()) {
        const QJsonObject facts = entry.toObject();
        if (facts["visible"].toBool() &&
            (facts["title"].toString().contains(part) || facts["class"].toString().contains(part) ||
             facts["name"].toString().contains(part))) {
            return facts;
        }
    }
    return {};
}

QJsonObject Pilot::box()
{
    for (const QJsonValue& entry : windows()) {
        if (entry.toObject()["modal"].toBool()) {
            return entry.toObject();
        }
    }
    return {};
}

QJsonObject Pilot::widget(const Target& target)
{
    QJsonObject command = target;
    command["cmd"] = "find";
    return ask(command)["widgets"].toArray().at(target["index"].toInt(0)).toObject();
}

QString Pilot::text(const Target& target)
{
    return widget(target)["text"].toString();
}
bool Pilot::isVisible(const Target& target)
{
    return widget(target)["visible"].toBool();
}
bool Pilot::isChecked(const Target& target)
{
    return widget(target)["checked"].toBool();
}

QJsonObject Pilot::value(const QString& path)
{
    return ask({{"cmd", "value"}, {"path", path}});
}
QString Pilot::valueText(const QString& path)
{
    return value(path)["text"].toString();
}

int Pilot::valueState(const QString& path)
{
    const QJsonObject facts = value(path);
    return facts["exists"].toBool() ? facts["state"].toInt() : -1;
}

QString Pilot::perform(const char* name, const Target& target, const QJsonObject& more)
{
    QJsonObject command = target;
    for (auto it = more.begin(); it != more.end(); ++it) {
        command[it.key()] = it.value();
    }
    command["cmd"] = name;
    const QJsonObject answer = ask(command);
    return answer["ok"].toBool() ? QString() : answer["error"].toString("no answer");
}

QString Pilot::click(const Target& target)
{
    return perform("click", target);
}
QString Pilot::press(const QString& button)
{
    return perform("press", {{"text", button}});
}

QString Pilot::type(const Target& target, const QString& text, const QStringList& keys)
{
    const QString fault = perform("focus", target);
    if (!fault.isEmpty()) {
        return fault;
    }
    return perform("type", {}, {{"text", text}, {"keys", QJsonArray::fromStringList(keys)}});
}

QString Pilot::choose(const Target& target, const QString& item)
{
    return perform("choose", target, {{"item", item}});
}

QString Pilot::wheel(const Target& target, int notches)
{
    return perform("wheel", target, {{"notches", notches}});
}

QString Pilot::write(const QString& path, const QString& text)
{
    return perform("write", {}, {{"path", path}, {"text", text}});
}

QString Pilot::close(const Target& target)
{
    return perform("close", target);
}

QString Pilot::show(const Target& target, const QString& how)
{
    return perform("show", target, {{"how", how}});
}

QString Pilot::grab(const Target& target, const QString& file)
{
    return perform("grab", target, {{"file", file}});
}

QString Pilot::resize(const Target& target, int width, int height)
{
    return perform("resize", target, {{"size", QJsonArray{width, height}}});
}

QJsonObject Pilot::scan()
{
    const QJsonObject facts = ask({{"cmd", "scan"}});
    return facts["ok"].toBool() ? facts : QJsonObject();
}

QJsonObject Pilot::peak(double from, double to)
{
    return ask({{"cmd", "scan"}, {"from", from}, {"to", to}})["peak"].toObject();
}

QString Pilot::drag(const QList<QPointF>& points)
{
    QJsonArray steps;
    const auto step = [&steps](const char* what, const QPointF& point) {
        steps.append(QJsonArray{what, point.x(), point.y()});
    };
    step("move", points.first());
    step("press", points.first());
    for (const QPointF& point : points.mid(1)) {
        step("move", point);
    }
    step("release", points.last());
    return perform("mouse", {{"name", "spectrumCanvas"}}, {{"steps", steps}});
}

}  // namespace RxTest
