#include <QTest>
#include <limits>

#include "receiver/values/valuestore.h"

using namespace Receiver;
using Link::AnswerKind;
using Link::Content;
using Link::Description;
using Link::ValueKind;
using Link::ValueStatus;

Q_DECLARE_METATYPE(Link::Content)
Q_DECLARE_METATYPE(Link::ValueKind)

namespace {

constexpr ClientId client = 7;

Description describe(const QString& path, ValueKind kind)
{
    Description description;
    description.path = path;
    description.kind = kind;
    return description;
}

Description limited(const QString& path, ValueKind kind, double minimum, double maximum,
                    const QString& unit = QString())
{
    Description description = describe(path, kind);
    description.hasLimits = true;
    description.minimum = minimum;
    description.maximum = maximum;
    description.unit = unit;
    return description;
}

Description bandwidths()
{
    Description description = describe("/RX1/DDC/DDC1/Bandwidth", ValueKind::Selection);
    description.unit = "Hz";
    description.items = {{0, "500 Hz", 500}, {1, "1 kHz", 1000}, {4, "2.4 kHz", 2400}};
    return description;
}

// Notes what it hears, one word per notice, and may do something on the way.
class Notes : public StoreListener
{
public:
    void valueChanged(ValueId id) override { hear(QString("v%1").arg(id)); }
    void descriptionChanged(ValueId id) override { hear(QString("d%1").arg(id)); }
    void valueRemoved(ValueId id) override { hear(QString("r%1").arg(id)); }

    QStringList heard;
    std::function<void(const QString&)> during;

private:
    void hear(const QString& what)
    {
        heard << what;
        if (during)
            during(what);
    }
};

}  // namespace

class TestValueStore : public QObject
{
    Q_OBJECT
private slots:
    void idsCountFromOneAndAreNeverUsedAgain();
    void aPathThatIsTakenOrMalformedIsNotDefined_data();
    void aPathThatIsTakenOrMalformedIsNotDefined();
    void belowFindsTheValueItselfAndItsDescendantsOnly();
    void acceptedWrites_data();
    void acceptedWrites();
    void refusedWrites_data();
    void refusedWrites();
    void numbersBeyondTheLimitsAreClamped_data();
    void numbersBeyondTheLimitsAreClamped();
    void limitsOfZeroAndZeroHoldOnlyWhenThereAreLimits();
    void aReadOnlyValueTakesNoWriteButTheDriversOwn();
    void theAuthorityDecidesAfterTypeAndLimits();
    void theAuthorityMayChangeWhatIsWritten();
    void aRefusalOfTheAuthorityLeavesTheValue();
    void anAuthorityMayRemoveTheValueItDecidesAbout();
    void theDriverSetsBeyondLimitsAndAccess();
    void aContentOfAnotherKindIsNotSet();
    void listenersHearOnlyWhatDiffers();
    void aLaterMeasurementOfTheSameNumberIsHeard();
    void eventsAreAlwaysHeard();
    void statusAndDescriptionChangesAreHeard();
    void listenersHearChangesInTheOrderOfTheirHappening();
    void listenersMayLeaveWhileTheyAreTold();
    void aValueRemovedWhileToldIsNotReadAgain();
    void conveniencesFollowTheKind();
    void aClientThatIsGoneIsToldToTheHandlersAndForgotten();
    void unknownIdsAreHarmless();
};

void TestValueStore::idsCountFromOneAndAreNeverUsedAgain()
{
    ValueStore store;
    const ValueId first = store.define(describe("/A", ValueKind::Bool), true);
    const ValueId second = store.define(describe("/B", ValueKind::Bool), true);
    QCOMPARE(first, ValueId(1));
    QCOMPARE(second, ValueId(2));
    store.remove(second);
    QCOMPARE(store.find("/B"), ValueId(0));
    QCOMPARE(store.define(describe("/B", ValueKind::Bool), true), ValueId(3));
    QCOMPARE(store.find("/B"), ValueId(3));
    QCOMPARE(store.description(3).id, ValueId(3));
}

void TestValueStore::aPathThatIsTakenOrMalformedIsNotDefined_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("taken") << "/A";
    QTest::newRow("no slash in front") << "A";
    QTest::newRow("slash at the end") << "/A/";
    QTest::newRow("root") << "/";
    QTest::newRow("empty") << "";
}

void TestValueStore::aPathThatIsTakenOrMalformedIsNotDefined()
{
    QFETCH(QString, path);
    ValueStore store;
    store.define(describe("/A", ValueKind::Bool), true);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("malformed or taken"));
    QCOMPARE(store.define(describe(path, ValueKind::Text), QString("x")), ValueId(0));
    QCOMPARE(store.description(store.find("/A")).kind, ValueKind::Bool);
}

void TestValueStore::belowFindsTheValueItselfAndItsDescendantsOnly()
{
    ValueStore store;
    const ValueId ten = store.define(describe("/RX1/DDC/DDC10/Frequency", ValueKind::Float), 1.0);
    const ValueId one = store.define(describe("/RX1/DDC/DDC1/Frequency", ValueKind::Float), 1.0);
    const ValueId caption = store.define(describe("/RX1/DEVICE_CAPTION", ValueKind::Text), QString());

    QCOMPARE(store.below("/RX1/DDC/DDC1"), QVector<ValueId>({one}));
    QCOMPARE(store.below("/RX1/DDC/DDC1/"), QVector<ValueId>({one}));
    QCOMPARE(store.below("/RX1/DDC"), QVector<ValueId>({ten, one}));
    QCOMPARE(store.below("/RX1/DEVICE_CAPTION"), QVector<ValueId>({caption}));
    QCOMPARE(store.below("/"), QVector<ValueId>({ten, one, caption}));
    QCOMPARE(store.below(""), QVector<ValueId>({ten, one, caption}));
    QVERIFY(store.below("/RX2").isEmpty());
}

void TestValueStore::acceptedWrites_data()
{
    QTest::addColumn<ValueKind>("kind");
    QTest::addColumn<Content>("written");
    QTest::addColumn<Content>("kept");
    QTest::newRow("bool") << ValueKind::Bool << Content(true) << Content(true);
    QTest::newRow("float") << ValueKind::Float << Content(1.5) << Content(1.5);
    QTest::newRow("float as integer") << ValueKind::Float << Content(qint64(3)) << Content(3.0);
    QTest::newRow("integer") << ValueKind::Integer << Content(qint64(-4)) << Content(qint64(-4));
    QTest::newRow("whole float") << ValueKind::Integer << Content(4.0) << Content(qint64(4));
    QTest::newRow("text") << ValueKind::Text << Content(QString("µ")) << Content(QString("µ"));
    QTest::newRow("bearing") << ValueKind::Bearing << Content(QByteArray("b")) << Content(QByteArray("b"));
}

void TestValueStore::acceptedWrites()
{
    QFETCH(ValueKind, kind);
    QFETCH(Content, written);
    QFETCH(Content, kept);
    ValueStore store;
    const ValueId id = store.define(describe("/A", kind), {});
    const WriteResult result = store.write(id, written, client);
    QCOMPARE(result.kind, AnswerKind::Accepted);
    QVERIFY(result.reason.isEmpty());
    QVERIFY(store.content(id) == kept);
}

void TestValueStore::refusedWrites_data()
{
    QTest::addColumn<ValueKind>("kind");
    QTest::addColumn<Content>("written");
    QTest::addColumn<QString>("reason");
    QTest::newRow("nothing") << ValueKind::Bool << Content() << "expects true or false";
    QTest::newRow("number for bool") << ValueKind::Bool << Content(1.0) << "expects true or false";
    QTest::newRow("text for float") << ValueKind::Float << Content(QString("1")) << "expects a number";
    QTest::newRow("bool for float") << ValueKind::Float << Content(true) << "expects a number";
    QTest::newRow("not a number") << ValueKind::Float << Content(std::numeric_limits<double>::quiet_NaN())
                                  << "expects a finite number";
    QTest::newRow("infinite") << ValueKind::Float << Content(std::numeric_limits<double>::infinity())
                              << "expects a finite number";
    QTest::newRow("fraction") << ValueKind::Integer << Content(1.5) << "expects a whole number";
    QTest::newRow("huge") << ValueKind::Integer << Content(1e300) << "expects a whole number";
    QTest::newRow("number for text") << ValueKind::Text << Content(1.0) << "expects a text";
    QTest::newRow("text for bearing")
        << ValueKind::Bearing << Content(QString("n")) << "expects a bearing result";
    QTest::newRow("text for selection")
        << ValueKind::Selection << Content(QString("500 Hz")) << "expects the key of an item";
    QTest::newRow("unknown key") << ValueKind::Selection << Content(qint64(2))
                                 << "2 is not the key of one of its items";
}

void TestValueStore::refusedWrites()
{
    QFETCH(ValueKind, kind);
    QFETCH(Content, written);
    QFETCH(QString, reason);
    ValueStore store;
    Description description = bandwidths();
    description.kind = kind;
    const ValueId id = store.define(description, {});
    const Content before = store.content(id);
    const WriteResult result = store.write(id, written, client);
    QCOMPARE(result.kind, AnswerKind::Refused);
    QCOMPARE(result.reason, reason);
    QVERIFY(store.content(id) == before);
}

void TestValueStore::numbersBeyondTheLimitsAreClamped_data()
{
    QTest::addColumn<ValueKind>("kind");
    QTest::addColumn<double>("written");
    QTest::addColumn<double>("kept");
    QTest::addColumn<QString>("reason");
    QTest::newRow("at the lower limit") << ValueKind::Float << 87.5e6 << 87.5e6 << "";
    QTest::newRow("at the upper limit") << ValueKind::Float << 108e6 << 108e6 << "";
    QTest::newRow("below") << ValueKind::Float << 1.0 << 87.5e6 << "clamped to 87.5 MHz";
    QTest::newRow("above") << ValueKind::Float << 1e12 << 108e6 << "clamped to 108 MHz";
    QTest::newRow("integer above") << ValueKind::Integer << 2e8 << 108e6 << "clamped to 108 MHz";
}

void TestValueStore::numbersBeyondTheLimitsAreClamped()
{
    QFETCH(ValueKind, kind);
    QFETCH(double, written);
    QFETCH(double, kept);
    QFETCH(QString, reason);
    ValueStore store;
    const ValueId id = store.define(limited("/RX1/FREQUENCY", kind, 87.5e6, 108e6, "Hz"), 98e6);
    const WriteResult result = store.write(id, written, client);
    QCOMPARE(result.kind, reason.isEmpty() ? AnswerKind::Accepted : AnswerKind::Clamped);
    QCOMPARE(result.reason, reason);
    QCOMPARE(store.number(id), kept);
}

void TestValueStore::limitsOfZeroAndZeroHoldOnlyWhenThereAreLimits()
{
    ValueStore store;
    const ValueId open = store.define(describe("/A", ValueKind::Float), 0.0);
    QCOMPARE(store.write(open, 5.0, client).kind, AnswerKind::Accepted);
    const ValueId fixed = store.define(limited("/B", ValueKind::Float, 0, 0), 0.0);
    QCOMPARE(store.write(fixed, 5.0, client).kind, AnswerKind::Clamped);
    QCOMPARE(store.number(fixed), 0.0);
}

void TestValueStore::aReadOnlyValueTakesNoWriteButTheDriversOwn()
{
    ValueStore store;
    Description description = describe("/RX1/DDC/DDC1/LevelValue", ValueKind::Float);
    description.writable = false;
    const ValueId id = store.define(description, 1.0);
    const WriteResult result = store.write(id, 2.0, client);
    QCOMPARE(result.kind, AnswerKind::Refused);
    QCOMPARE(result.reason, QString("can be read only"));
    QCOMPARE(store.number(id), 1.0);
    store.set(id, 2.0);
    QCOMPARE(store.number(id), 2.0);
}

void TestValueStore::theAuthorityDecidesAfterTypeAndLimits()
{
    ValueStore store;
    QVector<double> asked;
    const ValueId id =
        store.define(limited("/A", ValueKind::Float, 0, 10), 0.0, [&asked](ClientId who, Content& content) {
            asked << std::get<double>(content) << double(who);
            return WriteResult();
        });
    QCOMPARE(store.write(id, QString("x"), client).kind, AnswerKind::Refused);
    QVERIFY(asked.isEmpty());
    QCOMPARE(store.write(id, 20.0, client).reason, QString("clamped to 10"));
    QCOMPARE(asked, QVector<double>({10.0, double(client)}));
}

void TestValueStore::theAuthorityMayChangeWhatIsWritten()
{
    ValueStore store;
    const ValueId id = store.define(describe("/A", ValueKind::Float), 0.0, [](ClientId, Content& content) {
        content = 42.0;
        return WriteResult{AnswerKind::Clamped, "on the grid"};
    });
    const WriteResult result = store.write(id, 41.0, client);
    QCOMPARE(result.kind, AnswerKind::Clamped);
    QCOMPARE(result.reason, QString("on the grid"));
    QCOMPARE(store.number(id), 42.0);
}

void TestValueStore::aRefusalOfTheAuthorityLeavesTheValue()
{
    ValueStore store;
    const ValueId id = store.define(describe("/A", ValueKind::Text), QString("kept"), [](ClientId, Content&) {
        return WriteResult{AnswerKind::Refused, "not now"};
    });
    Notes notes;
    store.addListener(&notes);
    QCOMPARE(store.write(id, QString("new"), client).reason, QString("not now"));
    QCOMPARE(store.text(id), QString("kept"));
    QVERIFY(notes.heard.isEmpty());
}

void TestValueStore::anAuthorityMayRemoveTheValueItDecidesAbout()
{
    ValueStore store;
    ValueId id = 0;
    id = store.define(describe("/A", ValueKind::Bool), false, [&store, &id](ClientId, Content&) {
        store.remove(id);
        return WriteResult();
    });
    QCOMPARE(store.write(id, true, client).kind, AnswerKind::Accepted);
    QCOMPARE(store.find("/A"), ValueId(0));
}

void TestValueStore::theDriverSetsBeyondLimitsAndAccess()
{
    ValueStore store;
    Description description = limited("/A", ValueKind::Float, 0, 1);
    description.writable = false;
    const ValueId id = store.define(description, 0.5);
    store.set(id, -200.0);
    QCOMPARE(store.number(id), -200.0);
}

void TestValueStore::aContentOfAnotherKindIsNotSet()
{
    ValueStore store;
    const ValueId id = store.define(describe("/A", ValueKind::Float), 0.5);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("/A.*expects a number"));
    store.set(id, QString("loud"));
    QCOMPARE(store.number(id), 0.5);
}

void TestValueStore::listenersHearOnlyWhatDiffers()
{
    ValueStore store;
    Notes notes;
    store.addListener(&notes);
    const ValueId id = store.define(describe("/A", ValueKind::Float), 1.0);
    store.set(id, 1.0);
    store.set(id, 2.0);
    store.set(id, 2.0);
    store.set(id, std::numeric_limits<double>::quiet_NaN());
    store.set(id, std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(notes.heard, QStringList({"d1", "v1", "v1"}));
}

void TestValueStore::aLaterMeasurementOfTheSameNumberIsHeard()
{
    ValueStore store;
    const ValueId id = store.define(describe("/A", ValueKind::Float), 1.0);
    Notes notes;
    store.addListener(&notes);
    store.set(id, 1.0, 1000);
    store.set(id, 1.0, 1000);
    store.set(id, 1.0, 2000);
    QCOMPARE(notes.heard, QStringList({"v1", "v1"}));
    QCOMPARE(store.time(id), qint64(2000));
}

void TestValueStore::eventsAreAlwaysHeard()
{
    ValueStore store;
    Description description = describe("/A", ValueKind::Bool);
    description.event = true;
    const ValueId id = store.define(description, true);
    Notes notes;
    store.addListener(&notes);
    store.set(id, true);
    store.set(id, true);
    QCOMPARE(notes.heard.size(), 2);
}

void TestValueStore::statusAndDescriptionChangesAreHeard()
{
    ValueStore store;
    const ValueId id = store.define(limited("/A", ValueKind::Float, 0, 1), 1.0);
    Notes notes;
    store.addListener(&notes);
    store.setStatus(id, ValueStatus::NotAvailable);
    store.setStatus(id, ValueStatus::NotAvailable);
    QCOMPARE(store.status(id), ValueStatus::NotAvailable);

    Description other = limited("/elsewhere", ValueKind::Text, 0, 5);
    store.describe(id, other);
    QCOMPARE(notes.heard, QStringList({"v1", "d1"}));
    QCOMPARE(store.description(id).path, QString("/A"));
    QCOMPARE(store.description(id).kind, ValueKind::Float);
    QCOMPARE(store.description(id).maximum, 5.0);
    store.remove(id);
    QCOMPARE(notes.heard.last(), QString("r1"));
}

void TestValueStore::listenersHearChangesInTheOrderOfTheirHappening()
{
    ValueStore store;
    const ValueId cause = store.define(describe("/A", ValueKind::Float), 0.0);
    const ValueId effect = store.define(describe("/B", ValueKind::Float), 0.0);
    Notes first;
    Notes second;
    first.during = [&](const QString& what) {
        if (what == "v1")
            store.set(effect, store.number(cause));
    };
    store.addListener(&first);
    store.addListener(&second);
    store.set(cause, 5.0);
    QCOMPARE(first.heard, QStringList({"v1", "v2"}));
    QCOMPARE(second.heard, QStringList({"v1", "v2"}));
    QCOMPARE(store.number(effect), 5.0);
}

void TestValueStore::listenersMayLeaveWhileTheyAreTold()
{
    ValueStore store;
    const ValueId id = store.define(describe("/A", ValueKind::Float), 0.0);
    Notes first;
    Notes second;
    Notes late;
    first.during = [&](const QString&) {
        store.removeListener(&first);
        store.removeListener(&second);
        store.addListener(&late);
    };
    store.addListener(&first);
    store.addListener(&second);
    store.set(id, 1.0);
    store.set(id, 2.0);
    QCOMPARE(first.heard.size(), 1);
    QVERIFY(second.heard.isEmpty());
    QVERIFY(late.heard.contains("v1"));
    store.removeListener(&late);
    store.removeListener(&late);
    store.removeListener(nullptr);
}

void TestValueStore::aValueRemovedWhileToldIsNotReadAgain()
{
    ValueStore store;
    const ValueId id = store.define(describe("/A", ValueKind::Float), 0.0);
    Notes first;
    Notes second;
    first.during = [&](const QString& what) {
        if (what == "v1")
            store.remove(id);
    };
    store.addListener(&first);
    store.addListener(&second);
    store.set(id, 1.0);
    QCOMPARE(second.heard, QStringList({"r1"}));
}

void TestValueStore::conveniencesFollowTheKind()
{
    ValueStore store;
    const ValueId bandwidth = store.define(bandwidths(), qint64(4));
    QCOMPARE(store.number(bandwidth), 2400.0);
    QCOMPARE(store.key(bandwidth), qint64(4));
    QCOMPARE(store.text(bandwidth), QString("2.4 kHz"));
    QVERIFY(!store.flag(bandwidth));

    const ValueId text = store.define(describe("/T", ValueKind::Text), QString("DDC"));
    QCOMPARE(store.text(text), QString("DDC"));
    QCOMPARE(store.number(text), 0.0);
    QCOMPARE(store.key(text), qint64(0));

    const ValueId flag = store.define(describe("/F", ValueKind::Bool), true);
    QVERIFY(store.flag(flag));
    QVERIFY(store.text(flag).isEmpty());
}

void TestValueStore::aClientThatIsGoneIsToldToTheHandlersAndForgotten()
{
    ValueStore store;
    store.setClientName(client, "north");
    QVector<ClientId> gone;
    QString nameSeen;
    store.onClientGone([&](ClientId who) {
        gone << who;
        nameSeen = store.clientName(who);
    });
    store.clientGone(client);
    QCOMPARE(gone, QVector<ClientId>({client}));
    QCOMPARE(nameSeen, QString("north"));
    QVERIFY(store.clientName(client).isEmpty());
}

void TestValueStore::unknownIdsAreHarmless()
{
    ValueStore store;
    for (const ValueId id : {ValueId(0), ValueId(1), ValueId(4000000000u)}) {
        store.set(id, true);
        store.setStatus(id, ValueStatus::NotAvailable);
        store.describe(id, Description());
        store.remove(id);
        QCOMPARE(store.write(id, true, client).kind, AnswerKind::Refused);
        QCOMPARE(store.status(id), ValueStatus::NotAvailable);
        QCOMPARE(store.time(id), qint64(0));
        QVERIFY(std::holds_alternative<std::monostate>(store.content(id)));
        QVERIFY(store.description(id).path.isEmpty());
        QCOMPARE(store.number(id), 0.0);
        QVERIFY(store.text(id).isEmpty());
    }
}

QTEST_APPLESS_MAIN(TestValueStore)
#include "tst_valuestore.moc"
