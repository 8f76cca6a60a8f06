#include "driverprocess.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>
#include <cmath>
#include <cstdio>

#include "figures.h"
#include "receiver/server/server.h"

namespace Bench {
namespace {

constexpr int tickMs = 5;
constexpr int fullLoadChunk = 4096;

// Changes the values one after the other, each time to something new.
class Changer
{
public:
    Changer(Receiver::ValueStore& store, const DriverLoad& load)
        : m_store(store), m_rate(load.updatesPerSecond)
    {
        for (int i = 0; i < load.values; ++i) {
            Link::Description description;
            description.path = QStringLiteral("/BENCH/V%1").arg(i);
            description.kind = Link::ValueKind::Float;
            description.unit = QStringLiteral("dBµV");
            description.hasLimits = true;
            description.minimum = -1e12;
            description.maximum = 1e12;
            description.event = i < load.events;
            m_ids.append(m_store.define(description, 0.0));
        }
        m_clock.start();
    }

    void tick()
    {
        const double due =
            std::isinf(m_rate) ? m_done + fullLoadChunk : double(m_clock.elapsed()) / 1000 * m_rate;
        for (; m_done < due; m_done += 1) {
            m_store.set(m_ids.at(m_next), m_done + 1);
            m_next = (m_next + 1) % m_ids.size();
        }
    }

private:
    Receiver::ValueStore& m_store;
    double m_rate;
    QVector<Receiver::ValueId> m_ids;
    QElapsedTimer m_clock;
    double m_done = 0;
    qsizetype m_next = 0;
};

}  // namespace

int serve(const QStringList& arguments)
{
    DriverLoad load;
    load.values = arguments.at(0).toInt();
    load.events = arguments.at(1).toInt();
    load.updatesPerSecond = arguments.at(2).toDouble();
    Receiver::ValueStore store;
    Changer changer(store, load);
    Receiver::Server server(store);
    QString error;
    require(server.listen(QStringLiteral("127.0.0.1"), 0, &error), "the driver listens");
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { changer.tick(); });
    if (load.updatesPerSecond > 0)
        timer.start(std::isinf(load.updatesPerSecond) ? 0 : tickMs);
    // The parent holds the other end of the standard input; when it goes, this process goes.
    QSocketNotifier parent(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&parent, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    std::printf("%d\n", int(server.port()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

DriverProcess::DriverProcess(const DriverLoad& load)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--serve"), QString::number(load.values), QString::number(load.events),
                     QString::number(load.updatesPerSecond)});
    while (!m_process.canReadLine() && m_process.waitForReadyRead()) {
    }
    m_port = m_process.readLine().trimmed().toUShort();
    require(m_port != 0, "the driver's process starts");
}

DriverProcess::~DriverProcess()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(5000))
        m_process.kill();
    m_process.waitForFinished();
}

double DriverProcess::residentMegabytes() const
{
    QFile statm(QStringLiteral("/proc/%1/statm").arg(m_process.processId()));
    require(statm.open(QIODevice::ReadOnly), "the driver runs");
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.value(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / 1e6;
}

}  // namespace Bench
