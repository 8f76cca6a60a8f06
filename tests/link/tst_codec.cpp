#include <QCborStreamWriter>
#include <QtEndian>
#include <QtTest>
#include <functional>

#include "codecsamples.h"
#include "link/codec.h"
#include "link/limits.h"

using namespace Link;

namespace {

using Fill = std::function<void(QCborStreamWriter&)>;

QByteArray made(const Fill& fill)
{
    QByteArray bytes;
    QCborStreamWriter writer(&bytes);
    fill(writer);
    return bytes;
}

// A message of that type with the entries that `fill` writes.
QByteArray messageOf(int type, const Fill& fill)
{
    return made([&](QCborStreamWriter& w) {
        w.startMap();
        w.append(0);
        w.append(type);
        fill(w);
        w.endMap();
    });
}

QByteArray raw(const char* hex)
{
    return QByteArray::fromHex(hex);
}

QByteArray helloWithSession(int bytes)
{
    Hello hello;
    hello.session = QByteArray(bytes, 's');
    return encode(hello);
}

QByteArray nested(int depth)
{
    return messageOf(10, [depth](QCborStreamWriter& w) {
        w.append(99);
        for (int i = 0; i < depth; ++i)
            w.startArray();
        for (int i = 0; i < depth; ++i)
            w.endArray();
    });
}

QByteArray batchOf(const Fill& update)
{
    return messageOf(8, [&](QCborStreamWriter& w) {
        w.append(1);
        w.append(1);
        w.append(2);
        w.append(1);
        w.append(5);
        w.startArray(1);
        update(w);
        w.endArray();
    });
}

QByteArray descriptionOf(const Fill& entries)
{
    return messageOf(7, [&](QCborStreamWriter& w) {
        w.append(1);
        w.startArray(1);
        w.startMap();
        w.append(1);
        w.append(5);
        w.append(2);
        w.append(QStringLiteral("/A"));
        entries(w);
        w.endMap();
        w.endArray();
    });
}

}  // namespace

class TestCodec : public QObject
{
    Q_OBJECT
private slots:
    void everyMessageComesBackAsItWas_data();
    void everyMessageComesBackAsItWas();
    void everyMessageCutAnywhereIsRefused_data() { everyMessageComesBackAsItWas_data(); }
    void everyMessageCutAnywhereIsRefused();
    void whatDoesNotFitIsRefusedWithAReason_data();
    void whatDoesNotFitIsRefusedWithAReason();
    void whatFitsIsAccepted_data();
    void whatFitsIsAccepted();
    void unknownKeysAreSkippedWhateverTheyHold();
    void aLongTextIsCutAtAWholeCharacter();
    void estimatesAreUpperBounds();
};

void TestCodec::everyMessageComesBackAsItWas_data()
{
    QTest::addColumn<int>("index");
    const QVector<Message> messages = sampleMessages();
    for (int i = 0; i < messages.size(); ++i)
        QTest::addRow("%s %d", name(messages.at(i)), i) << i;
}

void TestCodec::everyMessageComesBackAsItWas()
{
    QFETCH(int, index);
    const Message message = sampleMessages().at(index);
    Message back;
    QString error;
    QVERIFY2(decode(encode(message), &back, &error), qPrintable(error));
    QCOMPARE(back.index(), message.index());
    QCOMPARE(dumped(back), dumped(message));
}

void TestCodec::everyMessageCutAnywhereIsRefused()
{
    QFETCH(int, index);
    const QByteArray whole = encode(sampleMessages().at(index));
    for (qsizetype length = 0; length < whole.size(); ++length) {
        Message back;
        QString error;
        QVERIFY2(!decode(whole.left(length), &back, &error), qPrintable(QString::number(length)));
        QVERIFY(!error.isEmpty());
    }
}

void TestCodec::whatDoesNotFitIsRefusedWithAReason_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const QByteArray& payload, const char* reason) {
        QTest::newRow(name) << payload << QString::fromLatin1(reason);
    };
    row("nothing", {}, "at byte 0");
    row("not CBOR", raw("ff"), "unexpected 'break'");
    row("an array", raw("8000"), "a map expected");
    row("an empty map", raw("a0"), "must begin with its type");
    row("the type not first", raw("a201010003"), "must begin with its type");
    row("a text as type", raw("a10061 61"), "an integer that is not negative expected");
    row("a negative type", raw("a10020"), "an integer that is not negative expected");
    row("an unknown type", raw("a10010"), "unknown message type 16");
    row("a huge type", raw("a1001bffffffffffffffff"), "is more than");
    row("text keys",
        messageOf(10,
                  [](auto& w) {
                      w.append(QStringLiteral("a"));
                      w.append(1);
                  }),
        "an integer expected");
    row("a key twice",
        messageOf(10,
                  [](auto& w) {
                      w.append(1);
                      w.append(1);
                      w.append(1);
                      w.append(2);
                  }),
        "key 1 given twice");
    row("something behind", encode(Resync{}) + '\0', "behind the message");
    row("two messages", encode(Resync{}) + encode(Resync{}), "behind the message");
    row("too deep", nested(Limits::nesting), "levels of nesting");
    row("far too deep", nested(20000), "levels of nesting");
    row("a hook without path",
        messageOf(1,
                  [](auto& w) {
                      w.append(1);
                      w.append(1);
                  }),
        "key 2 is missing");
    row("a hook of a negative number",
        messageOf(1,
                  [](auto& w) {
                      w.append(1);
                      w.append(-1);
                      w.append(2);
                      w.append(QStringLiteral("/"));
                  }),
        "not negative");
    row("a hook of a huge number",
        messageOf(1,
                  [](auto& w) {
                      w.append(1);
                      w.append(qint64(1) << 32);
                  }),
        "is more than 4294967295");
    row("a path of bytes",
        messageOf(1,
                  [](auto& w) {
                      w.append(1);
                      w.append(1);
                      w.append(2);
                      w.append(QByteArray("/"));
                  }),
        "a text expected");
    row("a path that is not UTF-8", raw("a30001010102 62 c328"), "UTF-8");
    row("a path longer than allowed", encode(Hook{1, QString(Limits::stringBytes + 1, 'x')}),
        "bytes, 262144 allowed");
    row("a path longer than the frame", raw("a30001010102 7a0003ffff 41"), "longer than the frame");
    row("a path of huge length", raw("a30001010102 7bffffffffffffffff 41"),
        "a string of 18446744073709551615 bytes");
    row("a path in parts", raw("a30001010102 7f6141ff"), "without a length");
    row("a session too long", helloWithSession(17), "a string of 17 bytes, 16 allowed");
    row("an update too short", batchOf([](auto& w) {
            w.startArray(3);
            w.append(1);
            w.append(0);
            w.append(0);
            w.endArray();
        }),
        "too few elements");
    row("an update that is a map", batchOf([](auto& w) {
            w.startMap(0);
            w.endMap();
        }),
        "an array expected");
    row("an unknown status", batchOf([](auto& w) {
            w.startArray(4);
            w.append(1);
            w.append(0);
            w.append(1);
            w.append(nullptr);
            w.endArray();
        }),
        "unknown status 1");
    row("a content that is an array", batchOf([](auto& w) {
            w.startArray(4);
            w.append(1);
            w.append(0);
            w.append(0);
            w.startArray(0);
            w.endArray();
            w.endArray();
        }),
        "the content of a value expected");
    row("a content with a tag", batchOf([](auto& w) {
            w.startArray(4);
            w.append(1);
            w.append(0);
            w.append(0);
            w.append(QCborTag(1));
            w.append(1);
            w.endArray();
        }),
        "the content of a value expected");
    row("an integer content out of range", raw("a40008010102010581840100001bffffffffffffffff"),
        "out of range");
    row("a negative content out of range", raw("a40008010102010581840100003bffffffffffffffff"),
        "out of range");
    row("times that run over", raw("a4000801010201058284011b7fffffffffffffff00f68401010 0f6"),
        "out of range");
    row("many updates announced", raw("a40008010102010 59a7fffffff"), "announced, 65536 allowed");
    row("more updates announced than bytes", raw("a40008010102010 59a0000ffff"), "at byte");
    row("endless updates announced", raw("a40008010102010 59bffffffffffffffff"), "at byte");
    row("a description without kind", descriptionOf([](auto&) {}), "key 3 is missing");
    row("a description of unknown kind", descriptionOf([](auto& w) {
            w.append(3);
            w.append(6);
        }),
        "6 is more than 5");
    row("limits in the wrong order", descriptionOf([](auto& w) {
            w.append(3);
            w.append(1);
            w.append(5);
            w.startArray(2);
            w.append(2.0);
            w.append(1.0);
            w.endArray();
        }),
        "a minimum above its maximum");
    row("limits that are no numbers", descriptionOf([](auto& w) {
            w.append(3);
            w.append(1);
            w.append(5);
            w.startArray(2);
            w.append(qQNaN());
            w.append(1.0);
            w.endArray();
        }),
        "not a finite number");
    row("one limit", descriptionOf([](auto& w) {
            w.append(3);
            w.append(1);
            w.append(5);
            w.startArray(1);
            w.append(2.0);
            w.endArray();
        }),
        "too few elements");
    row("an item without text", descriptionOf([](auto& w) {
            w.append(3);
            w.append(4);
            w.append(10);
            w.startArray(1);
            w.startArray(1);
            w.append(1);
            w.endArray();
            w.endArray();
        }),
        "too few elements");
    row("a boolean as number", descriptionOf([](auto& w) {
            w.append(3);
            w.append(4);
            w.append(8);
            w.append(1);
        }),
        "a boolean expected");
    row("an unknown answer",
        messageOf(9,
                  [](auto& w) {
                      w.append(1);
                      w.append(1);
                      w.append(2);
                      w.append(3);
                  }),
        "3 is more than 2");
}

void TestCodec::whatDoesNotFitIsRefusedWithAReason()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, reason);
    Message message;
    QString error;
    QVERIFY(!decode(payload, &message, &error));
    QVERIFY2(error.contains(reason), qPrintable(error));
    QVERIFY2(error.contains(QStringLiteral("at byte")), qPrintable(error));
}

void TestCodec::whatFitsIsAccepted_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("the longest path") << encode(Hook{1, QString(Limits::stringBytes, 'x')});
    QTest::newRow("the empty path") << encode(Hook{1, QString()});
    QTest::newRow("the deepest nesting") << nested(Limits::nesting - 1);
    QTest::newRow("a map without length") << raw("bf000aff");
    QTest::newRow("a hello of another version") << messageOf(0, [](auto& w) {
        w.append(1);
        w.append(99);
    });
    QTest::newRow("a half-precision number") << raw("a4000801010201058184010000f93c00");
    QTest::newRow("as many updates as allowed")
        << encode(Batch{1, 1, 0, 0, QVector<Update>(Limits::arrayItems)});
}

void TestCodec::whatFitsIsAccepted()
{
    QFETCH(QByteArray, payload);
    Message message;
    QString error;
    QVERIFY2(decode(payload, &message, &error), qPrintable(error));
}

void TestCodec::unknownKeysAreSkippedWhateverTheyHold()
{
    const QByteArray payload = messageOf(3, [](QCborStreamWriter& w) {
        w.append(-7);
        w.append(QStringLiteral("skipped"));
        w.append(31);
        w.append(QByteArray("skipped"));
        w.append(40);
        w.startArray();
        w.append(1);
        w.startMap(1);
        w.append(1);
        w.append(2.5);
        w.endMap();
        w.endArray();
        w.append(1);
        w.append(11);
        w.append(99);
        w.append(QCborTag(5));
        w.append(1);
        w.append(2);
        w.append(12);
        w.append(3);
        w.append(1.5);
        w.append(100);
        w.append(nullptr);
    });
    Message message;
    QString error;
    QVERIFY2(decode(payload, &message, &error), qPrintable(error));
    QCOMPARE(dumped(message), dumped(Message(Write{11, 12, 1.5})));
}

void TestCodec::aLongTextIsCutAtAWholeCharacter()
{
    const auto bytesOf = [](const Content& content) { return std::get<QString>(content).toUtf8().size(); };
    Content fits = QString(Limits::stringBytes, 'x');
    QVERIFY(!cutToLimit(&fits));
    Content tooLong = QString(QStringLiteral("x") + QStringLiteral("📡").repeated(int(Limits::stringBytes)));
    QVERIFY(cutToLimit(&tooLong));
    QVERIFY(bytesOf(tooLong) <= Limits::stringBytes);
    QVERIFY(!std::get<QString>(tooLong).back().isHighSurrogate());
    Content bytes = QByteArray(Limits::stringBytes + 1, 'x');
    QVERIFY(cutToLimit(&bytes));
    QCOMPARE(std::get<QByteArray>(bytes).size(), Limits::stringBytes);
}

void TestCodec::estimatesAreUpperBounds()
{
    for (const Message& message : sampleMessages()) {
        const Snapshot* snapshot = std::get_if<Snapshot>(&message);
        if (!snapshot)
            continue;
        qint64 estimate = 32;
        for (const Description& description : snapshot->descriptions)
            estimate += estimatedBytes(description);
        for (const Update& update : snapshot->contents)
            estimate += estimatedBytes(update);
        QVERIFY(encode(message).size() <= estimate);
    }
}

QTEST_GUILESS_MAIN(TestCodec)
#include "tst_codec.moc"
