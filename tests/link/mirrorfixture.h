#pragma once

#include <QtTest>
#include <functional>
#include <memory>

#include "link/vtclient.h"
#include "receiver/server/server.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"

constexpr int patienceMs = 20000;

// A driver that can die and come back on the same port.
class Driver
{
public:
    Driver() { start(); }

    void start(quint16 port = 0)
    {
        store = std::make_unique<Receiver::ValueStore>();
        Receiver::ServerOptions options;
        options.streamPort = 4711;
        options.batchMs = 1;
        server = std::make_unique<Receiver::Server>(*store, options);
        QString error;
        if (!server->listen(QStringLiteral("127.0.0.1"), port, &error))
            qFatal("%s", qPrintable(error));
        m_port = server->port();
    }

    void die()
    {
        server.reset();
        store.reset();
    }

    quint16 port() const { return m_port; }

    Receiver::ValueId define(const QString& path, const Link::Content& content,
                             const Receiver::ValueStore::Authority& authority = {})
    {
        Link::Description description;
        description.path = path;
        description.kind = Link::ValueKind::Float;
        if (std::holds_alternative<QString>(content))
            description.kind = Link::ValueKind::Text;
        else if (std::holds_alternative<bool>(content))
            description.kind = Link::ValueKind::Bool;
        else if (std::holds_alternative<qint64>(content))
            description.kind = Link::ValueKind::Integer;
        return store->define(description, content, authority);
    }

    std::unique_ptr<Receiver::ValueStore> store;
    std::unique_ptr<Receiver::Server> server;

private:
    quint16 m_port = 0;
};

inline VtClientOptions quickClient()
{
    VtClientOptions options;
    options.session.backoffFirstMs = 10;
    options.session.backoffLastMs = 50;
    options.session.lostMs = 60000;
    options.stopMs = 30;  // the driver runs on the same thread and cannot take anything meanwhile
    return options;
}

// Writes down what it is told, and does what the test wants then.
class Listener : public IObserver
{
public:
    using Reaction = std::function<void(Observable*, TChangeCode)>;

    explicit Listener(const Reaction& reaction = {}) : m_reaction(reaction) {}

    void Update(Observable* subject, TChangeCode code) override
    {
        codes.append(code);
        if (m_reaction)
            m_reaction(subject, code);
    }

    int count(TChangeCode code) const { return int(codes.count(code)); }

    QVector<TChangeCode> codes;

private:
    Reaction m_reaction;
};

template <class T>
T* valueAt(const QString& path)
{
    Tree* tree = Tree::Instance();
    return tree ? dynamic_cast<T*>(tree->FindValue(path)) : nullptr;
}

inline double numberAt(const QString& path)
{
    const FloatValue* value = valueAt<FloatValue>(path);
    return value ? value->GetValue() : qQNaN();
}

#define RX_TRY(CONDITION) QTRY_VERIFY_WITH_TIMEOUT(CONDITION, patienceMs)
