#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QString>
#include <QThread>
#include <QVector>
#include <algorithm>
#include <cstdio>

// What measurements of running programs share.
namespace Measured {

// Time on a processor of all threads of a process so far, ns, from the scheduler's own account.
inline qint64 processorTime(qint64 process)
{
    qint64 sum = 0;
    const QDir tasks(QString("/proc/%1/task").arg(process));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks.filePath(task + "/schedstat"));
        if (file.open(QIODevice::ReadOnly)) {
            sum += file.readAll().split(' ').value(0).toLongLong();
        }
    }
    return sum;
}

inline double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

// Median share of one core over some rounds, after the process has settled; 1 is a whole core.
inline double shareOf(qint64 process)
{
    constexpr int rounds = 3;
    constexpr unsigned long roundSeconds = 8;
    constexpr unsigned long settleSeconds = 3;
    QThread::sleep(settleSeconds);
    QVector<double> shares;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer elapsed;
        elapsed.start();
        const qint64 before = processorTime(process);
        QThread::sleep(roundSeconds);
        shares << double(processorTime(process) - before) / double(elapsed.nsecsElapsed());
    }
    return median(shares);
}

inline void tell(const char* name, double value, const char* unit, double bound, const char* sense)
{
    std::printf("{\"name\": \"%s\", \"value\": %.4f, \"unit\": \"%s\", \"bound\": %g, \"sense\": \"%s\"}\n",
                name, value, unit, bound, sense);
    std::fflush(stdout);
}

inline int fail(const QString& why)
{
    std::fprintf(stderr, "%s\n", qPrintable(why));
    return 1;
}

}  // namespace Measured
