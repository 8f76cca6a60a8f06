#include <QTest>
#include <memory>

#include "tests/valueframework/watcher.h"

// Who is told of a change, in which order, and what may happen in the middle of it.
class tst_observable : public QObject
{
    Q_OBJECT
private slots:
    void anObserverAddedTwiceIsCalledOnce();
    void addingNullIsIgnored();
    void observersAreCalledInTheOrderInWhichTheyWereAdded();
    void anObserverThatComesAgainGoesToTheEnd();
    void makeFirstMovesARegisteredObserverToTheFront();
    void makeFirstAddsAnUnregisteredObserverAtTheFront();
    void removingAnObserverThatIsNotRegisteredIsHarmless();
    void deleteObserversLeavesNobody();
    void theWriterIsNotNotified();
    void writingWhatStandsNotifiesNobody();
    void anObserverThatLeavesMeanwhileIsNotCalledAnyMore();
    void anObserverThatComesMeanwhileHearsOfTheNextWriteOnly();
    void anObserverThatLeavesAndComesAgainMeanwhileIsNotCalledForThisWrite();
    void manyObserversThatComeMeanwhileDoNotDisturb();
    void oneMovedToTheFrontMeanwhileIsCalledExactlyOnce();
    void oneMovedToTheFrontMeanwhileThatThenLeavesIsNotCalled();
    void allLeavingMeanwhileEndsTheNotification();
    void aNestedWriteNotifiesAgainAndTheOuterOneGoesOn();
    void aNestedWriteUsesTheOrderThatHoldsThen();
    void theSubjectMayBeDestroyedInsideUpdate();
    void theSubjectMayBeDestroyedInsideANestedUpdate();
    void theNotifiedObserverMayDestroyItself();
    void theNextObserverMayBeDestroyedInsideUpdate();
    void aDestroyedObserverLeavesAllItsSubjects();
    void aDestroyedSubjectLeavesItsObservers();
    void anExceptionFromUpdateLeavesTheListUsable();
    void aSubjectWithThousandsOfObserversKeepsTheirOrder();
    void thousandsMayLeaveInsideOneNotification();
    void oneObserverMayWatchAHundredThousandValues();
};

void tst_observable::anObserverAddedTwiceIsCalledOnce()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.AddObserver(&watcher);
    QCOMPARE(value.CountObservers(), 1);
    value.SetValue(1, nullptr);
    QCOMPARE(watcher.Count(CC_VALUE), 1);
    value.DeleteObserver(&watcher);
    QCOMPARE(value.CountObservers(), 0);
}

void tst_observable::addingNullIsIgnored()
{
    IntValue value;
    value.AddObserver(nullptr);
    value.MakeFirstObserver(nullptr);
    value.DeleteObserver(nullptr);
    QCOMPARE(value.CountObservers(), 0);
    QVERIFY(value.SetValue(1, nullptr));
}

void tst_observable::observersAreCalledInTheOrderInWhichTheyWereAdded()
{
    IntValue value;
    QVector<const Watcher*> order;
    Watcher a(&order), b(&order), c(&order);
    value.AddObserver(&b);
    value.AddObserver(&a);
    value.AddObserver(&c);
    value.AddObserver(&b);
    value.SetValue(1, nullptr);
    QCOMPARE(order, (QVector<const Watcher*>{&b, &a, &c}));
}

void tst_observable::anObserverThatComesAgainGoesToTheEnd()
{
    IntValue value;
    QVector<const Watcher*> order;
    Watcher a(&order), b(&order), c(&order);
    value.AddObserver(&a);
    value.AddObserver(&b);
    value.AddObserver(&c);
    value.DeleteObserver(&a);
    value.AddObserver(&a);
    value.SetValue(1, nullptr);
    QCOMPARE(order, (QVector<const Watcher*>{&b, &c, &a}));
}

void tst_observable::makeFirstMovesARegisteredObserverToTheFront()
{
    IntValue value;
    QVector<const Watcher*> order;
    Watcher a(&order), b(&order), c(&order);
    value.AddObserver(&a);
    value.AddObserver(&b);
    value.AddObserver(&c);
    value.MakeFirstObserver(&c);
    value.SetValue(1, nullptr);
    QCOMPARE(order, (QVector<const Watcher*>{&c, &a, &b}));
    QCOMPARE(value.CountObservers(), 3);
}

void tst_observable::makeFirstAddsAnUnregisteredObserverAtTheFront()
{
    IntValue value;
    QVector<const Watcher*> order;
    Watcher a(&order), b(&order);
    value.MakeFirstObserver(&a);
    value.MakeFirstObserver(&b);
    value.SetValue(1, nullptr);
    QCOMPARE(order, (QVector<const Watcher*>{&b, &a}));
}

void tst_observable::removingAnObserverThatIsNotRegisteredIsHarmless()
{
    IntValue value;
    Watcher registered, stranger;
    value.DeleteObserver(&stranger);
    value.AddObserver(&registered);
    value.DeleteObserver(&stranger);
    value.DeleteObserver(&registered);
    value.DeleteObserver(&registered);
    QCOMPARE(value.CountObservers(), 0);
    value.SetValue(1, nullptr);
    QVERIFY(registered.codes.isEmpty());
}

void tst_observable::deleteObserversLeavesNobody()
{
    IntValue value, other;
    Watcher a, b;
    for (Watcher* watcher : {&a, &b}) {
        value.AddObserver(watcher);
        other.AddObserver(watcher);
    }
    value.DeleteObservers();
    QCOMPARE(value.CountObservers(), 0);
    value.SetValue(1, nullptr);
    other.SetValue(1, nullptr);
    QCOMPARE(a.codes, QVector<TChangeCode>{CC_VALUE});
    QCOMPARE(b.codes, QVector<TChangeCode>{CC_VALUE});
}

void tst_observable::theWriterIsNotNotified()
{
    IntValue value;
    Watcher writer, other;
    value.AddObserver(&writer);
    value.AddObserver(&other);
    value.SetValue(5, &writer);
    QVERIFY(writer.codes.isEmpty());
    QCOMPARE(other.codes, QVector<TChangeCode>{CC_VALUE});
}

void tst_observable::writingWhatStandsNotifiesNobody()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    QVERIFY(value.SetValue(5, nullptr));
    QVERIFY(value.SetValue(5, nullptr));
    QCOMPARE(watcher.Count(CC_VALUE), 1);
}

void tst_observable::anObserverThatLeavesMeanwhileIsNotCalledAnyMore()
{
    IntValue value;
    Watcher last;
    Watcher remover([&](Observable* subject, TChangeCode) { subject->DeleteObserver(&last); });
    Watcher self([&](Observable* subject, TChangeCode) { subject->DeleteObserver(&self); });
    value.AddObserver(&self);
    value.AddObserver(&remover);
    value.AddObserver(&last);
    value.SetValue(1, nullptr);
    value.SetValue(2, nullptr);
    QVERIFY(last.codes.isEmpty());
    QCOMPARE(self.codes.size(), 1);
    QCOMPARE(remover.codes.size(), 2);
    QCOMPARE(value.CountObservers(), 1);
}

void tst_observable::anObserverThatComesMeanwhileHearsOfTheNextWriteOnly()
{
    IntValue value;
    Watcher newcomer;
    Watcher adder([&](Observable* subject, TChangeCode) { subject->AddObserver(&newcomer); });
    value.AddObserver(&adder);
    value.SetValue(1, nullptr);
    QVERIFY(newcomer.codes.isEmpty());
    value.SetValue(2, nullptr);
    QCOMPARE(newcomer.codes.size(), 1);
}

void tst_observable::anObserverThatLeavesAndComesAgainMeanwhileIsNotCalledForThisWrite()
{
    IntValue value;
    Watcher again;
    Watcher swapper([&](Observable* subject, TChangeCode) {
        subject->DeleteObserver(&again);
        subject->AddObserver(&again);
    });
    value.AddObserver(&swapper);
    value.AddObserver(&again);
    value.SetValue(1, nullptr);
    QVERIFY(again.codes.isEmpty());
    swapper.onUpdate = nullptr;
    value.SetValue(2, nullptr);
    QCOMPARE(again.codes.size(), 1);
}

void tst_observable::manyObserversThatComeMeanwhileDoNotDisturb()
{
    IntValue value;
    std::vector<std::unique_ptr<Watcher>> crowd;
    Watcher last;
    Watcher adder([&](Observable* subject, TChangeCode) {
        for (int i = 0; i < 100; ++i) {
            crowd.push_back(std::make_unique<Watcher>());
            subject->AddObserver(crowd.back().get());
        }
    });
    value.AddObserver(&adder);
    value.AddObserver(&last);
    value.SetValue(1, nullptr);
    QCOMPARE(last.codes.size(), 1);
    QCOMPARE(value.CountObservers(), 102);
    adder.onUpdate = nullptr;
    value.SetValue(2, nullptr);
    for (const auto& one : crowd) {
        QCOMPARE(one->codes.size(), 1);
    }
}

void tst_observable::oneMovedToTheFrontMeanwhileIsCalledExactlyOnce()
{
    IntValue value;
    QVector<const Watcher*> order;
    Watcher b(&order), c(&order), a(&order);
    a.onUpdate = [&](Observable*, TChangeCode) { value.MakeFirstObserver(&c); };
    b.onUpdate = [&](Observable*, TChangeCode) { value.MakeFirstObserver(&a); };
    value.AddObserver(&a);
    value.AddObserver(&b);
    value.AddObserver(&c);
    value.SetValue(1, nullptr);
    QCOMPARE(order, (QVector<const Watcher*>{&a, &b, &c}));
    a.onUpdate = b.onUpdate = nullptr;
    order.clear();
    value.SetValue(2, nullptr);
    QCOMPARE(order, (QVector<const Watcher*>{&a, &c, &b}));
}

void tst_observable::oneMovedToTheFrontMeanwhileThatThenLeavesIsNotCalled()
{
    IntValue value;
    Watcher b, c;
    Watcher a([&](Observable*, TChangeCode) {
        value.MakeFirstObserver(&c);
        value.DeleteObserver(&c);
    });
    value.AddObserver(&a);
    value.AddObserver(&b);
    value.AddObserver(&c);
    value.SetValue(1, nullptr);
    QCOMPARE(b.codes.size(), 1);
    QVERIFY(c.codes.isEmpty());
}

void tst_observable::allLeavingMeanwhileEndsTheNotification()
{
    IntValue value;
    Watcher b, c;
    Watcher a([&](Observable* subject, TChangeCode) {
        subject->DeleteObservers();
        subject->AddObserver(&c);
    });
    value.AddObserver(&a);
    value.AddObserver(&b);
    value.SetValue(1, nullptr);
    QVERIFY(b.codes.isEmpty());
    QVERIFY(c.codes.isEmpty());
    value.SetValue(2, nullptr);
    QCOMPARE(a.codes.size(), 1);
    QCOMPARE(c.codes.size(), 1);
}

void tst_observable::aNestedWriteNotifiesAgainAndTheOuterOneGoesOn()
{
    IntValue value;
    QVector<int> seen;
    Watcher last([&](Observable*, TChangeCode) { seen.append(value.GetValue()); });
    Watcher writer([&](Observable*, TChangeCode) {
        if (value.GetValue() == 1) {
            value.SetValue(2, nullptr);
        }
    });
    value.AddObserver(&writer);
    value.AddObserver(&last);
    value.SetValue(1, nullptr);
    QCOMPARE(writer.codes.size(), 2);
    QCOMPARE(seen, (QVector<int>{2, 2}));
}

void tst_observable::aNestedWriteUsesTheOrderThatHoldsThen()
{
    IntValue value;
    QVector<const Watcher*> order;
    Watcher a(&order), b(&order);
    a.onUpdate = [&](Observable*, TChangeCode) {
        if (value.GetValue() == 1) {
            value.MakeFirstObserver(&b);
            value.SetValue(2, nullptr);
        }
    };
    value.AddObserver(&a);
    value.AddObserver(&b);
    value.SetValue(1, nullptr);
    QCOMPARE(order, (QVector<const Watcher*>{&a, &b, &a, &b}));
}

void tst_observable::theSubjectMayBeDestroyedInsideUpdate()
{
    auto* value = new IntValue;
    Watcher last;
    Watcher destroyer([&](Observable*, TChangeCode code) {
        if (code == CC_VALUE) {
            delete value;
        }
    });
    value->AddObserver(&destroyer);
    value->AddObserver(&last);
    QVERIFY(value->SetValue(1, nullptr));
    QCOMPARE(destroyer.codes, (QVector<TChangeCode>{CC_VALUE, CC_STATE}));
    QCOMPARE(last.codes, QVector<TChangeCode>{CC_STATE});
}

void tst_observable::theSubjectMayBeDestroyedInsideANestedUpdate()
{
    auto* value = new IntValue;
    Watcher last;
    Watcher writer([&](Observable*, TChangeCode code) {
        if (code != CC_VALUE) {
            return;
        }
        if (value->GetValue() < 5) {
            value->MakeFirstObserver(&last);
            value->SetValue(value->GetValue() + 1, &last);
        } else {
            delete value;
        }
    });
    value->AddObserver(&writer);
    value->AddObserver(&last);
    value->SetValue(1, nullptr);
    QCOMPARE(writer.Count(CC_VALUE), 5);
    QCOMPARE(last.codes, QVector<TChangeCode>{CC_STATE});
}

void tst_observable::theNotifiedObserverMayDestroyItself()
{
    IntValue value;
    Watcher last;
    auto* mortal = new Watcher;
    mortal->onUpdate = [mortal](Observable*, TChangeCode) { delete mortal; };
    value.AddObserver(mortal);
    value.AddObserver(&last);
    value.SetValue(1, nullptr);
    QCOMPARE(last.codes.size(), 1);
    QCOMPARE(value.CountObservers(), 1);
}

void tst_observable::theNextObserverMayBeDestroyedInsideUpdate()
{
    IntValue value;
    auto next = std::make_unique<Watcher>();
    Watcher last;
    Watcher destroyer([&](Observable*, TChangeCode) { next.reset(); });
    value.AddObserver(&destroyer);
    value.AddObserver(next.get());
    value.AddObserver(&last);
    value.SetValue(1, nullptr);
    QCOMPARE(last.codes.size(), 1);
    QCOMPARE(value.CountObservers(), 2);
}

void tst_observable::aDestroyedObserverLeavesAllItsSubjects()
{
    IntValue a, b, c;
    Watcher other;
    {
        Watcher watcher;
        for (IntValue* value : {&a, &b, &c}) {
            value->AddObserver(&watcher);
            value->AddObserver(&other);
        }
        b.DeleteObserver(&watcher);
    }
    for (IntValue* value : {&a, &b, &c}) {
        QCOMPARE(value->CountObservers(), 1);
        value->SetValue(1, nullptr);
    }
    QCOMPARE(other.codes.size(), 3);
}

void tst_observable::aDestroyedSubjectLeavesItsObservers()
{
    Watcher watcher;
    IntValue stays;
    auto value = std::make_unique<IntValue>();
    value->AddObserver(&watcher);
    stays.AddObserver(&watcher);
    value.reset();
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_STATE});
    stays.SetValue(1, nullptr);
    QCOMPARE(watcher.codes.size(), 2);
}

void tst_observable::anExceptionFromUpdateLeavesTheListUsable()
{
    IntValue value;
    Watcher last;
    Watcher thrower([&](Observable* subject, TChangeCode) {
        subject->DeleteObserver(&thrower);
        throw 1;
    });
    value.AddObserver(&thrower);
    value.AddObserver(&last);
    bool thrown = false;
    try {
        value.SetValue(1, nullptr);
    } catch (int) {
        thrown = true;
    }
    QVERIFY(thrown);
    QCOMPARE(value.CountObservers(), 1);
    value.SetValue(2, nullptr);
    QCOMPARE(last.codes.size(), 1);
}

void tst_observable::aSubjectWithThousandsOfObserversKeepsTheirOrder()
{
    constexpr int count = 5000;
    IntValue value;
    QVector<const Watcher*> order, expected;
    std::vector<std::unique_ptr<Watcher>> crowd;
    for (int i = 0; i < count; ++i) {
        crowd.push_back(std::make_unique<Watcher>(&order));
        value.AddObserver(crowd.back().get());
    }
    for (int i = 0; i < count; ++i) {
        if (i % 3 == 0) {
            value.DeleteObserver(crowd[std::size_t(i)].get());
        } else if (i % 3 == 1 && i % 2 == 0) {
            crowd[std::size_t(i)].reset();
        } else {
            expected.append(crowd[std::size_t(i)].get());
        }
    }
    const Watcher* first = expected.takeAt(expected.size() / 2);
    expected.prepend(first);
    value.MakeFirstObserver(const_cast<Watcher*>(first));
    value.SetValue(1, nullptr);
    QCOMPARE(order, expected);
    QCOMPARE(value.CountObservers(), int(expected.size()));
}

void tst_observable::thousandsMayLeaveInsideOneNotification()
{
    constexpr int count = 5000;
    IntValue value;
    std::vector<std::unique_ptr<Watcher>> crowd;
    for (int i = 0; i < count; ++i) {
        crowd.push_back(std::make_unique<Watcher>());
        Watcher* self = crowd.back().get();
        self->onUpdate = [self](Observable* subject, TChangeCode) { subject->DeleteObserver(self); };
        value.AddObserver(self);
    }
    value.SetValue(1, nullptr);
    QCOMPARE(value.CountObservers(), 0);
    value.SetValue(2, nullptr);
    for (const auto& one : crowd) {
        QCOMPARE(one->codes.size(), 1);
    }
}

// Would take minutes if joining, leaving or destroying searched through all that one watches.
void tst_observable::oneObserverMayWatchAHundredThousandValues()
{
    constexpr int count = 100000;
    std::vector<std::unique_ptr<IntValue>> values;
    auto watcher = std::make_unique<Watcher>();
    Watcher second;
    for (int i = 0; i < count; ++i) {
        values.push_back(std::make_unique<IntValue>());
        values.back()->AddObserver(watcher.get());
        values.back()->AddObserver(&second);
    }
    for (int i = 0; i < count; i += 2) {
        values[std::size_t(i)]->DeleteObserver(watcher.get());
    }
    for (int i = 0; i < count; ++i) {
        values[std::size_t(i)]->SetValue(1, nullptr);
    }
    QCOMPARE(watcher->codes.size(), count / 2);
    watcher.reset();
    for (int i = 0; i < count; ++i) {
        QCOMPARE(values[std::size_t(i)]->CountObservers(), 1);
    }
    values.clear();
    QCOMPARE(second.Count(CC_STATE), count);
}

QTEST_GUILESS_MAIN(tst_observable)
#include "tst_observable.moc"
