#include "spectrum/scanaddress.h"

#include <QCoreApplication>

namespace {

constexpr int longestHost = 253;  // of a name in the domain name system
constexpr int shownCharacters = 60;

bool isHost(const QString& host)
{
    if (host.isEmpty() || host.size() > longestHost)
        return false;
    for (const QChar character : host) {
        const bool plain = character.unicode() < 128 && character.isLetterOrNumber();
        if (!plain && !QStringLiteral("-._:%").contains(character))
            return false;
    }
    return true;
}

ScanAddress refused(const QString& text)
{
    ScanAddress address;
    address.problem =
        text.isEmpty() ? QCoreApplication::translate("ScanAddress", "The scan buffer's address is not known.")
                       : QCoreApplication::translate(
                             "ScanAddress",
                             "\"%1\" is not an address of a scan buffer. Expected is HOST:PORT, with a "
                             "port from 1 to 65535, or HOST alone.")
                             .arg(text.left(shownCharacters));
    return address;
}

}  // namespace

QString ScanAddress::text() const
{
    return (host.contains(QLatin1Char(':')) ? QStringLiteral("[%1]:%2") : QStringLiteral("%1:%2"))
        .arg(host)
        .arg(port);
}

ScanAddress ScanAddress::read(const QString& entry)
{
    const QString text = entry.trimmed();
    QString host = text;
    QString port;
    bool hasPort = false;
    if (text.startsWith(QLatin1Char('['))) {
        const qsizetype end = text.indexOf(QLatin1Char(']'));
        if (end < 0)
            return refused(text);
        host = text.mid(1, end - 1);
        const QString rest = text.mid(end + 1);
        hasPort = !rest.isEmpty();
        if (hasPort && !rest.startsWith(QLatin1Char(':')))
            return refused(text);
        port = rest.mid(1);
    } else if (text.count(QLatin1Char(':')) == 1) {
        hasPort = true;
        host = text.section(QLatin1Char(':'), 0, 0);
        port = text.section(QLatin1Char(':'), 1);
    }
    if (!isHost(host))
        return refused(text);
    ScanAddress address;
    address.host = host;
    address.port = defaultPort;
    if (hasPort) {
        bool number = false;
        address.port = port.toUShort(&number);
        if (!number || address.port == 0)
            return refused(text);
    }
    return address;
}
