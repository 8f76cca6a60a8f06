#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>

#include "driverprocess.h"
#include "figures.h"
#include "link/channel.h"
#include "link/heart.h"
#include "link/messages.h"

namespace Bench {
namespace {

constexpr int warmUpMs = 3000;
constexpr int patienceMs = 60000;
constexpr int sampleMs = 250;

}  // namespace

// A client that keeps its heart beating but reads nothing for a while.
void measureStoppedReader(int seconds)
{
    DriverLoad load;
    load.values = 10000;
    load.events = 100;
    load.updatesPerSecond = 400000;
    DriverProcess driver(load);

    QTcpSocket socket;
    socket.setReadBufferSize(64 << 10);
    socket.connectToHost(QStringLiteral("127.0.0.1"), driver.port());
    require(socket.waitForConnected(patienceMs), "the driver is connected");
    Link::Channel channel(&socket);
    Link::Heart heart(&channel, 500, patienceMs, nullptr);
    quint64 updates = 0;
    quint64 skipped = 0;
    quint64 lost = 0;
    QObject::connect(&channel, &Link::Channel::received, &channel, [&](Link::Message& message) {
        if (const auto* batch = std::get_if<Link::Batch>(&message)) {
            updates += quint64(batch->updates.size());
            skipped += batch->skipped;
            lost += batch->lost;
        }
    });
    Link::Hello hello;
    hello.session = QByteArray(16, 's');
    channel.send(hello);
    channel.send(Link::Hook{1, QStringLiteral("/BENCH")});

    QEventLoop loop;
    QTimer::singleShot(warmUpMs, &loop, &QEventLoop::quit);
    loop.exec();
    require(updates > 0, "updates arrive before the stop");

    channel.setPaused(true);
    const double before = driver.residentMegabytes();
    double highest = before;
    QTimer sample;
    QObject::connect(&sample, &QTimer::timeout, &sample,
                     [&] { highest = std::max(highest, driver.residentMegabytes()); });
    sample.start(sampleMs);
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
    require(socket.state() == QAbstractSocket::ConnectedState, "the stopped reader is still connected");

    // Reading again, it must hear of what was skipped.
    const quint64 skippedBefore = skipped;
    const quint64 lostBefore = lost;
    channel.setPaused(false);
    QElapsedTimer timer;
    timer.start();
    while (skipped - skippedBefore < quint64(load.updatesPerSecond) && timer.elapsed() < patienceMs)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    require(skipped - skippedBefore >= quint64(load.updatesPerSecond),
            "skipped changes were counted and told");
    require(lost > lostBefore, "lost events were counted and told");
    print("link.growth_stopped_reader", highest - before, "MB", 10, Sense::Max);
}

}  // namespace Bench
