#include "link/codec.h"

#include <QCborStreamWriter>
#include <cmath>

#include "link/batchwriter.h"
#include "link/cborin.h"
#include "link/cborout.h"
#include "link/keys.h"
#include "link/limits.h"
#include "link/streamcodec.h"

namespace Link {
namespace {

constexpr quint32 bit(int key)
{
    return 1u << key;
}

// --- writing ------------------------------------------------------------------------------------

void writeItems(CborOut& out, const QVector<Item>& items)
{
    QCborStreamWriter& writer = out.writer();
    out.key(Keys::descriptionItems);
    writer.startArray(quint64(items.size()));
    for (const Item& item : items) {
        writer.startArray(3);
        writer.append(item.key);
        writer.append(QStringView(item.text));
        writer.append(item.number);
        writer.endArray();
    }
    writer.endArray();
}

// Leaves out what has its default.
void writeDescription(CborOut& out, const Description& description)
{
    QCborStreamWriter& writer = out.writer();
    writer.startMap();
    out.number(Keys::descriptionId, description.id);
    out.text(Keys::descriptionPath, description.path);
    out.number(Keys::descriptionKind, qint64(description.kind));
    if (!description.unit.isEmpty())
        out.text(Keys::descriptionUnit, description.unit);
    if (description.hasLimits) {
        out.key(Keys::descriptionLimits);
        writer.startArray(2);
        writer.append(description.minimum);
        writer.append(description.maximum);
        writer.endArray();
    }
    if (description.step != 0) {
        out.key(Keys::descriptionStep);
        writer.append(description.step);
    }
    if (description.precision >= 0)
        out.number(Keys::descriptionPrecision, qint64(description.precision));
    if (!description.writable)
        out.flag(Keys::descriptionWritable, false);
    if (description.event)
        out.flag(Keys::descriptionEvent, true);
    if (!description.items.isEmpty())
        writeItems(out, description.items);
    writer.endMap();
}

void writeDescriptions(CborOut& out, int key, const QVector<Description>& descriptions)
{
    out.key(key);
    out.writer().startArray(quint64(descriptions.size()));
    for (const Description& description : descriptions)
        writeDescription(out, description);
    out.writer().endArray();
}

// Times travel as differences: values of one moment then take one byte for it.
void writeUpdates(CborOut& out, int key, const QVector<Update>& updates)
{
    QCborStreamWriter& writer = out.writer();
    out.key(key);
    writer.startArray(quint64(updates.size()));
    qint64 time = 0;
    for (const Update& update : updates) {
        writer.startArray(4);
        writer.append(quint64(update.id));
        writer.append(qint64(quint64(update.time) - quint64(time)));
        writer.append(quint64(update.status));
        out.content(update.content);
        writer.endArray();
        time = update.time;
    }
    writer.endArray();
}

QByteArray write(const Hello& hello)
{
    CborOut out(MessageType::Hello);
    out.number(Keys::helloVersion, qint64(hello.version));
    out.text(Keys::helloClient, hello.client);
    out.bytes(Keys::helloSession, hello.session);
    return out.finish();
}

QByteArray write(const Hook& hook)
{
    CborOut out(MessageType::Hook);
    out.number(Keys::number, hook.number);
    out.text(Keys::hookPath, hook.path);
    return out.finish();
}

QByteArray write(const Release& release)
{
    CborOut out(MessageType::Release);
    out.number(Keys::number, release.number);
    return out.finish();
}

QByteArray write(const Write& write)
{
    CborOut out(MessageType::Write);
    out.number(Keys::number, write.number);
    out.number(Keys::writeId, write.id);
    out.key(Keys::writeContent);
    out.content(write.content);
    return out.finish();
}

QByteArray write(const Resync&)
{
    return CborOut(MessageType::Resync).finish();
}

QByteArray write(const Welcome& welcome)
{
    CborOut out(MessageType::Welcome);
    out.number(Keys::welcomeVersion, qint64(welcome.version));
    out.number(Keys::welcomeEpoch, welcome.epoch);
    out.text(Keys::welcomeDriver, welcome.driver);
    out.number(Keys::welcomeStreamPort, quint64(welcome.streamPort));
    return out.finish();
}

QByteArray write(const Snapshot& snapshot)
{
    CborOut out(MessageType::Snapshot);
    out.number(Keys::snapshotHook, snapshot.hook);
    out.flag(Keys::snapshotLast, snapshot.last);
    writeDescriptions(out, Keys::snapshotDescriptions, snapshot.descriptions);
    writeUpdates(out, Keys::snapshotContents, snapshot.contents);
    return out.finish();
}

QByteArray write(const Describe& describe)
{
    CborOut out(MessageType::Describe);
    writeDescriptions(out, Keys::describeDescriptions, describe.descriptions);
    out.key(Keys::describeRemoved);
    out.writer().startArray(quint64(describe.removed.size()));
    for (const quint32 id : describe.removed)
        out.writer().append(quint64(id));
    out.writer().endArray();
    return out.finish();
}

QByteArray write(const Batch& batch)
{
    BatchWriter writer(batch.epoch, batch.sequence, batch.skipped, batch.lost);
    for (const Update& update : batch.updates)
        writer.add(update.id, update.time, update.status, update.content);
    return writer.finish();
}

QByteArray write(const Answer& answer)
{
    CborOut out(MessageType::Answer);
    out.number(Keys::number, answer.number);
    out.number(Keys::answerKind, qint64(answer.kind));
    out.text(Keys::answerReason, answer.reason);
    out.key(Keys::answerContent);
    out.content(answer.content);
    return out.finish();
}

QByteArray write(const Heartbeat& heartbeat)
{
    CborOut out(MessageType::Heartbeat);
    out.number(Keys::heartbeatTime, heartbeat.time);
    return out.finish();
}

QByteArray write(const Bye& bye)
{
    CborOut out(MessageType::Bye);
    out.text(Keys::byeReason, bye.reason);
    return out.finish();
}

// --- reading ------------------------------------------------------------------------------------

quint32 readId(CborIn& in)
{
    return quint32(in.unsignedInteger(0xffffffffu));
}

double readFinite(CborIn& in)
{
    const double number = in.number();
    if (!std::isfinite(number))
        in.fail(QStringLiteral("a limit, step or item that is not a finite number"));
    return number;
}

ValueStatus readStatus(CborIn& in)
{
    const quint64 status = in.unsignedInteger(0xff);
    if (status != quint64(ValueStatus::Usable) && status != quint64(ValueStatus::NotAvailable))
        in.fail(QStringLiteral("unknown status %1").arg(status));
    return ValueStatus(status);
}

// Reads the elements of an array of fixed length, one function each.
template <class... Readers>
void readTuple(CborIn& in, Readers... readers)
{
    if (!in.enter(QCborStreamReader::Array))
        return;
    const auto one = [&in](auto& reader) {
        if (in.more())
            reader();
        else
            in.fail(QStringLiteral("too few elements in an array"));
    };
    (one(readers), ...);
    while (in.more())
        in.skip();
    in.leave();
}

Item readItem(CborIn& in)
{
    Item item;
    readTuple(
        in, [&] { item.key = in.integer(); }, [&] { item.text = in.text(); },
        [&] { item.number = readFinite(in); });
    return item;
}

void readLimits(CborIn& in, Description* description)
{
    description->hasLimits = true;
    readTuple(
        in, [&] { description->minimum = readFinite(in); }, [&] { description->maximum = readFinite(in); });
    if (!in.failed() && description->minimum > description->maximum)
        in.fail(QStringLiteral("a minimum above its maximum"));
}

Description readDescription(CborIn& in)
{
    Description result;
    in.map(bit(Keys::descriptionId) | bit(Keys::descriptionPath) | bit(Keys::descriptionKind), [&](int key) {
        switch (key) {
            case Keys::descriptionId:
                result.id = readId(in);
                return true;
            case Keys::descriptionPath:
                result.path = in.text();
                return true;
            case Keys::descriptionKind:
                result.kind = ValueKind(in.unsignedInteger(quint64(ValueKind::Bearing)));
                return true;
            case Keys::descriptionUnit:
                result.unit = in.text();
                return true;
            case Keys::descriptionLimits:
                readLimits(in, &result);
                return true;
            case Keys::descriptionStep:
                result.step = readFinite(in);
                return true;
            case Keys::descriptionPrecision:
                result.precision = int(in.unsignedInteger(100));
                return true;
            case Keys::descriptionWritable:
                result.writable = in.boolean();
                return true;
            case Keys::descriptionEvent:
                result.event = in.boolean();
                return true;
            case Keys::descriptionItems:
                in.array(Limits::arrayItems, [&] { result.items.append(readItem(in)); });
                return true;
            default:
                return false;
        }
    });
    return result;
}

QVector<Description> readDescriptions(CborIn& in)
{
    QVector<Description> result;
    in.array(Limits::arrayItems, [&] { result.append(readDescription(in)); });
    return result;
}

QVector<Update> readUpdates(CborIn& in)
{
    QVector<Update> result;
    qint64 time = 0;
    in.array(Limits::arrayItems, [&] {
        Update update;
        readTuple(
            in, [&] { update.id = readId(in); },
            [&] {
                if (__builtin_add_overflow(time, in.integer(), &time))
                    in.fail(QStringLiteral("a time out of range"));
            },
            [&] { update.status = readStatus(in); }, [&] { update.content = in.content(); });
        update.time = time;
        result.append(update);
    });
    return result;
}

// The entries of one message behind its type.
template <class Entry>
void readRest(CborIn& in, quint32 seen, quint32 required, Entry entry)
{
    while (in.more())
        in.readEntry(seen, entry);
    in.leave();
    in.checkRequired(required, seen);
    in.finish();
}

// One function per message: which keys are required, and where each content goes.
template <class T, class Entry>
Message readMessage(CborIn& in, quint32 required, Entry entry)
{
    T message;
    readRest(in, bit(Keys::type), required, [&](int key) { return entry(message, key); });
    return message;
}

// Reads one field when its key is the one at hand.
#define RX_FIELD(KEY, EXPRESSION) \
    if (key == (KEY)) {           \
        EXPRESSION;               \
        return true;              \
    }

Message readFromClient(CborIn& in, MessageType type)
{
    switch (type) {
        case MessageType::Hello:
            // Without further requirements: another version may have other fields.
            return readMessage<Hello>(in, bit(Keys::helloVersion), [&](Hello& m, int key) {
                RX_FIELD(Keys::helloVersion, m.version = int(in.unsignedInteger(INT_MAX)))
                RX_FIELD(Keys::helloClient, m.client = in.text(Limits::nameBytes))
                RX_FIELD(Keys::helloSession, m.session = in.bytes(Limits::sessionBytes))
                return false;
            });
        case MessageType::Hook:
            return readMessage<Hook>(in, bit(Keys::number) | bit(Keys::hookPath), [&](Hook& m, int key) {
                RX_FIELD(Keys::number, m.number = readId(in))
                RX_FIELD(Keys::hookPath, m.path = in.text())
                return false;
            });
        case MessageType::Release:
            return readMessage<Release>(in, bit(Keys::number), [&](Release& m, int key) {
                RX_FIELD(Keys::number, m.number = readId(in))
                return false;
            });
        case MessageType::Write:
            return readMessage<Write>(in, bit(Keys::number) | bit(Keys::writeId) | bit(Keys::writeContent),
                                      [&](Write& m, int key) {
                                          RX_FIELD(Keys::number, m.number = readId(in))
                                          RX_FIELD(Keys::writeId, m.id = readId(in))
                                          RX_FIELD(Keys::writeContent, m.content = in.content())
                                          return false;
                                      });
        default:
            return readMessage<Resync>(in, 0, [](Resync&, int) { return false; });
    }
}

Message readFromDriver(CborIn& in, MessageType type)
{
    switch (type) {
        case MessageType::Welcome:
            return readMessage<Welcome>(in, bit(Keys::welcomeVersion), [&](Welcome& m, int key) {
                RX_FIELD(Keys::welcomeVersion, m.version = int(in.unsignedInteger(INT_MAX)))
                RX_FIELD(Keys::welcomeEpoch, m.epoch = in.unsignedInteger(UINT64_MAX))
                RX_FIELD(Keys::welcomeDriver, m.driver = in.text(Limits::nameBytes))
                RX_FIELD(Keys::welcomeStreamPort, m.streamPort = quint16(in.unsignedInteger(0xffff)))
                return false;
            });
        case MessageType::Snapshot:
            return readMessage<Snapshot>(in, bit(Keys::snapshotHook), [&](Snapshot& m, int key) {
                RX_FIELD(Keys::snapshotHook, m.hook = readId(in))
                RX_FIELD(Keys::snapshotLast, m.last = in.boolean())
                RX_FIELD(Keys::snapshotDescriptions, m.descriptions = readDescriptions(in))
                RX_FIELD(Keys::snapshotContents, m.contents = readUpdates(in))
                return false;
            });
        case MessageType::Describe:
            return readMessage<Describe>(in, 0, [&](Describe& m, int key) {
                RX_FIELD(Keys::describeDescriptions, m.descriptions = readDescriptions(in))
                RX_FIELD(Keys::describeRemoved,
                         in.array(Limits::arrayItems, [&] { m.removed.append(readId(in)); }))
                return false;
            });
        case MessageType::Batch:
            return readMessage<Batch>(
                in, bit(Keys::batchEpoch) | bit(Keys::batchSequence), [&](Batch& m, int key) {
                    RX_FIELD(Keys::batchEpoch, m.epoch = in.unsignedInteger(UINT64_MAX))
                    RX_FIELD(Keys::batchSequence, m.sequence = in.unsignedInteger(UINT64_MAX))
                    RX_FIELD(Keys::batchSkipped, m.skipped = in.unsignedInteger(UINT64_MAX))
                    RX_FIELD(Keys::batchLost, m.lost = in.unsignedInteger(UINT64_MAX))
                    RX_FIELD(Keys::batchUpdates, m.updates = readUpdates(in))
                    return false;
                });
        default:
            return readMessage<Answer>(
                in, bit(Keys::number) | bit(Keys::answerKind), [&](Answer& m, int key) {
                    RX_FIELD(Keys::number, m.number = readId(in))
                    RX_FIELD(Keys::answerKind,
                             m.kind = AnswerKind(in.unsignedInteger(quint64(AnswerKind::Refused))))
                    RX_FIELD(Keys::answerReason, m.reason = in.text())
                    RX_FIELD(Keys::answerContent, m.content = in.content())
                    return false;
                });
    }
}

Message readFromBoth(CborIn& in, MessageType type)
{
    if (type == MessageType::Heartbeat) {
        return readMessage<Heartbeat>(in, 0, [&](Heartbeat& m, int key) {
            RX_FIELD(Keys::heartbeatTime, m.time = in.integer())
            return false;
        });
    }
    return readMessage<Bye>(in, 0, [&](Bye& m, int key) {
        RX_FIELD(Keys::byeReason, m.reason = in.text())
        return false;
    });
}

#undef RX_FIELD

Message readByType(CborIn& in, MessageType type)
{
    if (type <= MessageType::Resync)
        return readFromClient(in, type);
    if (type <= MessageType::Answer)
        return readFromDriver(in, type);
    return type <= MessageType::Bye ? readFromBoth(in, type) : readStreamMessage(in, type);
}

}  // namespace

const char* name(const Message& message)
{
    static const char* const names[] = {
        "Hello", "Hook",   "Release",   "Write", "Resync",        "Welcome",     "Snapshot", "Describe",
        "Batch", "Answer", "Heartbeat", "Bye",   "StreamRequest", "StreamStart", "ScanData", "StreamReady"};
    static_assert(std::variant_size_v<Message> == sizeof names / sizeof *names);
    return names[message.index()];
}

QByteArray encode(const Message& message)
{
    return std::visit([](const auto& m) { return write(m); }, message);
}

bool decode(const QByteArray& payload, Message* message, QString* error)
{
    CborIn in(payload);
    quint32 seen = 0;
    int type = -1;
    if (in.enter(QCborStreamReader::Map)) {
        if (!in.more() || in.readKey(seen) != Keys::type)
            in.fail(QStringLiteral("a message must begin with its type"));
        else
            type = int(in.unsignedInteger(INT_MAX));
    }
    if (!in.failed() && type > int(MessageType::StreamReady))
        in.fail(QStringLiteral("unknown message type %1").arg(type));
    if (!in.failed())
        *message = readByType(in, MessageType(type));
    if (in.failed() && error)
        *error = in.error();
    return !in.failed();
}

qint64 estimatedBytes(const Description& description)
{
    qint64 bytes = 96 + 3 * (description.path.size() + description.unit.size());
    for (const Item& item : description.items)
        bytes += 24 + 3 * item.text.size();
    return bytes;
}

qint64 estimatedBytes(const Update& update)
{
    qint64 bytes = 32;
    if (const QString* text = std::get_if<QString>(&update.content))
        bytes += 3 * text->size();
    else if (const QByteArray* raw = std::get_if<QByteArray>(&update.content))
        bytes += raw->size();
    return bytes;
}

bool cutToLimit(Content* content)
{
    if (QByteArray* raw = std::get_if<QByteArray>(content)) {
        if (raw->size() <= Limits::stringBytes)
            return false;
        raw->truncate(Limits::stringBytes);
        return true;
    }
    QString* text = std::get_if<QString>(content);
    // At most three bytes for each unit of UTF-16: short texts need no conversion.
    if (!text || text->size() * 3 <= Limits::stringBytes || text->toUtf8().size() <= Limits::stringBytes)
        return false;
    text->truncate(Limits::stringBytes / 3);
    if (text->back().isHighSurrogate())
        text->chop(1);
    return true;
}

}  // namespace Link
