#include <QCborStreamWriter>
#include <QtTest>
#include <cmath>
#include <functional>
#include <limits>

#include "link/codec.h"
#include "link/keys.h"
#include "link/limits.h"

using namespace Link;

namespace {

using Writer = std::function<void(QCborStreamWriter&)>;

// A message of this type with the entries that `rest` writes.
QByteArray messageOf(MessageType type, const Writer& rest)
{
    QByteArray payload;
    QCborStreamWriter writer(&payload);
    writer.startMap();
    writer.append(0);
    writer.append(int(type));
    rest(writer);
    writer.endMap();
    return payload;
}

// A whole ScanData, but for the entry of one key, which `instead` writes or leaves out.
QByteArray scanBut(int key, const Writer& instead = {})
{
    return messageOf(MessageType::ScanData, [&](QCborStreamWriter& writer) {
        for (int i = Keys::scanSequence; i <= Keys::scanLevels; ++i) {
            if (i == key) {
                if (instead)
                    instead(writer);
                continue;
            }
            writer.append(i);
            if (i == Keys::scanLevels)
                writer.append(QByteArray(8, '\0'));
            else if (i == Keys::scanSequence || i == Keys::scanTime || i == Keys::scanSkipped)
                writer.append(3);
            else
                writer.append(2.5);
        }
    });
}

ScanData scanOf(const QByteArray& levels)
{
    ScanData data;
    data.sequence = 1;
    data.step = 1;
    data.levels = levels;
    return data;
}

}  // namespace

class TestStreamMessages : public QObject
{
    Q_OBJECT
private slots:
    void whatDoesNotFitIsRefusedWithAReason_data();
    void whatDoesNotFitIsRefusedWithAReason();
    void whatFitsIsAccepted_data();
    void whatFitsIsAccepted();
    void theLargestFrameFitsItsLimits();
    void unknownKeysAreSkipped();
    void levelsTravelLowestByteFirst();
    void levelsComeBackAsTheyWere();
    void bytesBehindTheLastLevelAreLeftOut();
};

void TestStreamMessages::whatDoesNotFitIsRefusedWithAReason_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const QByteArray& payload, const char* reason) {
        QTest::newRow(name) << payload << QString::fromLatin1(reason);
    };
    const auto request = [](int key, const QVariant& value) {
        return messageOf(MessageType::StreamRequest, [&](QCborStreamWriter& writer) {
            writer.append(1);
            writer.append(1);
            writer.append(key);
            if (value.typeId() == QMetaType::Int)
                writer.append(value.toInt());
            else
                writer.append(QStringView(value.toString()));
        });
    };
    row("a request without a version", messageOf(MessageType::StreamRequest, [](auto&) {}), "key 1");
    row("an unknown window", request(Keys::requestWindow, 3), "3 is more than 2");
    row("an unknown detector", request(Keys::requestDetector, 2), "2 is more than 1");
    row("points below zero", request(Keys::requestPoints, -1), "not negative");
    row("a frame rate in words", request(Keys::requestFrameRate, QStringLiteral("fast")), "a number");
    row("a kind that is a number", request(Keys::requestKind, 1), "a text");
    row("an endless kind", request(Keys::requestKind, QString(Limits::nameBytes + 1, 'x')), "allowed");
    row("a start without a version", messageOf(MessageType::StreamStart, [](auto&) {}), "key 1");
    for (int key = Keys::scanSequence; key <= Keys::scanLevels; ++key) {
        if (key == Keys::scanSkipped)
            continue;
        QTest::addRow("a scan without its key %d", key) << scanBut(key) << QStringLiteral("key %1").arg(key);
    }
    row("levels as an array",
        scanBut(Keys::scanLevels,
                [](auto& writer) {
                    writer.append(Keys::scanLevels);
                    writer.startArray(1);
                    writer.append(1.0);
                    writer.endArray();
                }),
        "a byte string");
    row("more levels than allowed",
        encode(scanOf(QByteArray((Limits::scanPoints + 1) * qsizetype(sizeof(float)), '\0'))), "allowed");
    row("a sequence below zero",
        scanBut(Keys::scanSequence,
                [](auto& writer) {
                    writer.append(Keys::scanSequence);
                    writer.append(-1);
                }),
        "not negative");
    row("ready without a sequence", messageOf(MessageType::StreamReady, [](auto&) {}), "key 1");
    row("a type that nobody knows", messageOf(MessageType(16), [](auto&) {}), "unknown message type 16");
}

void TestStreamMessages::whatDoesNotFitIsRefusedWithAReason()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, reason);
    Message message;
    QString error;
    QVERIFY(!decode(payload, &message, &error));
    QVERIFY2(error.contains(reason), qPrintable(error));
}

void TestStreamMessages::whatFitsIsAccepted_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("a request of another version") << messageOf(MessageType::StreamRequest, [](auto& writer) {
        writer.append(1);
        writer.append(99);
    });
    QTest::newRow("no levels") << encode(scanOf({}));
    QTest::newRow("nothing said of skipped frames") << scanBut(Keys::scanSkipped);
    // What is nonsense for a picture is no reason to break the connection: the reader leaves it out.
    QTest::newRow("a step that is no number") << scanBut(Keys::scanStep, [](auto& writer) {
        writer.append(Keys::scanStep);
        writer.append(std::numeric_limits<double>::quiet_NaN());
    });
    QTest::newRow("half a level") << encode(scanOf(QByteArray(6, '\0')));
}

void TestStreamMessages::whatFitsIsAccepted()
{
    QFETCH(QByteArray, payload);
    Message message;
    QString error;
    QVERIFY2(decode(payload, &message, &error), qPrintable(error));
}

void TestStreamMessages::theLargestFrameFitsItsLimits()
{
    const std::vector<float> levels(Limits::scanPoints, -12.5f);
    ScanData data = scanOf(packLevels(levels.data(), int(levels.size())));
    data.sequence = UINT64_MAX;
    const QByteArray payload = encode(data);
    QVERIFY(payload.size() <= Limits::frameBytes);
    Message message;
    QString error;
    QVERIFY2(decode(payload, &message, &error), qPrintable(error));
    QCOMPARE(std::get<ScanData>(message).levels, data.levels);
}

void TestStreamMessages::unknownKeysAreSkipped()
{
    const QByteArray payload = messageOf(MessageType::StreamReady, [](auto& writer) {
        writer.append(30);
        writer.append(QByteArray("later"));
        writer.append(Keys::readySequence);
        writer.append(42);
    });
    Message message;
    QString error;
    QVERIFY2(decode(payload, &message, &error), qPrintable(error));
    QCOMPARE(std::get<StreamReady>(message).sequence, quint64(42));
}

void TestStreamMessages::levelsTravelLowestByteFirst()
{
    const float level = 1.0f;  // 0x3f800000
    QCOMPARE(packLevels(&level, 1), QByteArray::fromHex("0000803f"));
}

void TestStreamMessages::levelsComeBackAsTheyWere()
{
    const QVector<float> levels = {-200.0f, 80.0f, -0.0f, 1e-30f, std::numeric_limits<float>::infinity()};
    QCOMPARE(unpackLevels(packLevels(levels.constData(), int(levels.size()))), levels);
    QVERIFY(unpackLevels(packLevels(nullptr, 0)).isEmpty());
}

void TestStreamMessages::bytesBehindTheLastLevelAreLeftOut()
{
    const float level = 3.5f;
    QCOMPARE(unpackLevels(packLevels(&level, 1) + "xyz"), QVector<float>{level});
}

QTEST_GUILESS_MAIN(TestStreamMessages)
#include "tst_streammessages.moc"
