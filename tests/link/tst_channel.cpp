#include <QBuffer>
#include <QtEndian>
#include <QtTest>

#include "link/channel.h"
#include "link/codec.h"
#include "link/limits.h"

using namespace Link;

namespace {

// Two ends of a line in memory: what one writes, the other reads when deliver() lets it.
class Line : public QIODevice
{
public:
    Line() { open(QIODevice::ReadWrite | QIODevice::Unbuffered); }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return m_in.size() + QIODevice::bytesAvailable(); }

    void deliver(const QByteArray& bytes)
    {
        m_in += bytes;
        emit readyRead();
    }
    QByteArray written;

protected:
    qint64 readData(char* data, qint64 size) override
    {
        const qint64 count = qMin<qint64>(size, m_in.size());
        memcpy(data, m_in.constData(), size_t(count));
        m_in.remove(0, count);
        return count;
    }
    qint64 writeData(const char* data, qint64 size) override
    {
        written.append(data, size);
        return size;
    }

private:
    QByteArray m_in;
};

QByteArray frame(const QByteArray& payload)
{
    QByteArray head(4, '\0');
    qToBigEndian(quint32(payload.size()), head.data());
    return head + payload;
}

struct Heard
{
    explicit Heard(Channel& channel)
    {
        QObject::connect(&channel, &Channel::received, &channel,
                         [this](Message& message) { names.append(QLatin1String(name(message))); });
        QObject::connect(&channel, &Channel::failed, &channel,
                         [this](const QString& reason) { failures.append(reason); });
    }
    QStringList names;
    QStringList failures;
};

}  // namespace

class TestChannel : public QObject
{
    Q_OBJECT
private slots:
    void aFrameIsFourBytesOfLengthAndThePayload();
    void framesArriveInOrderHoweverTheyAreCut();
    void manyFramesInOneReadAllArrive();
    void brokenFramesEndTheReadingWithAReason_data();
    void brokenFramesEndTheReadingWithAReason();
    void theLargestFrameIsTaken();
    void nothingIsTakenAfterAFailure();
    void aPausedChannelLeavesTheBytesToTheDevice();
    void theChannelMayBePausedClosedOrDeletedByWhatItDelivers();
};

void TestChannel::aFrameIsFourBytesOfLengthAndThePayload()
{
    Line line;
    Channel channel(&line);
    channel.send(Resync{});
    QCOMPARE(line.written, frame(encode(Resync{})));
}

void TestChannel::framesArriveInOrderHoweverTheyAreCut()
{
    const QByteArray bytes =
        frame(encode(Hook{1, QStringLiteral("/A")})) + frame(encode(Resync{})) + frame(encode(Release{1}));
    for (int part = 1; part < bytes.size(); ++part) {
        Line line;
        Channel channel(&line);
        Heard heard(channel);
        for (int at = 0; at < bytes.size(); at += part)
            line.deliver(bytes.mid(at, part));
        QCOMPARE(heard.names, QStringList({"Hook", "Resync", "Release"}));
        QCOMPARE(channel.bytesReceived(), quint64(bytes.size()));
    }
}

void TestChannel::manyFramesInOneReadAllArrive()
{
    Line line;
    Channel channel(&line);
    Heard heard(channel);
    const int count = 300000;  // more bytes than are read in one go
    line.deliver(frame(encode(Resync{})).repeated(count));
    QCOMPARE(heard.names.size(), count);
}

void TestChannel::brokenFramesEndTheReadingWithAReason_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    QTest::newRow("one byte over the limit")
        << QByteArray::fromHex("00400001") << "a frame of 4194305 bytes was announced";
    QTest::newRow("huge") << QByteArray::fromHex("ffffffff") << "a frame of 4294967295 bytes was announced";
    QTest::newRow("empty") << QByteArray::fromHex("00000000") << "a frame of 0 bytes was announced";
    QTest::newRow("not CBOR") << frame("\xff") << "a frame that cannot be read";
    QTest::newRow("another protocol") << QByteArray("GET / HTTP/1.1\r\n\r\n") << "was announced";
}

void TestChannel::brokenFramesEndTheReadingWithAReason()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    Line line;
    Channel channel(&line);
    Heard heard(channel);
    line.deliver(frame(encode(Resync{})) + bytes);
    QCOMPARE(heard.names, QStringList("Resync"));
    QCOMPARE(heard.failures.size(), 1);
    QVERIFY2(heard.failures.first().contains(reason), qPrintable(heard.failures.first()));
    QVERIFY(channel.isClosed());
}

void TestChannel::theLargestFrameIsTaken()
{
    // Filled up with an unknown key that holds many byte strings.
    QByteArray payload = QByteArray::fromHex("a2000a1863 9a");
    const int strings = 4000;
    QByteArray count(4, '\0');
    qToBigEndian(quint32(strings), count.data());
    payload += count;
    const QByteArray one = QByteArray::fromHex("590400") + QByteArray(1024, 'x');
    payload += one.repeated(strings);
    QVERIFY(payload.size() <= Limits::frameBytes);
    Line line;
    Channel channel(&line);
    Heard heard(channel);
    line.deliver(frame(payload));
    QCOMPARE(heard.failures, QStringList());
    QCOMPARE(heard.names, QStringList("Heartbeat"));
}

void TestChannel::nothingIsTakenAfterAFailure()
{
    Line line;
    Channel channel(&line);
    Heard heard(channel);
    line.deliver(QByteArray::fromHex("ffffffff"));
    line.deliver(frame(encode(Resync{})));
    QCOMPARE(heard.names, QStringList());
    QCOMPARE(heard.failures.size(), 1);
    QCOMPARE(line.bytesAvailable(), 0);
}

void TestChannel::aPausedChannelLeavesTheBytesToTheDevice()
{
    Line line;
    Channel channel(&line);
    Heard heard(channel);
    channel.setPaused(true);
    const QByteArray bytes = frame(encode(Resync{}));
    line.deliver(bytes);
    QCOMPARE(heard.names, QStringList());
    QCOMPARE(line.bytesAvailable(), bytes.size());
    channel.setPaused(false);
    QTRY_COMPARE(heard.names, QStringList("Resync"));
}

void TestChannel::theChannelMayBePausedClosedOrDeletedByWhatItDelivers()
{
    const QByteArray bytes = frame(encode(Resync{})).repeated(3);
    for (int what = 0; what < 3; ++what) {
        Line line;
        auto* channel = new Channel(&line);
        int count = 0;
        connect(channel, &Channel::received, this, [&](Message&) {
            ++count;
            if (what == 0)
                channel->setPaused(true);
            else if (what == 1)
                channel->close();
            else
                delete channel;
        });
        line.deliver(bytes);
        QCOMPARE(count, 1);
        if (what < 2)
            delete channel;
    }
}

QTEST_GUILESS_MAIN(TestChannel)
#include "tst_channel.moc"
