#pragma once

#include <QString>
#include <QStringList>

namespace Receiver {

// Where the driver's values stand: the one place that composes their paths. Suffixes come with
// their leading slash.
class Paths
{
public:
    explicit Paths(const QString& devicePath) : m_device(devicePath) {}

    QString device(const QString& suffix = QString()) const { return m_device + suffix; }
    QString channel(const QString& name, const QString& suffix = QString()) const
    {
        return m_device + QStringLiteral("/DDC/") + name + suffix;
    }

    // Name of the main receiver's own channel.
    static QString mainChannel() { return QStringLiteral("MAIN"); }

    // DDC1 to DDCn.
    static QStringList channelNames(int count);

    // "/RX1", "/SITE/RX2": starts with a slash, names of letters, digits, "_", "-" and ".".
    static bool isDevicePath(const QString& path);

private:
    QString m_device;
};

}  // namespace Receiver
