#include "startup/configschema.h"

#include <QVector>
#include <algorithm>

namespace ConfigSchema {

namespace {

const double anyMinimum = 0;  // equal limits are none
const double anyMaximum = 0;
const double maximumMask = 4294967295.0;
const double maximumSeconds = 86400.0;
const double maximumLogBytes = 1e10;
const double maximumLogFiles = 100;

const Key keys[] = {
    {"", "Name", Kind::Text, anyMinimum, anyMaximum},
    {"", "Driver", Kind::Text, anyMinimum, anyMaximum},
    {"", "TraceMask", Kind::Integer, 0, maximumMask},
    {"", "ConnectionTimeout", Kind::Number, 0.001, maximumSeconds},
    {"", "Boxed", Kind::Bool, anyMinimum, anyMaximum},
    {"", "Language", Kind::Text, anyMinimum, anyMaximum},
    {"", "Translations", Kind::Text, anyMinimum, anyMaximum},
    {"", "MapViewAddress", Kind::Text, anyMinimum, anyMaximum},
    {"", "LogFile", Kind::Text, anyMinimum, anyMaximum},
    {"", "LogSize", Kind::Integer, 1024, maximumLogBytes},
    {"", "LogFiles", Kind::Integer, 1, maximumLogFiles},
    {"", "Journal", Kind::Text, anyMinimum, anyMaximum},
    {"", "GeometryFile", Kind::Text, anyMinimum, anyMaximum},
    {"", "AdditionalDlls", Kind::Group, anyMinimum, anyMaximum},
    {"Entry", "FileName", Kind::Text, anyMinimum, anyMaximum},
    {"Entry", "Config", Kind::Group, anyMinimum, anyMaximum},
    {"Config:DDCGUI", "ValuePath", Kind::Text, anyMinimum, anyMaximum},
    {"Config:DDCGUI", "DdcName", Kind::Text, anyMinimum, anyMaximum},
    {"Config:DDCGUI", "Caption", Kind::Text, anyMinimum, anyMaximum},
    {"Config:DDCGUI", "LocalRecorder", Kind::Bool, anyMinimum, anyMaximum},
    {"Config:ReceiverGui", "ValuePath", Kind::Text, anyMinimum, anyMaximum},
    {"Config:ReceiverGui", "Caption", Kind::Text, anyMinimum, anyMaximum},
    {"Config:ReceiverGui", "LocalRecorder", Kind::Bool, anyMinimum, anyMaximum},
    {"Config:ReceiverGui", "MshClientCfg", Kind::Group, anyMinimum, anyMaximum},
    {"Config:ReceiverGui/MshClientCfg", "IsReceiver", Kind::Bool, anyMinimum, anyMaximum},
    {"Config:ReceiverGui/MshClientCfg", "SubGroup", Kind::Text, anyMinimum, anyMaximum},
};

// Edits that turn one word into the other: insert, delete, replace, swap of neighbours.
int Distance(const QString& a, const QString& b)
{
    QVector<QVector<int>> cost(a.size() + 1, QVector<int>(b.size() + 1));
    for (int i = 0; i <= a.size(); ++i) {
        for (int j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const int replace = cost[i - 1][j - 1] + (a.at(i - 1) == b.at(j - 1) ? 0 : 1);
            int best = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, replace});
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1))
                best = std::min(best, cost[i - 2][j - 2] + 1);
            cost[i][j] = best;
        }
    }
    return cost[a.size()][b.size()];
}

}  // namespace

const Key* Find(const QString& scope, const QString& name)
{
    for (const Key& key : keys)
        if (scope == QLatin1String(key.scope) && name == QLatin1String(key.name))
            return &key;
    return nullptr;
}

QStringList Names(const QString& scope)
{
    QStringList names;
    for (const Key& key : keys)
        if (scope == QLatin1String(key.scope))
            names.append(QLatin1String(key.name));
    return names;
}

QString Nearest(const QString& name, const QStringList& names)
{
    const int longestName = 64;  // nobody means a known name with more
    if (name.size() > longestName)
        return QString();
    QString nearest;
    int smallest = qMax(2, int(name.size()) / 3) + 1;
    for (const QString& candidate : names) {
        const int distance = Distance(name.toLower(), candidate.toLower());
        if (distance < smallest && distance < candidate.size()) {
            smallest = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

QString Describe(Kind kind)
{
    switch (kind) {
        case Kind::Text:
            return QStringLiteral("a text");
        case Kind::Bool:
            return QStringLiteral("true or false");
        case Kind::Integer:
            return QStringLiteral("an integer");
        case Kind::Number:
            return QStringLiteral("a number");
        case Kind::Group:
            return QStringLiteral("a table or an array of tables");
    }
    return QString();
}

}  // namespace ConfigSchema
