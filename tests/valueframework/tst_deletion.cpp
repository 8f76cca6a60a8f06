#include <QTest>

#include "tests/valueframework/watcher.h"
#include "valueframework/arexception.h"
#include "valueframework/node.h"
#include "valueframework/valuedescriptor.h"

namespace {

QStringList ChildNames(const QString& path)
{
    QStringList names;
    if (Node* node = Tree::Instance()->FindNode(path)) {
        for (TreeItem* item : node->GetChildren()) {
            names.append(item->GetName());
        }
    }
    return names;
}

}  // namespace

// Values that go away: who is told, in which order, and what may happen meanwhile.
class tst_deletion : public QObject
{
    Q_OBJECT
private slots:
    void deletingAnnouncesToAllAndThenDestroys();
    void aDeletedPathIsFreeFromTheAnnouncementOn();
    void deletingAgainInsideTheAnnouncementIsHarmless();
    void oneWhoJoinsInsideTheAnnouncementIsToldAsWell();
    void oneWhoJoinsAgainAndAgainDoesNotKeepTheValue();
    void deletingANodeAnnouncesAllBelowInTheOrderOfMaking();
    void nothingOfADeletedNodeIsDestroyedBeforeAllIsAnnounced();
    void deletingANodeInsideTheAnnouncementOfAValueBelowIt();
    void deletingAPathThatIsNotThereIsIgnored();
    void deletingTheRootEmptiesTheTree();
    void aValueDestroyedByItsHolderLeavesTheTree();
    void aValueDestroyedWhileItsNodeIsDeletedIsNotDestroyedTwice();
    void whatIsMadeInsideAnAnnouncementStays();
    void theTreeMayBeDestroyedInsideUpdate();
    void theTreeMayBeDestroyedInsideAnAnnouncement();
    void nothingIsMadeWhileTheTreeCloses();
    void aHundredThousandValuesComeAndGo();
};

void tst_deletion::deletingAnnouncesToAllAndThenDestroys()
{
    OwnTree tree;
    FloatValue* value = MakeFloat("/A/B", 7);
    QVector<const Watcher*> order;
    Watcher a(&order), b(&order);
    TValueState state = VS_USABLE;
    double content = 0;
    QString path;
    a.onUpdate = [&](Observable* subject, TChangeCode) {
        auto* told = dynamic_cast<FloatValue*>(subject);
        state = told->GetState();
        content = told->GetValue();
        path = told->GetPathName();
    };
    value->AddObserver(&a);
    value->AddObserver(&b);
    Tree::Instance()->DeleteValue("/A/B");
    QCOMPARE(order, (QVector<const Watcher*>{&a, &b}));
    QCOMPARE(a.codes, QVector<TChangeCode>{CC_STATE});
    QCOMPARE(b.codes, QVector<TChangeCode>{CC_STATE});
    QCOMPARE(state, VS_DELETING);
    QCOMPARE(content, 7.0);
    QCOMPARE(path, QString("/A/B"));
    QVERIFY(!Tree::Instance()->FindValue("/A/B"));
    QVERIFY(Tree::Instance()->FindNode("/A"));
}

void tst_deletion::aDeletedPathIsFreeFromTheAnnouncementOn()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    bool found = true;
    QStringList children{"?"};
    Watcher watcher([&](Observable*, TChangeCode) {
        found = Tree::Instance()->FindValue("/A/B") != nullptr;
        children = ChildNames("/A");
    });
    value->AddObserver(&watcher);
    Tree::Instance()->DeleteValue("/A/B");
    QVERIFY(!found);
    QVERIFY(children.isEmpty());
}

void tst_deletion::deletingAgainInsideTheAnnouncementIsHarmless()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    Watcher watcher([](Observable* subject, TChangeCode) {
        Tree::Instance()->DeleteValue(dynamic_cast<ValueBase*>(subject)->GetPathName());
        Tree::Instance()->DeleteValue("/A");
        dynamic_cast<IntValue*>(subject)->SetValue(8, nullptr);
    });
    Watcher last;
    value->AddObserver(&watcher);
    value->AddObserver(&last);
    Tree::Instance()->DeleteValue("/A/B");
    QCOMPARE(last.Count(CC_STATE), 1);
    QVERIFY(!Tree::Instance()->FindNode("/A"));
}

void tst_deletion::oneWhoJoinsInsideTheAnnouncementIsToldAsWell()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    Watcher second;
    Watcher first([&](Observable* subject, TChangeCode) { subject->AddObserver(&second); });
    Watcher adder([&](Observable* subject, TChangeCode) { subject->AddObserver(&first); });
    value->AddObserver(&adder);
    Tree::Instance()->DeleteValue("/A/B");
    QCOMPARE(first.codes, QVector<TChangeCode>{CC_STATE});
    QCOMPARE(second.codes, QVector<TChangeCode>{CC_STATE});
}

void tst_deletion::oneWhoJoinsAgainAndAgainDoesNotKeepTheValue()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    Watcher stubborn([&](Observable* subject, TChangeCode) {
        subject->DeleteObserver(&stubborn);
        subject->AddObserver(&stubborn);
    });
    value->AddObserver(&stubborn);
    Tree::Instance()->DeleteValue("/A/B");
    QCOMPARE(ValueHost::CountValues(), 0);
    QVERIFY(stubborn.codes.size() < 10);
}

void tst_deletion::deletingANodeAnnouncesAllBelowInTheOrderOfMaking()
{
    OwnTree tree;
    QStringList told;
    Watcher watcher([&](Observable* subject, TChangeCode) {
        told.append(dynamic_cast<ValueBase*>(subject)->GetPathName());
    });
    for (const char* path : {"/R/D/x", "/R/a", "/Other/v", "/R/D/E/y", "/R/b"}) {
        MakeInt(path)->AddObserver(&watcher);
    }
    Tree::Instance()->DeleteValue("/R");
    QCOMPARE(told, (QStringList{"/R/D/x", "/R/a", "/R/D/E/y", "/R/b"}));
    QVERIFY(!Tree::Instance()->FindNode("/R"));
    QVERIFY(!Tree::Instance()->FindNode("/R/D/E"));
    QCOMPARE(ValueHost::CountValues(), 1);
    QCOMPARE(ChildNames(""), QStringList{"Other"});
}

void tst_deletion::nothingOfADeletedNodeIsDestroyedBeforeAllIsAnnounced()
{
    OwnTree tree;
    IntValue* first = MakeInt("/N/first", 1);
    IntValue* second = MakeInt("/N/second", 2);
    QVector<int> seen;
    Watcher watcher([&](Observable*, TChangeCode) { seen << first->GetValue() << second->GetValue(); });
    first->AddObserver(&watcher);
    second->AddObserver(&watcher);
    Tree::Instance()->DeleteValue("/N");
    QCOMPARE(seen, (QVector<int>{1, 2, 1, 2}));
}

void tst_deletion::deletingANodeInsideTheAnnouncementOfAValueBelowIt()
{
    OwnTree tree;
    Watcher other;
    Watcher watcher([](Observable*, TChangeCode) { Tree::Instance()->DeleteValue("/N"); });
    MakeInt("/N/a")->AddObserver(&watcher);
    MakeInt("/N/b")->AddObserver(&other);
    Tree::Instance()->DeleteValue("/N/a");
    QCOMPARE(watcher.codes.size(), 1);
    QCOMPARE(other.codes.size(), 1);
    QVERIFY(!Tree::Instance()->FindNode("/N"));
}

void tst_deletion::deletingAPathThatIsNotThereIsIgnored()
{
    OwnTree tree;
    MakeInt("/A/B");
    for (const char* path : {"/A/C", "/A/B/C", "A/B", "/", "/A/"}) {
        Tree::Instance()->DeleteValue(path);
    }
    QCOMPARE(ValueHost::CountValues(), 1);
}

void tst_deletion::deletingTheRootEmptiesTheTree()
{
    OwnTree tree;
    MakeInt("/A/B");
    MakeInt("/C");
    Tree::Instance()->DeleteValue("");
    QCOMPARE(ValueHost::CountValues(), 0);
    QVERIFY(ChildNames("").isEmpty());
    QVERIFY(MakeInt("/A/B"));
}

void tst_deletion::aValueDestroyedByItsHolderLeavesTheTree()
{
    OwnTree tree;
    auto* value = new TextValue;
    value->SetName("Own", nullptr);
    Tree::Instance()->AddValue("/", value);
    Watcher watcher;
    value->AddObserver(&watcher);
    delete value;
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_STATE});
    QVERIFY(!Tree::Instance()->FindValue("/Own"));
    QVERIFY(ChildNames("").isEmpty());
}

void tst_deletion::aValueDestroyedWhileItsNodeIsDeletedIsNotDestroyedTwice()
{
    OwnTree tree;
    IntValue* first = MakeInt("/N/first");
    IntValue* second = MakeInt("/N/second");
    Watcher last;
    Watcher destroyer([&](Observable*, TChangeCode) { delete second; });
    first->AddObserver(&destroyer);
    second->AddObserver(&last);
    Tree::Instance()->DeleteValue("/N");
    QCOMPARE(last.codes, QVector<TChangeCode>{CC_STATE});
}

void tst_deletion::whatIsMadeInsideAnAnnouncementStays()
{
    OwnTree tree;
    Watcher watcher([](Observable*, TChangeCode) { MakeText("/N/a", "new"); });
    MakeInt("/N/a")->AddObserver(&watcher);
    Tree::Instance()->DeleteValue("/N");
    auto* made = dynamic_cast<TextValue*>(Tree::Instance()->FindValue("/N/a"));
    QVERIFY(made);
    QCOMPARE(made->GetValue(), QString("new"));
    QCOMPARE(ChildNames("/N"), QStringList{"a"});
}

void tst_deletion::theTreeMayBeDestroyedInsideUpdate()
{
    ValueHost::CreateTree();
    IntValue* value = MakeInt("/A/B");
    Watcher last;
    Watcher destroyer([](Observable*, TChangeCode code) {
        if (code == CC_VALUE) {
            ValueHost::DestroyTree();
        }
    });
    value->AddObserver(&destroyer);
    value->AddObserver(&last);
    value->SetValue(1, nullptr);
    QVERIFY(!Tree::Instance());
    QCOMPARE(last.codes, QVector<TChangeCode>{CC_STATE});
}

void tst_deletion::theTreeMayBeDestroyedInsideAnAnnouncement()
{
    ValueHost::CreateTree();
    Watcher last;
    Watcher destroyer([](Observable*, TChangeCode) { ValueHost::DestroyTree(); });
    MakeInt("/N/a")->AddObserver(&destroyer);
    MakeInt("/N/b")->AddObserver(&last);
    Watcher elsewhere;
    MakeInt("/Other/c")->AddObserver(&elsewhere);
    Tree::Instance()->DeleteValue("/N");
    QVERIFY(!Tree::Instance());
    QCOMPARE(last.codes, QVector<TChangeCode>{CC_STATE});
    QCOMPARE(elsewhere.codes, QVector<TChangeCode>{CC_STATE});
}

void tst_deletion::nothingIsMadeWhileTheTreeCloses()
{
    ValueHost::CreateTree();
    bool there = false, refused = false;
    Watcher watcher([&](Observable*, TChangeCode) {
        there = Tree::Instance() != nullptr;
        ValueHost::DestroyTree();
        refused = !ValueHost::Create("/A/C", Described(ValueType::Bool), true) &&
                  !ValueDescriptor::CreateNodeAbsolute("/B", nullptr);
        TextValue value;
        value.SetName("D", nullptr);
        QVERIFY_EXCEPTION_THROWN(Tree::Instance()->AddValue("/", &value), ARException);
    });
    MakeInt("/A/B")->AddObserver(&watcher);
    QTest::ignoreMessage(QtWarningMsg, "No value can be made at \"/A/C\": the tree is being closed");
    ValueHost::DestroyTree();
    QVERIFY(there);
    QVERIFY(refused);
    QVERIFY(!Tree::Instance());
}

void tst_deletion::aHundredThousandValuesComeAndGo()
{
    constexpr int count = 100000;
    OwnTree tree;
    Watcher watcher;
    for (int i = 0; i < count; ++i) {
        MakeFloat(QString("/RX1/Flat/Value%1").arg(i), i)->AddObserver(&watcher);
    }
    QCOMPARE(ValueHost::CountValues(), count);
    for (int i = 0; i < count; ++i) {
        auto* value =
            dynamic_cast<FloatValue*>(Tree::Instance()->FindValue(QString("/RX1/Flat/Value%1").arg(i)));
        QVERIFY(value);
        QCOMPARE(value->GetValue(), double(i));
    }
    // One after the other, from the front: each would move all behind it in a plain list.
    for (int i = 0; i < count / 2; ++i) {
        Tree::Instance()->DeleteValue(QString("/RX1/Flat/Value%1").arg(i));
    }
    QCOMPARE(ValueHost::CountValues(), count / 2);
    QCOMPARE(ChildNames("/RX1/Flat").value(0), QString("Value%1").arg(count / 2));
    for (int i = 0; i < count; ++i) {
        QCOMPARE(Tree::Instance()->FindValue(QString("/RX1/Flat/Value%1").arg(i)) != nullptr, i >= count / 2);
    }
    Tree::Instance()->DeleteValue("/RX1");
    QCOMPARE(ValueHost::CountValues(), 0);
    QCOMPARE(watcher.Count(CC_STATE), count);
}

QTEST_GUILESS_MAIN(tst_deletion)
#include "tst_deletion.moc"
