#include <QTest>
#include <type_traits>

#include "tests/support/testtree.h"
#include "valuetree/valueptr.h"

namespace {

// Remembers whether a pointer still held its value when the owner was told.
class Owner : public NotingObserver
{
public:
    void Update(Observable* subject, TChangeCode code) override
    {
        NotingObserver::Update(subject, code);
        if (pointer)
            heldWhenTold.append(pointer->value != nullptr);
    }

    ValueObservingPtr<BoolValue>* pointer = nullptr;
    QVector<bool> heldWhenTold;
};

template <class T>
void CheckBothTemplates(const QString& path, const QString& otherPath)
{
    ValuePtr<T> plain;
    QVERIFY(!plain.value);
    QVERIFY(plain.Attach(path));
    QCOMPARE(static_cast<ValueBase*>(plain.value), TestTree::Find(path));
    QCOMPARE(plain.value->CountObservers(), 1);
    QVERIFY(!plain.Attach(otherPath));
    QVERIFY(!plain.value);
    QCOMPARE(TestTree::Find(path)->CountObservers(), 0);

    NotingObserver owner;
    ValueObservingPtr<T> observing(&owner);
    QVERIFY(!observing.value);
    QVERIFY(observing.owner == &owner);
    QVERIFY(observing.Attach(path));
    QCOMPARE(observing.value->CountObservers(), 2);
    observing.value->NotifyObservers(CC_VALUE, nullptr);
    QCOMPARE(owner.Count(CC_VALUE), 1);
    QVERIFY(!observing.Attach(otherPath));
    QVERIFY(!observing.value);
    QCOMPARE(TestTree::Find(path)->CountObservers(), 0);
    QCOMPARE(TestTree::Find(otherPath)->CountObservers(), 0);
}

}  // namespace

class tst_ValuePtr : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_Tree.reset(new TestTree);
        TestTree::AddBool("/D/Switch", true);
        TestTree::AddBool("/D/Other", false);
        TestTree::AddText("/D/Text", "text");
        TestTree::AddFloat("/D/Number", 1.5, "Hz");
        TestTree::AddSelection("/D/Selection", {{7, "seven", 7}}, 7);
    }
    void cleanup() { m_Tree.reset(); }

    void attachTakesOnlyAValueOfItsTypeAndDetachesOtherwise_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("other");
        QTest::newRow("bool") << "/D/Switch"
                              << "/D/Text";
        QTest::newRow("text") << "/D/Text"
                              << "/D/Switch";
        QTest::newRow("number") << "/D/Number"
                                << "/D/Selection";
        QTest::newRow("selection") << "/D/Selection"
                                   << "/D/Number";
    }
    void attachTakesOnlyAValueOfItsTypeAndDetachesOtherwise()
    {
        QFETCH(QString, path);
        QFETCH(QString, other);
        if (path == "/D/Switch")
            CheckBothTemplates<BoolValue>(path, other);
        else if (path == "/D/Text")
            CheckBothTemplates<TextValue>(path, other);
        else if (path == "/D/Number")
            CheckBothTemplates<FloatValue>(path, other);
        else
            CheckBothTemplates<ValueSelection>(path, other);
    }

    void attachToAMissingPathReturnsFalseAndLetsGo()
    {
        ValuePtr<BoolValue> pointer;
        QVERIFY(pointer.Attach("/D/Switch"));
        QVERIFY(!pointer.Attach("/D/Nothing"));
        QVERIFY(!pointer.value);
        QVERIFY(!pointer.Attach("/D"));  // a node is no value
        QVERIFY(!pointer.Attach(QString()));
        QCOMPARE(TestTree::Bool("/D/Switch").CountObservers(), 0);
    }

    void attachingTheSameValueTwiceInARowRegistersTheObserversOnce()
    {
        NotingObserver owner;
        ValueObservingPtr<BoolValue> pointer(&owner);
        QVERIFY(pointer.Attach("/D/Switch"));
        QVERIFY(pointer.Attach("/D/Switch"));
        BoolValue& value = TestTree::Bool("/D/Switch");
        QCOMPARE(value.CountObservers(), 2);
        pointer.Set(&value);
        QCOMPARE(value.CountObservers(), 2);
        value.SetValue(false, nullptr);
        QCOMPARE(owner.Count(CC_VALUE), 1);
    }

    void settingTheHeldValueAgainKeepsThePlaceAmongTheObservers()
    {
        NotingObserver owner;
        ValueObservingPtr<BoolValue> pointer(&owner);
        BoolValue& value = TestTree::Bool("/D/Switch");
        pointer.Set(&value);
        NotingObserver late;
        value.AddObserver(&late);
        pointer.Set(&value);
        value.DeleteObserver(&late);
        QCOMPARE(value.CountObservers(), 2);
        QCOMPARE(pointer.value, &value);
    }

    void settingAnotherValueLeavesTheFormerOne()
    {
        NotingObserver owner;
        ValueObservingPtr<BoolValue> pointer(&owner);
        pointer.Set(&TestTree::Bool("/D/Switch"));
        pointer.Set(&TestTree::Bool("/D/Other"));
        QCOMPARE(TestTree::Bool("/D/Switch").CountObservers(), 0);
        QCOMPARE(TestTree::Bool("/D/Other").CountObservers(), 2);
        pointer.Set(nullptr);
        QCOMPARE(TestTree::Bool("/D/Other").CountObservers(), 0);
    }

    void ownerIsToldBeforeThePointerItself()
    {
        Owner owner;
        ValueObservingPtr<BoolValue> pointer(&owner);
        pointer.Attach("/D/Switch");
        owner.pointer = &pointer;
        TestTree::Delete("/D/Switch");
        QCOMPARE(owner.Count(CC_STATE), 1);
        QCOMPARE(owner.heldWhenTold, QVector<bool>({true}));
        QVERIFY(!pointer.value);
    }

    void afterTheValueAnnouncedItsEndTheOwnerHearsNothingMoreAndThePointerIsNull()
    {
        NotingObserver owner;
        ValueObservingPtr<BoolValue> pointer(&owner);
        BoolValue& value = TestTree::Bool("/D/Switch");
        pointer.Set(&value);
        NotingObserver after;  // hears of the end after the pointer, and speaks for the value once more
        class Echo : public IObserver
        {
        public:
            void Update(Observable* subject, TChangeCode code) override
            {
                if (code == CC_STATE)
                    subject->NotifyObservers(CC_VALUE, nullptr);
            }
        } echo;
        value.AddObserver(&echo);
        value.AddObserver(&after);
        TestTree::Delete("/D/Switch");
        QVERIFY(!pointer.value);
        QCOMPARE(owner.Count(CC_STATE), 1);
        QCOMPARE(owner.Count(CC_VALUE), 0);
    }

    void plainPointerLetsGoWhenTheValueGoes()
    {
        ValuePtr<TextValue> pointer;
        QVERIFY(pointer.Attach("/D/Text"));
        TestTree::Delete("/D/Text");
        QVERIFY(!pointer.value);
    }

    void otherCodesAndOtherStatesDoNotDetach()
    {
        NotingObserver owner;
        ValueObservingPtr<BoolValue> observing(&owner);
        ValuePtr<BoolValue> plain;
        observing.Attach("/D/Switch");
        plain.Attach("/D/Switch");
        BoolValue& value = TestTree::Bool("/D/Switch");
        for (int code = 0; code < 20; ++code)
            value.NotifyObservers(TChangeCode(code), nullptr);
        ValueHost::SetState(value, VS_NOT_AVAILABLE);
        ValueHost::SetState(value, VS_STALE);
        QVERIFY(observing.value && plain.value);
        QCOMPARE(owner.notices.size(), 22);
    }

    void deleteTakesTheValueOutOfTheTreeForEverybody()
    {
        NotingObserver owner;
        ValueObservingPtr<BoolValue> observing(&owner);
        ValuePtr<BoolValue> plain;
        observing.Attach("/D/Switch");
        plain.Attach("/D/Switch");
        observing.Delete();
        QVERIFY(!observing.value);
        QVERIFY(!plain.value);
        QVERIFY(!TestTree::Find("/D/Switch"));
        QCOMPARE(owner.notices.size(), 0);  // it left first
        observing.Delete();
        plain.Delete();
        QVERIFY(TestTree::Find("/D/Other"));
    }

    void destructionLeavesTheObserversAndKeepsTheValue()
    {
        NotingObserver owner;
        {
            ValueObservingPtr<BoolValue> observing(&owner);
            ValuePtr<BoolValue> plain;
            observing.Attach("/D/Switch");
            plain.Attach("/D/Switch");
            QCOMPARE(TestTree::Bool("/D/Switch").CountObservers(), 3);
        }
        QCOMPARE(TestTree::Bool("/D/Switch").CountObservers(), 0);
        TestTree::Bool("/D/Switch").SetValue(false, nullptr);
        QCOMPARE(owner.notices.size(), 0);
    }

    void pointersAreMembersOrLocalsAndAreNotCopied()
    {
        QVERIFY(!std::is_copy_constructible<ValuePtr<BoolValue>>::value);
        QVERIFY(!std::is_copy_assignable<ValuePtr<BoolValue>>::value);
        QVERIFY(!std::is_copy_constructible<ValueObservingPtr<TextValue>>::value);
        const auto readOnce = [](const QString& path) {
            ValuePtr<BoolValue> local;
            return local.Attach(path) && local.value->GetValue();
        };
        for (int i = 0; i < 100; ++i)
            QVERIFY(readOnce("/D/Switch"));
        QCOMPARE(TestTree::Bool("/D/Switch").CountObservers(), 0);
    }

    void missingTextValueIsCreatedAndExistingOneIsTaken()
    {
        ValuePtr<TextValue> pointer;
        QVERIFY(!pointer.AttachOrCreate("/D/Text"));
        QCOMPARE(pointer.value->GetValue(), QString("text"));
        QVERIFY(pointer.AttachOrCreate("/D/New"));
        QVERIFY(pointer.value);
        QCOMPARE(pointer.value->GetPathName(), QString("/D/New"));
        QCOMPARE(static_cast<ValueBase*>(pointer.value), TestTree::Find("/D/New"));
        QVERIFY(!pointer.AttachOrCreate("/D/New"));
    }

    void ownerOfACreatedTextValueHearsItsChanges()
    {
        NotingObserver owner;
        ValueObservingPtr<TextValue> pointer(&owner);
        QVERIFY(pointer.AttachOrCreate("/D/New"));
        pointer.value->SetValue("changed", nullptr);
        QCOMPARE(owner.Count(CC_VALUE), 1);
    }

    void pointerHoldsAFreeStandingValueWhereTheTreeRefusesIt_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::newRow("no such parent") << "/Nowhere/New"
                                        << "New";
        QTest::newRow("taken by another type") << "/D/Switch"
                                               << "Switch";
        QTest::newRow("no separator") << "New"
                                      << "New";
        QTest::newRow("no name") << "/D/"
                                 << "";
    }
    void pointerHoldsAFreeStandingValueWhereTheTreeRefusesIt()
    {
        QFETCH(QString, path);
        QFETCH(QString, name);
        const int before = ValueHost::CountValues();
        ValuePtr<TextValue> pointer;
        const bool created = pointer.AttachOrCreate(path);
        QVERIFY(created);
        QVERIFY(pointer.value);
        if (path == "New" && TestTree::Find("/New"))
            QSKIP("this tree takes a path without separator for one below its root");
        QCOMPARE(ValueHost::CountValues(), before);
        QCOMPARE(pointer.value->GetName(), name);
        TextValue* freeStanding = pointer.value;
        delete freeStanding;  // announces, so that the pointer lets go of it
        QVERIFY(!pointer.value);
    }

    void withoutATreeNothingIsFound()
    {
        m_Tree.reset();
        ValuePtr<BoolValue> pointer;
        QVERIFY(!pointer.Attach("/D/Switch"));
        pointer.Delete();
        QVERIFY(!pointer.value);
        m_Tree.reset(new TestTree);
    }

private:
    QScopedPointer<TestTree> m_Tree;
};

QTEST_GUILESS_MAIN(tst_ValuePtr)
#include "tst_valueptr.moc"
