#include "driverclient.h"

#include <QTest>

DriverClient::DriverClient(quint16 port)
{
    connect(&m_session, &Link::ClientSession::snapshotReceived, this, [this](Link::Snapshot& snapshot) {
        for (const Link::Description& description : snapshot.descriptions) {
            m_ids.insert(description.path, description.id);
            m_descriptions.insert(description.id, description);
        }
        for (const Link::Update& update : snapshot.contents)
            note(update);
        if (snapshot.last)
            m_served.insert(snapshot.hook);
    });
    connect(&m_session, &Link::ClientSession::describeReceived, this, [this](Link::Describe& describe) {
        for (const Link::Description& description : describe.descriptions) {
            m_ids.insert(description.path, description.id);
            m_descriptions.insert(description.id, description);
        }
    });
    connect(&m_session, &Link::ClientSession::batchReceived, this, [this](Link::Batch& batch) {
        for (const Link::Update& update : batch.updates)
            note(update);
    });
    connect(&m_session, &Link::ClientSession::answered, this,
            [this](const Link::Answer& answer) { m_answers.insert(answer.number, answer); });
    m_session.start("127.0.0.1", port);
}

DriverClient::~DriverClient()
{
    m_session.disconnect(this);
}

// A status alone leaves the content as it was.
void DriverClient::note(const Link::Update& update)
{
    Link::Update next = update;
    if (std::holds_alternative<std::monostate>(next.content))
        next.content = m_current.value(update.id).content;
    m_current.insert(update.id, next);
    const QString path = m_descriptions.value(update.id).path;
    if (m_watched.contains(path))
        m_heard[path].append(next);
}

bool DriverClient::hook(const QString& path)
{
    if (!QTest::qWaitFor([this] { return m_session.isConnected(); }, patienceMs))
        return false;
    const quint32 number = m_session.hook(path);
    return QTest::qWaitFor([this, number] { return m_served.contains(number); }, patienceMs);
}

Link::Answer DriverClient::write(const QString& path, const Link::Content& content)
{
    const quint32 number = m_session.write(m_ids.value(path), content);
    Link::Answer none;
    none.kind = Link::AnswerKind::Refused;
    none.reason = "no answer came";
    if (number == 0 || !QTest::qWaitFor([this, number] { return m_answers.contains(number); }, patienceMs))
        return none;
    return m_answers.take(number);
}

Link::Answer DriverClient::select(const QString& path, double number)
{
    for (const Link::Item& item : description(path).items) {
        if (item.number == number)
            return write(path, item.key);
    }
    Link::Answer none;
    none.kind = Link::AnswerKind::Refused;
    none.reason = QString("%1 has no item of %2").arg(path).arg(number);
    return none;
}

bool DriverClient::waitForText(const QString& path, const QString& text)
{
    return QTest::qWaitFor([&] { return this->text(path) == text; }, patienceMs);
}

bool DriverClient::waitForStatus(const QString& path, Link::ValueStatus status)
{
    return QTest::qWaitFor([&] { return current(path).status == status; }, patienceMs);
}

bool DriverClient::waitForFlag(const QString& path, bool flag)
{
    return QTest::qWaitFor([&] { return current(path).content == Link::Content(flag); }, patienceMs);
}

Link::Description DriverClient::description(const QString& path) const
{
    return m_descriptions.value(m_ids.value(path));
}

Link::Update DriverClient::current(const QString& path) const
{
    return m_current.value(m_ids.value(path));
}

double DriverClient::number(const QString& path) const
{
    const Link::Content content = current(path).content;
    if (const auto* number = std::get_if<double>(&content))
        return *number;
    const auto* key = std::get_if<qint64>(&content);
    for (const Link::Item& item : description(path).items) {
        if (key && item.key == *key)
            return item.number;
    }
    return key ? double(*key) : qQNaN();
}

QString DriverClient::text(const QString& path) const
{
    const Link::Content content = current(path).content;
    const auto* text = std::get_if<QString>(&content);
    return text ? *text : QString();
}

void DriverClient::leave()
{
    m_session.stop();
}
