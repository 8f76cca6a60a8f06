#include "codecsamples.h"

#include <QDebug>
#include <cstdint>
#include <limits>

using namespace Link;

namespace {

Description fullDescription()
{
    Description description;
    description.id = 0xffffffff;
    description.path = QStringLiteral("/RX1/DDC/DDC1/Bandwidth");
    description.kind = ValueKind::Selection;
    description.unit = QStringLiteral("dBµV");
    description.hasLimits = true;
    description.minimum = -1.5;
    description.maximum = 3e9;
    description.step = 0.5;
    description.precision = 3;
    description.writable = false;
    description.event = true;
    description.items = {{-1, QStringLiteral("none"), 0}, {7, QStringLiteral("15 kHz"), 15000}};
    return description;
}

QVector<Update> updates()
{
    const qint64 now = 1777777777123456;
    return {{1, now, ValueStatus::Usable, 98.5e6},
            {2, now, ValueStatus::NotAvailable, std::monostate()},
            {3, now + 70000, ValueStatus::Usable, true},
            {4, now - 5, ValueStatus::Usable, QStringLiteral("Köln 📡")},
            {5, 0, ValueStatus::Usable, QByteArray("\x00\xff\x01", 3)},
            {6, now, ValueStatus::Usable, std::numeric_limits<qint64>::min()},
            {70000, now, ValueStatus::Usable, std::numeric_limits<qint64>::max()},
            {0xffffffff, now, ValueStatus::Usable, -0.0},
            {8, now, ValueStatus::Usable, false},
            {9, now, ValueStatus::Usable, QString()}};
}

QString dumped(const Content& content)
{
    QString text;
    QDebug out(&text);
    out << int(content.index());
    std::visit(
        [&out](const auto& what) {
            if constexpr (std::is_same_v<std::decay_t<decltype(what)>, double>)
                out << QByteArray::number(what, 'g', 17);
            else if constexpr (!std::is_same_v<std::decay_t<decltype(what)>, std::monostate>)
                out << what;
        },
        content);
    return text;
}

void dump(QDebug& out, const Description& d)
{
    out << d.id << d.path << int(d.kind) << d.unit << d.hasLimits << d.minimum << d.maximum << d.step
        << d.precision << d.writable << d.event;
    for (const Item& item : d.items)
        out << item.key << item.text << item.number;
}

void dump(QDebug& out, const Update& u)
{
    out << u.id << u.time << int(u.status) << dumped(u.content);
}

struct Dumper
{
    QDebug& out;
    void operator()(const Hello& m) { out << m.version << m.client << m.session; }
    void operator()(const Hook& m) { out << m.number << m.path; }
    void operator()(const Release& m) { out << m.number; }
    void operator()(const Write& m) { out << m.number << m.id << dumped(m.content); }
    void operator()(const Resync&) {}
    void operator()(const Welcome& m) { out << m.version << m.epoch << m.driver << m.streamPort; }
    void operator()(const Snapshot& m)
    {
        out << m.hook << m.last;
        for (const Description& description : m.descriptions)
            dump(out, description);
        for (const Update& update : m.contents)
            dump(out, update);
    }
    void operator()(const Describe& m)
    {
        for (const Description& description : m.descriptions)
            dump(out, description);
        out << m.removed;
    }
    void operator()(const Batch& m)
    {
        out << m.epoch << m.sequence << m.skipped << m.lost;
        for (const Update& update : m.updates)
            dump(out, update);
    }
    void operator()(const Answer& m) { out << m.number << int(m.kind) << m.reason << dumped(m.content); }
    void operator()(const Heartbeat& m) { out << m.time; }
    void operator()(const Bye& m) { out << m.reason; }
    void operator()(const StreamRequest& m)
    {
        out << m.version << m.kind << m.path << m.points << dumped(m.frameRate) << int(m.window)
            << int(m.detector) << dumped(m.averagingSeconds);
    }
    void operator()(const StreamStart& m)
    {
        out << m.version << m.unacknowledged << dumped(m.frameRate) << int(m.window);
    }
    void operator()(const ScanData& m)
    {
        out << m.sequence << m.time << dumped(m.start) << dumped(m.step) << dumped(m.resolutionBandwidth)
            << m.skipped << m.levels;
    }
    void operator()(const StreamReady& m) { out << m.sequence; }
};

}  // namespace

QVector<Message> sampleMessages()
{
    Hello hello;
    hello.client = QStringLiteral("station-7");
    hello.session = QByteArray(16, '\x7f');
    Description plain;
    plain.id = 1;
    plain.path = QStringLiteral("/A");
    QVector<Message> messages = {hello, Hook{3, QStringLiteral("/RX1")}, Release{3}, Resync{}};
    for (const Update& update : updates())
        messages.append(Write{9, update.id, update.content});
    messages.append(Welcome{1, UINT64_MAX, QStringLiteral("rxdriver 0.1"), 65535});
    messages.append(Snapshot{4, true, {fullDescription(), plain}, updates()});
    messages.append(Snapshot{4, false, {}, {}});
    messages.append(Describe{{fullDescription()}, {1, 2, 0xffffffff}});
    messages.append(Batch{UINT64_MAX, 1, 0, UINT64_MAX, updates()});
    messages.append(Batch{77, UINT64_MAX, 5, 0, updates().mid(0, 2)});
    messages.append(Batch{77, 2, 0, 0, {}});
    messages.append(Answer{9, AnswerKind::Clamped, QStringLiteral("clamped to 108 MHz"), 108e6});
    messages.append(Answer{9, AnswerKind::Refused, QStringLiteral("taken"), std::monostate()});
    messages.append(Heartbeat{-5});
    messages.append(Bye{QStringLiteral("the driver ends")});
    messages.append(StreamRequest{1, spectrumStream(), QStringLiteral("/RX1"), 131072, 59.94, 0.3,
                                  StreamWindow::FlatTop, StreamDetector::Maximum});
    messages.append(StreamStart{1, 2, 25, StreamWindow::Hann});
    const float levels[] = {-200.0f, 0.0f, 79.95f};
    messages.append(
        ScanData{UINT64_MAX, 1777777777123456, 95.5e6, 610.3515625, 1223.1, 7, packLevels(levels, 3)});
    messages.append(ScanData{1, -1, -1e6, -0.0, 0, 0, {}});
    messages.append(StreamReady{UINT64_MAX});
    return messages;
}

QString dumped(const Message& message)
{
    QString text;
    QDebug out(&text);
    out << int(message.index());
    std::visit(Dumper{out}, message);
    return text;
}
