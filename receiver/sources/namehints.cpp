#include "receiver/sources/namehints.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace Receiver {

namespace {

double factorOf(const QString& prefix)
{
    if (prefix.isEmpty())
        return 1.0;
    switch (prefix.at(0).toLatin1()) {
        case 'k':
            return 1e3;
        case 'M':
            return 1e6;
        default:
            return 1e9;
    }
}

}  // namespace

NameHints hintsOfName(const QString& fileName)
{
    static const QRegularExpression pattern(
        QStringLiteral("(?:^|[_\\- ])([0-9]+(?:\\.[0-9]+)?)([kMG]?)(Hz|[Ss]ps|SPS)(?=[_\\-. ]|$)"));
    NameHints hints;
    auto matches = pattern.globalMatch(QFileInfo(fileName).fileName());
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const double value = match.captured(1).toDouble() * factorOf(match.captured(2));
        std::optional<double>& hint = match.captured(3) == QLatin1String("Hz") ? hints.center : hints.rate;
        if (!hint)
            hint = value;
    }
    return hints;
}

}  // namespace Receiver
