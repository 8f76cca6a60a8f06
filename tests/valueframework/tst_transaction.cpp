#include <QTest>

#include "tests/valueframework/watcher.h"

// Several changes, one notification.
class tst_transaction : public QObject
{
    Q_OBJECT
private slots:
    void writesAreCollectedAndToldOnceAtTheEnd();
    void theEndTellsWithTheCodeThatItIsGiven();
    void theEndLeavesItsOriginatorOut();
    void aTransactionWithoutAChangeTellsNobody();
    void transactionsNestAndTheOutermostEndTells();
    void anEndWithoutAStartDoesNothing();
    void aReannouncementIsHeldBackToo();
    void aNewStateIsNotLostInATransaction();
    void aNewDescriptionIsNotLostInATransaction();
    void deletingIsAnnouncedAtOnceInATransaction();
    void theValueMayBeDeletedInTheNotificationOfTheEnd();
    void aTransactionOfASelectionTellsOnce();
};

void tst_transaction::writesAreCollectedAndToldOnceAtTheEnd()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.StartTransaction(nullptr);
    QVERIFY(value.IsTransactionActive());
    value.SetValue(1, nullptr);
    value.SetValue(2, nullptr);
    value.SetText("3", nullptr);
    QVERIFY(watcher.codes.isEmpty());
    QCOMPARE(value.GetValue(), 3);
    value.EndTransaction(CC_VALUE, nullptr);
    QVERIFY(!value.IsTransactionActive());
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_VALUE});
}

void tst_transaction::theEndTellsWithTheCodeThatItIsGiven()
{
    TextValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.StartTransaction(nullptr);
    value.SetValue("a", nullptr);
    value.EndTransaction(CC_HOOKS_SERVED, nullptr);
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_HOOKS_SERVED});
}

void tst_transaction::theEndLeavesItsOriginatorOut()
{
    IntValue value;
    Watcher writer, other;
    value.AddObserver(&writer);
    value.AddObserver(&other);
    value.StartTransaction(&writer);
    value.SetValue(1, &writer);
    value.EndTransaction(CC_VALUE, &writer);
    QVERIFY(writer.codes.isEmpty());
    QCOMPARE(other.codes.size(), 1);
}

void tst_transaction::aTransactionWithoutAChangeTellsNobody()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.StartTransaction(nullptr);
    value.SetValue(0, nullptr);
    value.EndTransaction(CC_VALUE, nullptr);
    QVERIFY(watcher.codes.isEmpty());
}

void tst_transaction::transactionsNestAndTheOutermostEndTells()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.StartTransaction(nullptr);
    value.StartTransaction(nullptr);
    value.SetValue(1, nullptr);
    value.EndTransaction(CC_VALUE, nullptr);
    QVERIFY(value.IsTransactionActive());
    QVERIFY(watcher.codes.isEmpty());
    value.EndTransaction(CC_VALUE, nullptr);
    QCOMPARE(watcher.codes.size(), 1);
}

void tst_transaction::anEndWithoutAStartDoesNothing()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.EndTransaction(CC_VALUE, nullptr);
    QVERIFY(!value.IsTransactionActive());
    value.SetValue(1, nullptr);
    QCOMPARE(watcher.codes.size(), 1);
}

void tst_transaction::aReannouncementIsHeldBackToo()
{
    BoolValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.StartTransaction(nullptr);
    value.NotifyObservers(CC_VALUE, nullptr);
    QVERIFY(watcher.codes.isEmpty());
    value.EndTransaction(CC_VALUE, nullptr);
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_VALUE});
}

void tst_transaction::aNewStateIsNotLostInATransaction()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.StartTransaction(nullptr);
    value.SetValue(1, nullptr);
    ValueHost::SetState(value, VS_STALE);
    value.EndTransaction(CC_VALUE, nullptr);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_VALUE, CC_STATE}));
}

void tst_transaction::aNewDescriptionIsNotLostInATransaction()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    value.StartTransaction(nullptr);
    ValueHost::SetDescription(value, Limited(ValueType::Integer, 0, 5));
    value.SetValue(1, nullptr);
    value.EndTransaction(CC_VALUE, nullptr);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_VALUE, CC_DESCRIPTION}));
}

void tst_transaction::deletingIsAnnouncedAtOnceInATransaction()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    Watcher watcher;
    value->AddObserver(&watcher);
    value->StartTransaction(nullptr);
    value->SetValue(1, nullptr);
    Tree::Instance()->DeleteValue("/A/B");
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_STATE});
}

void tst_transaction::theValueMayBeDeletedInTheNotificationOfTheEnd()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    Watcher watcher([](Observable*, TChangeCode code) {
        if (code == CC_VALUE) {
            Tree::Instance()->DeleteValue("/A/B");
        }
    });
    value->AddObserver(&watcher);
    value->StartTransaction(nullptr);
    value->SetValue(1, nullptr);
    ValueHost::SetState(*value, VS_STALE);
    value->EndTransaction(CC_VALUE, nullptr);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_VALUE, CC_STATE}));
    QCOMPARE(ValueHost::CountValues(), 0);
}

void tst_transaction::aTransactionOfASelectionTellsOnce()
{
    ValueSelection selection;
    ValueDescription description = Described(ValueType::Selection);
    description.items = {SelectionItem(0, "Off", 0), SelectionItem(1, "On", 0)};
    ValueHost::SetDescription(selection, description);
    Watcher watcher;
    selection.AddObserver(&watcher);
    selection.StartTransaction(nullptr);
    selection.SelectKey(1, nullptr);
    selection.SelectIndex(0, nullptr);
    selection.SelectText("On", nullptr);
    selection.EndTransaction(CC_VALUE, nullptr);
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_VALUE});
}

QTEST_GUILESS_MAIN(tst_transaction)
#include "tst_transaction.moc"
