#pragma once

#include <QHash>
#include <QMap>
#include <QSet>
#include <QVector>

#include "link/clientsession.h"

// A client of the real driver as tests need it: hooks, waits, writes, and notes what it hears of the
// values that it watches.
class DriverClient : public QObject
{
    Q_OBJECT
public:
    static constexpr int patienceMs = 60000;  // the machine may be busy

    explicit DriverClient(quint16 port);
    ~DriverClient() override;

    // Each waits; false or an empty answer when it does not come in time.
    bool hook(const QString& path);
    Link::Answer write(const QString& path, const Link::Content& content);
    Link::Answer select(const QString& path, double number);  // the item with this number
    bool waitForText(const QString& path, const QString& text);
    bool waitForStatus(const QString& path, Link::ValueStatus status);
    bool waitForFlag(const QString& path, bool flag);

    QStringList paths() const { return m_ids.keys(); }
    bool has(const QString& path) const { return m_ids.contains(path); }
    Link::Description description(const QString& path) const;
    Link::Update current(const QString& path) const;
    double number(const QString& path) const;
    QString text(const QString& path) const;

    // Keeps every update of the value from now on, in the order of arrival.
    void watch(const QString& path) { m_watched.insert(path); }
    const QVector<Link::Update>& heard(const QString& path) { return m_heard[path]; }

    quint16 streamPort() const { return m_session.welcome().streamPort; }

    void leave();  // flushes and disconnects

private:
    void note(const Link::Update& update);

    Link::ClientSession m_session;
    QMap<QString, quint32> m_ids;
    QHash<quint32, Link::Description> m_descriptions;
    QHash<quint32, Link::Update> m_current;
    QHash<QString, QVector<Link::Update>> m_heard;
    QSet<QString> m_watched;
    QSet<quint32> m_served;
    QHash<quint32, Link::Answer> m_answers;
};
