#include "startup/configfile.h"

#include <QFile>
#include <QFileInfo>

namespace {

const qint64 maximumFileBytes = 1 << 20;
const int maximumPointsPerLine = 64;  // each point of a key name nests one table deeper

// Points outside quotes and comments. A text over several lines counts as if it were names, which
// only matters for one with more than 64 points in a line.
int CountPoints(const QByteArray& line)
{
    int points = 0;
    char quote = 0;
    for (int i = 0; i < line.size(); ++i) {
        const char c = line.at(i);
        if (quote) {
            if (c == '\\' && quote == '"')
                ++i;
            else if (c == quote)
                quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '#') {
            break;
        } else if (c == '.') {
            ++points;
        }
    }
    return points;
}

}  // namespace

namespace ConfigFile {

QString Message(const QString& origin, unsigned line, unsigned column, const QString& what)
{
    return QStringLiteral("%1:%2:%3: ").arg(origin).arg(line).arg(column) + what;
}

bool Read(const QString& fileName, QByteArray* content, QString* error)
{
    const auto fail = [&](const QString& what) {
        if (error)
            *error = Message(fileName, 1, 1, what);
        return false;
    };
    const QFileInfo info(fileName);
    if (!info.exists())
        return fail(QStringLiteral("no such file; give the name of an existing configuration file"));
    if (!info.isFile())
        return fail(QStringLiteral("not a file; give the name of a configuration file, not of a folder"));
    if (info.size() > maximumFileBytes)
        return fail(QStringLiteral("%1 bytes are too long for a configuration (at most %2); "
                                   "give the name of a configuration file")
                        .arg(info.size())
                        .arg(maximumFileBytes));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return fail(
            QStringLiteral("cannot be read (%1); check the file's permissions").arg(file.errorString()));
    *content = file.read(maximumFileBytes);
    return true;
}

bool CheckNesting(const QByteArray& content, const QString& origin, QString* error)
{
    const QList<QByteArray> lines = content.split('\n');
    for (int number = 0; number < lines.size(); ++number) {
        const int points = CountPoints(lines.at(number));
        if (points <= maximumPointsPerLine)
            continue;
        if (error)
            *error = Message(origin, unsigned(number) + 1, 1,
                             QStringLiteral("%1 points in one line; key names have at most %2 parts")
                                 .arg(points)
                                 .arg(maximumPointsPerLine + 1));
        return false;
    }
    return true;
}

}  // namespace ConfigFile
