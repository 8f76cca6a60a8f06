#include <QElapsedTimer>
#include <algorithm>

#include "figures.h"
#include "link/batchwriter.h"
#include "link/codec.h"

namespace Bench {
namespace {

constexpr int updates = 8000;
constexpr int repetitions = 40;

QByteArray samplePayload()
{
    Link::BatchWriter writer(77, 1, 0, 0);
    for (int i = 0; i < updates; ++i)
        writer.add(quint32(i + 1), 1777777777000000 + i / 10, Link::ValueStatus::Usable, double(i) / 3);
    return writer.finish();
}

template <class Run>
double bestNanoseconds(Run run)
{
    qint64 best = INT64_MAX;
    for (int i = 0; i < repetitions; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        best = std::min(best, timer.nsecsElapsed());
    }
    return double(best) / updates;
}

}  // namespace

void measureCodec()
{
    const QByteArray payload = samplePayload();
    Link::Message message;
    QString error;
    require(Link::decode(payload, &message, &error), "a batch is read");
    const QVector<Link::Update>& read = std::get<Link::Batch>(message).updates;
    require(read.size() == updates && read.last().content == Link::Content(double(updates - 1) / 3),
            "a batch is read as it was written");
    print("link.decode_batch", bestNanoseconds([&] { Link::decode(payload, &message, &error); }), "ns/update",
          0, Sense::Info);
    print("link.encode_batch", bestNanoseconds([] { samplePayload(); }), "ns/update", 0, Sense::Info);
}

}  // namespace Bench
