#include <QTest>

#include "tests/valueframework/watcher.h"

namespace {

ValueDescription Bandwidths()
{
    ValueDescription description = Described(ValueType::Selection);
    description.unit = "Hz";
    description.items = {SelectionItem(0, "500 Hz", 500), SelectionItem(1, "1.5 kHz", 1500),
                         SelectionItem(2, "12 kHz", 12000), SelectionItem(3, "Wide", 250000)};
    return description;
}

ValueDescription Switch()
{
    ValueDescription description = Described(ValueType::Selection);
    description.items = {SelectionItem(0, "OFF", 0), SelectionItem(1, "ON", 0)};
    return description;
}

}  // namespace

// A list of items, one of them current.
class tst_selection : public QObject
{
    Q_OBJECT
private slots:
    void withoutItemsThereIsNoCurrentOne();
    void theFirstItemBecomesCurrent();
    void itemsTellTheirKeyTextAndNumber();
    void itemsAreCopiedByValue();
    void eachWayOfSelectingNotifiesAllButTheWriter();
    void selectingWhatIsNotThereIsRefused();
    void selectTextTakesTheExactTextOnly();
    void textSelectsAnItem_data();
    void textSelectsAnItem();
    void textThatSelectsNothingIsRefused_data();
    void textThatSelectsNothingIsRefused();
    void textThatFitsSeveralItemsIsRefused();
    void contentIsTheKeyOfTheCurrentItem();
    void theCurrentKeyStaysWhenItemsChange();
    void theFirstItemBecomesCurrentWhenTheCurrentOneIsGone();
    void losingAllItemsLeavesNoCurrentOne();
    void aKeyIsKeptOnce();
    void equalItemsTellNobody();
    void aSelectionOfTheTreeStartsWithItsContent();
    void theValueMayBeDeletedWhileItsItemsChange();
    void observersSeeTheContentWhileItGoesAway();
};

void tst_selection::withoutItemsThereIsNoCurrentOne()
{
    ValueSelection selection;
    QCOMPARE(selection.GetCurrentIndex(), -1);
    QCOMPARE(selection.GetCurrentKey(), -1);
    QCOMPARE(selection.GetCurrentNumber(), 0.0);
    QCOMPARE(selection.GetCurrentText(), QString());
    QCOMPARE(selection.GetText(), QString());
    QCOMPARE(selection.GetCount(), 0);
    QVERIFY(!selection.SelectIndex(0, nullptr));
    QVERIFY(!selection.SelectKey(-1, nullptr));
    QVERIFY(!selection.SelectText("", nullptr));
    QVERIFY(!selection.SetText("", nullptr));
}

void tst_selection::theFirstItemBecomesCurrent()
{
    ValueSelection selection;
    Watcher watcher;
    selection.AddObserver(&watcher);
    ValueHost::SetDescription(selection, Bandwidths());
    QCOMPARE(selection.GetCurrentIndex(), 0);
    QCOMPARE(selection.GetCurrentNumber(), 500.0);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_DESCRIPTION, CC_VALUE}));
}

void tst_selection::itemsTellTheirKeyTextAndNumber()
{
    ValueSelection selection;
    ValueHost::SetDescription(selection, Bandwidths());
    QCOMPARE(selection.GetCount(), 4);
    QCOMPARE(selection.GetItem(2).GetKey(), 2);
    QCOMPARE(selection.GetItem(2).GetText(), QString("12 kHz"));
    QCOMPARE(selection.GetItem(2).GetNumber(), 12000.0);
    for (int index : {-1, 4, 1000000}) {
        QCOMPARE(selection.GetItem(index).GetKey(), SelectionItem().GetKey());
        QCOMPARE(selection.GetItem(index).GetText(), QString());
        QCOMPARE(selection.GetItem(index).GetNumber(), 0.0);
    }
}

void tst_selection::itemsAreCopiedByValue()
{
    SelectionItem kept;
    {
        SelectionItem item(7, "seven", 7.5);
        kept = item;
        SelectionItem& same = kept;
        kept = same;
        item = SelectionItem(8, "eight", 8);
    }
    QCOMPARE(kept.GetKey(), 7);
    QCOMPARE(kept.GetText(), QString("seven"));
    QCOMPARE(kept.GetNumber(), 7.5);
}

void tst_selection::eachWayOfSelectingNotifiesAllButTheWriter()
{
    ValueSelection selection;
    ValueHost::SetDescription(selection, Bandwidths());
    Watcher writer, other;
    selection.AddObserver(&writer);
    selection.AddObserver(&other);
    QVERIFY(selection.SelectIndex(1, &writer));
    QCOMPARE(selection.GetCurrentKey(), 1);
    QVERIFY(selection.SelectKey(2, &writer));
    QCOMPARE(selection.GetCurrentIndex(), 2);
    QVERIFY(selection.SelectText("Wide", &writer));
    QCOMPARE(selection.GetCurrentText(), QString("Wide"));
    QVERIFY(selection.SetText("500 Hz", &writer));
    QCOMPARE(other.Count(CC_VALUE), 4);
    QVERIFY(selection.SelectKey(0, &writer));
    QCOMPARE(other.Count(CC_VALUE), 4);
    QVERIFY(writer.codes.isEmpty());
}

void tst_selection::selectingWhatIsNotThereIsRefused()
{
    ValueSelection selection;
    ValueHost::SetDescription(selection, Bandwidths());
    selection.SelectIndex(1, nullptr);
    Watcher watcher;
    selection.AddObserver(&watcher);
    for (long index : {-1L, 4L, 4294967296L, 4294967297L, -4294967295L}) {
        QVERIFY(!selection.SelectIndex(index, nullptr));
    }
    QVERIFY(!selection.SelectKey(17, nullptr));
    QVERIFY(!selection.SelectKey(-1, nullptr));
    QCOMPARE(selection.GetCurrentIndex(), 1);
    QVERIFY(watcher.codes.isEmpty());
}

void tst_selection::selectTextTakesTheExactTextOnly()
{
    ValueSelection selection;
    ValueHost::SetDescription(selection, Bandwidths());
    for (const char* text : {"12 khz", "12k", "12 kHz ", "wide", "", "12000"}) {
        QVERIFY2(!selection.SelectText(text, nullptr), text);
    }
    QVERIFY(selection.SelectText("12 kHz", nullptr));
    QCOMPARE(selection.GetCurrentKey(), 2);
}

void tst_selection::textSelectsAnItem_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("key");
    QTest::newRow("exact") << "12 kHz" << 2;
    QTest::newRow("other case") << "12 KHZ" << 2;
    QTest::newRow("spaces around") << " wide " << 3;
    QTest::newRow("prefix without a unit") << "12k" << 2;
    QTest::newRow("no space") << "12kHz" << 2;
    QTest::newRow("plain number") << "12000" << 2;
    QTest::newRow("grouped number") << "12 000" << 2;
    QTest::newRow("number with the unit") << "12000 Hz" << 2;
    QTest::newRow("fraction") << "1.5k" << 1;
    QTest::newRow("exponent") << "1.2e4" << 2;
    QTest::newRow("number of an item named otherwise") << "250 kHz" << 3;
}

void tst_selection::textSelectsAnItem()
{
    QFETCH(QString, text);
    QFETCH(int, key);
    ValueSelection selection;
    ValueHost::SetDescription(selection, Bandwidths());
    QVERIFY(selection.SetText(text, nullptr));
    QCOMPARE(selection.GetCurrentKey(), key);
}

void tst_selection::textThatSelectsNothingIsRefused_data()
{
    QTest::addColumn<QString>("text");
    for (const char* row :
         {"", "Wid", "Widest", "12", "12.0001k", "12 dB", "12,0 kHz", "0", "nan", "13 kHz"}) {
        QTest::newRow(row) << QString(row);
    }
}

void tst_selection::textThatSelectsNothingIsRefused()
{
    QFETCH(QString, text);
    ValueSelection selection;
    ValueHost::SetDescription(selection, Bandwidths());
    selection.SelectIndex(1, nullptr);
    QVERIFY(!selection.SetText(text, nullptr));
    QCOMPARE(selection.GetCurrentIndex(), 1);
}

void tst_selection::textThatFitsSeveralItemsIsRefused()
{
    ValueSelection selection;
    ValueDescription description = Described(ValueType::Selection);
    description.items = {SelectionItem(0, "am", 0), SelectionItem(1, "AM", 0), SelectionItem(2, "slow", 1000),
                         SelectionItem(3, "fast", 1000)};
    ValueHost::SetDescription(selection, description);
    QVERIFY(!selection.SetText("Am", nullptr));
    QVERIFY(!selection.SetText("1k", nullptr));
    QVERIFY(selection.SetText("AM", nullptr));
    QCOMPARE(selection.GetCurrentKey(), 1);
}

void tst_selection::contentIsTheKeyOfTheCurrentItem()
{
    ValueSelection selection;
    QCOMPARE(ValueHost::Content(selection), QVariant(-1));
    ValueDescription description = Described(ValueType::Selection);
    description.items = {SelectionItem(14, "Switching", 0), SelectionItem(-3, "Odd", 0)};
    ValueHost::SetDescription(selection, description);
    QCOMPARE(ValueHost::Content(selection), QVariant(14));
    QVERIFY(ValueHost::SetContent(selection, -3, nullptr));
    QCOMPARE(selection.GetCurrentText(), QString("Odd"));
    QVERIFY(!ValueHost::SetContent(selection, 0, nullptr));
}

void tst_selection::theCurrentKeyStaysWhenItemsChange()
{
    ValueSelection selection;
    ValueHost::SetDescription(selection, Bandwidths());
    selection.SelectKey(2, nullptr);
    Watcher watcher;
    selection.AddObserver(&watcher);
    ValueDescription description = Bandwidths();
    description.items = {SelectionItem(9, "9 kHz", 9000), SelectionItem(3, "Wide", 1),
                         SelectionItem(2, "twelve", 12000)};
    ValueHost::SetDescription(selection, description);
    QCOMPARE(selection.GetCurrentKey(), 2);
    QCOMPARE(selection.GetCurrentIndex(), 2);
    QCOMPARE(selection.GetCurrentText(), QString("twelve"));
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_DESCRIPTION});
}

void tst_selection::theFirstItemBecomesCurrentWhenTheCurrentOneIsGone()
{
    ValueSelection selection;
    ValueHost::SetDescription(selection, Bandwidths());
    selection.SelectKey(3, nullptr);
    Watcher watcher;
    selection.AddObserver(&watcher);
    ValueHost::SetDescription(selection, Switch());
    QCOMPARE(selection.GetCurrentKey(), 0);
    QCOMPARE(selection.GetCurrentText(), QString("OFF"));
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_DESCRIPTION, CC_VALUE}));
}

void tst_selection::losingAllItemsLeavesNoCurrentOne()
{
    ValueSelection selection;
    ValueHost::SetDescription(selection, Switch());
    Watcher watcher;
    selection.AddObserver(&watcher);
    ValueHost::SetDescription(selection, Described(ValueType::Selection));
    QCOMPARE(selection.GetCurrentIndex(), -1);
    QCOMPARE(selection.GetCurrentKey(), -1);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_DESCRIPTION, CC_VALUE}));
}

void tst_selection::aKeyIsKeptOnce()
{
    ValueSelection selection;
    ValueDescription description = Switch();
    description.items.append(SelectionItem(0, "again", 0));
    ValueHost::SetDescription(selection, description);
    QCOMPARE(selection.GetCount(), 2);
    QCOMPARE(selection.GetItem(0).GetText(), QString("OFF"));
}

void tst_selection::equalItemsTellNobody()
{
    ValueSelection selection;
    ValueHost::SetDescription(selection, Switch());
    Watcher watcher;
    selection.AddObserver(&watcher);
    ValueHost::SetDescription(selection, Switch());
    QVERIFY(watcher.codes.isEmpty());
}

void tst_selection::aSelectionOfTheTreeStartsWithItsContent()
{
    OwnTree tree;
    auto* selection = dynamic_cast<ValueSelection*>(ValueHost::Create("/D/DDF/DF_ENABLED", Switch(), 1));
    QVERIFY(selection);
    QCOMPARE(selection->GetCurrentText(), QString("ON"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("does not fit its type"));
    auto* other = dynamic_cast<ValueSelection*>(ValueHost::Create("/D/Other", Switch(), 5));
    QCOMPARE(other->GetCurrentText(), QString("OFF"));
}

void tst_selection::theValueMayBeDeletedWhileItsItemsChange()
{
    OwnTree tree;
    ValueBase* selection = ValueHost::Create("/D/S", Bandwidths(), 3);
    Watcher watcher([](Observable*, TChangeCode code) {
        if (code == CC_DESCRIPTION) {
            Tree::Instance()->DeleteValue("/D/S");
        }
    });
    selection->AddObserver(&watcher);
    ValueHost::SetDescription(*selection, Switch());
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_DESCRIPTION, CC_STATE}));
}

void tst_selection::observersSeeTheContentWhileItGoesAway()
{
    QString seen;
    Watcher watcher([&](Observable* subject, TChangeCode) {
        seen = dynamic_cast<ValueSelection*>(subject)->GetCurrentText();
    });
    {
        ValueSelection selection;
        ValueHost::SetDescription(selection, Switch());
        selection.AddObserver(&watcher);
    }
    QCOMPARE(seen, QString("OFF"));
}

QTEST_GUILESS_MAIN(tst_selection)
#include "tst_selection.moc"
