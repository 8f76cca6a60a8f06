#include "receiver/values/paths.h"

#include <QRegularExpression>

namespace Receiver {

QStringList Paths::channelNames(int count)
{
    QStringList names;
    for (int number = 1; number <= count; ++number)
        names << QStringLiteral("DDC%1").arg(number);
    return names;
}

bool Paths::isDevicePath(const QString& path)
{
    constexpr int longest = 200;
    static const QRegularExpression form(QStringLiteral("\\A(/[A-Za-z0-9_.-]+)+\\z"));
    return path.size() <= longest && form.match(path).hasMatch();
}

}  // namespace Receiver
