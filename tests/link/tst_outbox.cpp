#include <QtTest>

#include "link/codec.h"
#include "link/limits.h"
#include "receiver/server/outbox.h"

using namespace Receiver;

namespace {

Link::Description floatAt(const QString& path, bool event = false)
{
    Link::Description description;
    description.path = path;
    description.kind = Link::ValueKind::Float;
    description.event = event;
    return description;
}

// A store whose changes go into one outbox.
struct Station : StoreListener
{
    Station() { store.addListener(this); }
    ~Station() override { store.removeListener(this); }
    void valueChanged(ValueId id) override { outbox.changed(id); }
    void descriptionChanged(ValueId id) override { outbox.described(id); }
    void valueRemoved(ValueId id) override { outbox.removed(id); }

    bool hook(quint32 number, const QString& path)
    {
        QString reason;
        return outbox.addHook(number, path, &reason);
    }

    QVector<Link::Message> takeAll()
    {
        QVector<Link::Message> messages;
        for (QByteArray payload = outbox.takePayload(); !payload.isEmpty(); payload = outbox.takePayload()) {
            Link::Message message;
            QString error;
            if (!Link::decode(payload, &message, &error) || payload.size() > Link::Limits::frameBytes)
                qFatal("%s", qPrintable(error));
            messages.append(message);
        }
        return messages;
    }

    ValueStore store;
    Outbox outbox{store, 42};
};

QVector<Link::Update> updatesFor(const QVector<Link::Message>& messages, ValueId id)
{
    QVector<Link::Update> found;
    for (const Link::Message& message : messages) {
        const auto* batch = std::get_if<Link::Batch>(&message);
        if (!batch)
            continue;
        for (const Link::Update& update : batch->updates) {
            if (update.id == id)
                found.append(update);
        }
    }
    return found;
}

template <class Field>
quint64 sum(const QVector<Link::Message>& messages, Field field)
{
    quint64 total = 0;
    for (const Link::Message& message : messages) {
        if (const auto* batch = std::get_if<Link::Batch>(&message))
            total += (*batch).*field;
    }
    return total;
}

template <class T>
QVector<T> only(const QVector<Link::Message>& messages)
{
    QVector<T> found;
    for (const Link::Message& message : messages) {
        if (const T* one = std::get_if<T>(&message))
            found.append(*one);
    }
    return found;
}

}  // namespace

class TestOutbox : public QObject
{
    Q_OBJECT
private slots:
    void nothingIsSentThatWasNotHooked();
    void aHookBringsItsValuesThenTheirChanges();
    void aHookCoversWholePathPartsOnly();
    void anEmptyHookIsAnsweredToo();
    void aLargeSnapshotComesInParts();
    void theNewestContentWinsAndTheOthersAreCounted();
    void eventsAreNeverMergedAndTheirLossIsCounted();
    void theHookedFlagTurnsTrueWhenAllHooksAreServed();
    void aFurtherHookTakesTheFlagThroughFalseToTrue();
    void aNewValueBelowAHookIsDescribedThenTold();
    void aRemovedValueIsToldOnceAndItsChangesNoMore();
    void aValueThatComesAndGoesUntoldIsNotMentioned();
    void descriptionsAreMergedToo();
    void aReleasedHookEndsItsUpdatesUnlessAnotherCoversThem();
    void resynchronisingSendsTheSnapshotsAgain();
    void tooManyHooksAndRepeatedNumbersAreRefused();
    void whatWaitsStaysBoundedHoweverOftenValuesChange();
    void batchesCountWithoutGapsAndCarryTheEpoch();
};

void TestOutbox::nothingIsSentThatWasNotHooked()
{
    Station station;
    const ValueId id = station.store.define(floatAt("/A"), 1.0);
    station.store.set(id, 2.0);
    QVERIFY(station.takeAll().isEmpty());
    QVERIFY(station.outbox.isEmpty());
    QVERIFY(!station.outbox.isTold(id));
}

void TestOutbox::aHookBringsItsValuesThenTheirChanges()
{
    Station station;
    const ValueId id = station.store.define(floatAt("/A/B"), 1.0);
    QVERIFY(station.hook(9, "/A"));
    station.store.set(id, 2.0);
    const auto snapshots = only<Link::Snapshot>(station.takeAll());
    QCOMPARE(snapshots.size(), 1);
    QCOMPARE(snapshots.first().hook, 9u);
    QVERIFY(snapshots.first().last);
    QCOMPARE(snapshots.first().descriptions.first().path, QString("/A/B"));
    QCOMPARE(snapshots.first().descriptions.first().id, id);
    QVERIFY(snapshots.first().contents.first().content == Link::Content(2.0));
    station.store.set(id, 3.0, 123456);
    const auto updates = updatesFor(station.takeAll(), id);
    QCOMPARE(updates.size(), 1);
    QVERIFY(updates.first().content == Link::Content(3.0));
    QCOMPARE(updates.first().time, qint64(123456));
}

void TestOutbox::aHookCoversWholePathPartsOnly()
{
    Station station;
    station.store.define(floatAt("/RX1/F"), 1.0);
    station.store.define(floatAt("/RX10/F"), 1.0);
    station.hook(1, "/RX1");
    const auto snapshots = only<Link::Snapshot>(station.takeAll());
    QCOMPARE(snapshots.first().descriptions.size(), 1);
    const ValueId later = station.store.define(floatAt("/RX11/F"), 1.0);
    QVERIFY(station.takeAll().isEmpty());
    QVERIFY(!station.outbox.isTold(later));
}

void TestOutbox::anEmptyHookIsAnsweredToo()
{
    Station station;
    station.hook(1, "/nowhere");
    const auto snapshots = only<Link::Snapshot>(station.takeAll());
    QCOMPARE(snapshots.size(), 1);
    QVERIFY(snapshots.first().last);
    QVERIFY(snapshots.first().descriptions.isEmpty());
}

void TestOutbox::aLargeSnapshotComesInParts()
{
    Station station;
    const int count = 20000;
    for (int i = 0; i < count; ++i)
        station.store.define(floatAt(QStringLiteral("/A/V%1").arg(i)), double(i));
    station.hook(1, "/A");
    const auto snapshots = only<Link::Snapshot>(station.takeAll());
    QVERIFY(snapshots.size() > 1);
    int values = 0;
    for (const Link::Snapshot& snapshot : snapshots) {
        QCOMPARE(snapshot.descriptions.size(), snapshot.contents.size());
        values += int(snapshot.descriptions.size());
        QCOMPARE(snapshot.last, &snapshot == &snapshots.last());
    }
    QCOMPARE(values, count);
}

void TestOutbox::theNewestContentWinsAndTheOthersAreCounted()
{
    Station station;
    const ValueId id = station.store.define(floatAt("/A"), 0.0);
    station.hook(1, "");
    station.takeAll();
    for (int i = 1; i <= 100; ++i)
        station.store.set(id, double(i));
    const auto messages = station.takeAll();
    const auto updates = updatesFor(messages, id);
    QCOMPARE(updates.size(), 1);
    QVERIFY(updates.first().content == Link::Content(100.0));
    QCOMPARE(sum(messages, &Link::Batch::skipped), quint64(99));
}

void TestOutbox::eventsAreNeverMergedAndTheirLossIsCounted()
{
    Station station;
    const ValueId id = station.store.define(floatAt("/A", true), 0.0);
    station.hook(1, "");
    station.takeAll();
    for (int i = 0; i < 10; ++i)
        station.store.set(id, 5.0);
    QCOMPARE(updatesFor(station.takeAll(), id).size(), 10);
    const int extra = 7;
    for (int i = 0; i < Link::Limits::pendingEvents + extra; ++i)
        station.store.set(id, double(i));
    const auto messages = station.takeAll();
    const auto updates = updatesFor(messages, id);
    QCOMPARE(updates.size(), Link::Limits::pendingEvents);
    QVERIFY(updates.first().content == Link::Content(double(extra)));
    QCOMPARE(sum(messages, &Link::Batch::lost), quint64(extra));
}

void TestOutbox::theHookedFlagTurnsTrueWhenAllHooksAreServed()
{
    Station station;
    station.store.define(floatAt("/A"), 0.0);
    station.hook(1, "/ADMINISTRATION");
    station.hook(2, "/A");
    const auto messages = station.takeAll();
    const auto* first = std::get_if<Link::Snapshot>(&messages.first());
    QVERIFY(first);
    QCOMPARE(first->descriptions.first().path, Outbox::hookedFlagPath());
    QVERIFY(!first->descriptions.first().writable);
    QVERIFY(first->contents.first().content == Link::Content(false));
    QVERIFY(std::holds_alternative<Link::Snapshot>(messages.at(1)));
    const auto updates = updatesFor(messages.mid(2), Outbox::hookedFlagId);
    QCOMPARE(updates.size(), 1);
    QVERIFY(updates.first().content == Link::Content(true));
}

void TestOutbox::aFurtherHookTakesTheFlagThroughFalseToTrue()
{
    Station station;
    station.hook(1, "/ADMINISTRATION");
    station.takeAll();
    station.hook(2, "/A");
    const auto messages = station.takeAll();
    const auto updates = updatesFor(messages, Outbox::hookedFlagId);
    QCOMPARE(updates.size(), 2);
    QVERIFY(updates.at(0).content == Link::Content(false));
    QVERIFY(updates.at(1).content == Link::Content(true));
    QVERIFY(std::holds_alternative<Link::Snapshot>(messages.at(1)));
}

void TestOutbox::aNewValueBelowAHookIsDescribedThenTold()
{
    Station station;
    station.hook(1, "/A");
    station.takeAll();
    const ValueId id = station.store.define(floatAt("/A/B"), 4.0);
    const auto messages = station.takeAll();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(std::get<Link::Describe>(messages.first()).descriptions.first().id, id);
    const auto updates = updatesFor(messages, id);
    QCOMPARE(updates.size(), 1);
    QVERIFY(updates.first().content == Link::Content(4.0));
}

void TestOutbox::aRemovedValueIsToldOnceAndItsChangesNoMore()
{
    Station station;
    const ValueId id = station.store.define(floatAt("/A/B"), 4.0);
    station.hook(1, "/A");
    station.takeAll();
    station.store.set(id, 5.0);
    station.store.remove(id);
    const auto messages = station.takeAll();
    QCOMPARE(only<Link::Describe>(messages).size(), 1);
    QCOMPARE(only<Link::Describe>(messages).first().removed, QVector<quint32>{id});
    QVERIFY(updatesFor(messages, id).isEmpty());
    QVERIFY(!station.outbox.isTold(id));
}

void TestOutbox::aValueThatComesAndGoesUntoldIsNotMentioned()
{
    Station station;
    station.hook(1, "/A");
    station.takeAll();
    for (int i = 0; i < 1000; ++i)
        station.store.remove(station.store.define(floatAt("/A/B"), 4.0));
    for (const Link::Describe& describe : only<Link::Describe>(station.takeAll())) {
        QVERIFY(describe.descriptions.isEmpty());
        QVERIFY(describe.removed.isEmpty());
    }
}

void TestOutbox::descriptionsAreMergedToo()
{
    Station station;
    const ValueId id = station.store.define(floatAt("/A/B"), 4.0);
    station.hook(1, "/A");
    station.takeAll();
    Link::Description description = floatAt("/A/B");
    for (int i = 0; i < 50; ++i) {
        description.step = i;
        station.store.describe(id, description);
    }
    const auto describes = only<Link::Describe>(station.takeAll());
    QCOMPARE(describes.size(), 1);
    QCOMPARE(describes.first().descriptions.size(), 1);
    QCOMPARE(describes.first().descriptions.first().step, 49.0);
}

void TestOutbox::aReleasedHookEndsItsUpdatesUnlessAnotherCoversThem()
{
    Station station;
    const ValueId both = station.store.define(floatAt("/A/B/C"), 0.0);
    const ValueId one = station.store.define(floatAt("/A/D"), 0.0);
    station.hook(1, "/A");
    station.hook(2, "/A/B");
    station.takeAll();
    station.outbox.releaseHook(1);
    station.store.set(both, 1.0);
    station.store.set(one, 1.0);
    const auto messages = station.takeAll();
    QCOMPARE(updatesFor(messages, both).size(), 1);
    QVERIFY(updatesFor(messages, one).isEmpty());
}

void TestOutbox::resynchronisingSendsTheSnapshotsAgain()
{
    Station station;
    station.store.define(floatAt("/A"), 0.0);
    station.hook(1, "/A");
    station.hook(2, "/ADMINISTRATION");
    station.takeAll();
    station.outbox.resync();
    QCOMPARE(only<Link::Snapshot>(station.takeAll()).size(), 2);
}

void TestOutbox::tooManyHooksAndRepeatedNumbersAreRefused()
{
    Station station;
    QString reason;
    QVERIFY(station.outbox.addHook(1, "/A", &reason));
    QVERIFY(!station.outbox.addHook(1, "/B", &reason));
    QVERIFY(reason.contains("twice"));
    for (int i = 2; i <= Link::Limits::hooksPerConnection; ++i)
        QVERIFY(station.outbox.addHook(quint32(i), "/A", &reason));
    QVERIFY(!station.outbox.addHook(1000, "/A", &reason));
    QVERIFY(reason.contains("more than 64 hooks"));
}

void TestOutbox::whatWaitsStaysBoundedHoweverOftenValuesChange()
{
    Station station;
    QVector<ValueId> ids;
    for (int i = 0; i < 1000; ++i)
        ids.append(station.store.define(floatAt(QStringLiteral("/A/V%1").arg(i), i == 0), 0.0));
    station.hook(1, "/A");
    station.takeAll();
    for (int round = 1; round <= 300; ++round) {
        for (const ValueId id : ids)
            station.store.set(id, double(round));
        // A reader that takes one frame now and then.
        if (round % 100 == 0)
            station.outbox.takePayload();
        QVERIFY(station.outbox.updatesWaiting() <= int(ids.size()) + Link::Limits::pendingEvents);
    }
}

void TestOutbox::batchesCountWithoutGapsAndCarryTheEpoch()
{
    Station station;
    const ValueId id = station.store.define(floatAt("/A"), 0.0);
    station.hook(1, "");
    station.takeAll();
    quint64 last = 0;
    for (int i = 1; i < 20; ++i) {
        station.store.set(id, double(i));
        const auto batches = only<Link::Batch>(station.takeAll());
        QCOMPARE(batches.size(), 1);
        QCOMPARE(batches.first().epoch, quint64(42));
        if (last > 0)
            QCOMPARE(batches.first().sequence, last + 1);
        last = batches.first().sequence;
    }
}

QTEST_GUILESS_MAIN(TestOutbox)
#include "tst_outbox.moc"
