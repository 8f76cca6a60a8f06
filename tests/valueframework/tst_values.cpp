#include <QTest>
#include <cmath>
#include <limits>

#include "tests/valueframework/watcher.h"
#include "valueframework/valueapply.h"

namespace {

const double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

}  // namespace

// What a value holds, what it takes and refuses, and what is known of it.
class tst_values : public QObject
{
    Q_OBJECT
private slots:
    void freshValuesAreEmpty();
    void valuesAreSeenByTheirTypesAcrossLibraries();
    void contentOfTheKindIsTaken_data();
    void contentOfTheKindIsTaken();
    void contentOfAnotherKindIsRefused_data();
    void contentOfAnotherKindIsRefused();
    void numbersThatAreNotFiniteAreRefusedEverywhere();
    void aLocalNumberIsClampedAndTheStatusSaysWhy();
    void aLocalIntegerIsClampedToIntegersWithinItsLimits();
    void aWriteWithinTheLimitsEndsTheClampedStatus();
    void aClampedWriterIsToldToReadAgainEachTime();
    void theValueMayBeDeletedByAnObserverOfAClampedWrite();
    void aMirroredNumberIsNotClamped();
    void limitsThatMakeNoSenseAreNoLimits();
    void newLimitsHoldForWhatStands();
    void aValueThatIsNotWritableTakesWhatItsAuthorityTells();
    void anEventValueNotifiesForEqualWritesToo();
    void statesAreAnnouncedWhereTheyDiffer();
    void losingAndRegainingTheDriverKeepsTheContent();
    void pendingIsAFlagAndNotAState();
    void descriptionsAreAnnouncedWhereTheyDiffer();
    void aDescriptionKeepsTheTypeOfItsValue();
    void timeStampsTellNobody();
    void translationContextsAreKeptAndAnnounced();
    void appliedContentCarriesItsTimeStamp();
    void appliedContentOfAnotherTypeIsRefused();
    void textIsTakenInTheUnitOfTheValue_data();
    void textIsTakenInTheUnitOfTheValue();
    void textThatDoesNotFitChangesNothing_data();
    void textThatDoesNotFitChangesNothing();
    void reannouncingCallsEverybody();
};

void tst_values::freshValuesAreEmpty()
{
    QCOMPARE(BoolValue().GetValue(), false);
    QCOMPARE(FloatValue().GetValue(), 0.0);
    QCOMPARE(IntValue().GetValue(), 0);
    QCOMPARE(TextValue().GetValue(), QString());
    TextValue value;
    QCOMPARE(value.GetName(), QString());
    QCOMPARE(value.GetPathName(), QString());
    QCOMPARE(value.GetState(), VS_USABLE);
    QCOMPARE(ValueHost::TypeOf(value), ValueType::Text);
    QCOMPARE(ValueHost::TimeStamp(value), qint64(0));
    QCOMPARE(ValueHost::Status(value).answer, WriteStatus::None);
    QVERIFY(!ValueHost::Status(value).pending);
    QVERIFY(!ValueHost::IsMirrored(value));
}

void tst_values::valuesAreSeenByTheirTypesAcrossLibraries()
{
    OwnTree tree;
    ValueBase* value = MakeFloat("/A/F");
    QVERIFY(dynamic_cast<FloatValue*>(value));
    QVERIFY(dynamic_cast<FloatValueBase*>(value));
    QVERIFY(!dynamic_cast<IntValue*>(value));
    QVERIFY(!dynamic_cast<BoolValue*>(value));
    QVERIFY(!dynamic_cast<TextValue*>(value));
    QVERIFY(!dynamic_cast<ValueSelection*>(value));
    Observable* subject = value;
    QCOMPARE(dynamic_cast<ValueBase*>(subject), value);
    QVERIFY(dynamic_cast<ISupportTransaction*>(subject));
    QVERIFY(dynamic_cast<IValue*>(subject));
}

void tst_values::contentOfTheKindIsTaken_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("content");
    QTest::addColumn<QVariant>("stands");
    QTest::addColumn<QString>("text");
    QTest::newRow("true") << int(ValueType::Bool) << QVariant(true) << QVariant(true) << "On";
    QTest::newRow("float") << int(ValueType::Float) << QVariant(98.5e6) << QVariant(98.5e6) << "98500000";
    QTest::newRow("float from an integer") << int(ValueType::Float) << QVariant(12) << QVariant(12.0) << "12";
    QTest::newRow("float from a wide integer")
        << int(ValueType::Float) << QVariant(qlonglong(6000000000)) << QVariant(6e9) << "6000000000";
    QTest::newRow("integer") << int(ValueType::Integer) << QVariant(-7) << QVariant(-7) << "-7";
    QTest::newRow("integer from a wide integer")
        << int(ValueType::Integer) << QVariant(qlonglong(2147483647)) << QVariant(2147483647) << "2147483647";
    QTest::newRow("text") << int(ValueType::Text) << QVariant(QString("RxDDC1"))
                          << QVariant(QString("RxDDC1")) << "RxDDC1";
}

void tst_values::contentOfTheKindIsTaken()
{
    QFETCH(int, type);
    QFETCH(QVariant, content);
    QFETCH(QVariant, stands);
    QFETCH(QString, text);
    OwnTree tree;
    ValueBase* value = ValueHost::Create("/A/B", Described(ValueType(type)), QVariant());
    QVERIFY(value);
    Watcher watcher;
    value->AddObserver(&watcher);
    QVERIFY(ValueHost::SetContent(*value, content, nullptr));
    QCOMPARE(ValueHost::Content(*value), stands);
    QCOMPARE(value->GetText(), text);
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_VALUE});
    QVERIFY(ValueHost::SetContent(*value, content, nullptr));
    QCOMPARE(watcher.codes.size(), 1);
}

void tst_values::contentOfAnotherKindIsRefused_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("content");
    QTest::newRow("bool from a number") << int(ValueType::Bool) << QVariant(1);
    QTest::newRow("bool from text") << int(ValueType::Bool) << QVariant(QString("true"));
    QTest::newRow("float from text") << int(ValueType::Float) << QVariant(QString("1"));
    QTest::newRow("float from bool") << int(ValueType::Float) << QVariant(true);
    QTest::newRow("float from infinity") << int(ValueType::Float) << QVariant(infinity);
    QTest::newRow("float from no number") << int(ValueType::Float) << QVariant(notANumber);
    QTest::newRow("integer from a fraction") << int(ValueType::Integer) << QVariant(1.5);
    QTest::newRow("integer too large") << int(ValueType::Integer) << QVariant(qlonglong(2147483648));
    QTest::newRow("integer too small") << int(ValueType::Integer) << QVariant(qlonglong(-2147483649));
    QTest::newRow("integer huge unsigned") << int(ValueType::Integer) << QVariant(qulonglong(-1));
    QTest::newRow("text from a number") << int(ValueType::Text) << QVariant(1);
    QTest::newRow("selection from text") << int(ValueType::Selection) << QVariant(QString("On"));
    QTest::newRow("selection without that key") << int(ValueType::Selection) << QVariant(3);
    QTest::newRow("nothing") << int(ValueType::Text) << QVariant();
}

void tst_values::contentOfAnotherKindIsRefused()
{
    QFETCH(int, type);
    QFETCH(QVariant, content);
    OwnTree tree;
    ValueBase* value = ValueHost::Create("/A/B", Described(ValueType(type)), QVariant());
    const QVariant before = ValueHost::Content(*value);
    Watcher watcher;
    value->AddObserver(&watcher);
    QVERIFY(!ValueHost::SetContent(*value, content, nullptr));
    QCOMPARE(ValueHost::Content(*value), before);
    QVERIFY(watcher.codes.isEmpty());
}

void tst_values::numbersThatAreNotFiniteAreRefusedEverywhere()
{
    FloatValue plain, limited, mirrored;
    ValueHost::SetDescription(limited, Limited(ValueType::Float, 0, 10));
    ValueHost::SetDescription(mirrored, Limited(ValueType::Float, 0, 10));
    ValueHost::SetMirrored(mirrored, true);
    for (FloatValue* value : {&plain, &limited, &mirrored}) {
        QVERIFY(value->SetValue(5, nullptr));
        Watcher watcher;
        value->AddObserver(&watcher);
        for (double bad : {infinity, -infinity, notANumber}) {
            QVERIFY(!value->SetValue(bad, nullptr));
            QVERIFY(!ValueHost::SetContent(*value, bad, nullptr));
            QVERIFY(!ValueHost::ApplyFloat(*value, bad, 1, nullptr));
        }
        for (const char* text : {"inf", "nan", "-inf", "1e999", "infinity"}) {
            QVERIFY(!value->SetText(text, nullptr));
        }
        QCOMPARE(value->GetValue(), 5.0);
        QVERIFY(watcher.codes.isEmpty());
        QCOMPARE(ValueHost::TimeStamp(*value), qint64(0));
    }
}

void tst_values::aLocalNumberIsClampedAndTheStatusSaysWhy()
{
    FloatValue value;
    ValueHost::SetDescription(value, Limited(ValueType::Float, -20, 80, QString::fromUtf8("dBµV")));
    Watcher watcher([&](Observable*, TChangeCode code) {
        if (code == CC_VALUE) {
            QCOMPARE(ValueHost::Status(value).answer, WriteStatus::Clamped);
        }
    });
    value.AddObserver(&watcher);
    QVERIFY(value.SetValue(100, nullptr));
    QCOMPARE(value.GetValue(), 80.0);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_VALUE, CC_DESCRIPTION}));
    QCOMPARE(ValueHost::Status(value).reason, QString::fromUtf8("Limited to the maximum of 80 dBµV"));
    QVERIFY(ValueHost::SetContent(value, -1e9, nullptr));
    QCOMPARE(value.GetValue(), -20.0);
    QCOMPARE(ValueHost::Status(value).reason, QString::fromUtf8("Limited to the minimum of -20 dBµV"));
    QVERIFY(value.SetText("1 k", nullptr));
    QCOMPARE(value.GetValue(), 80.0);
}

void tst_values::aLocalIntegerIsClampedToIntegersWithinItsLimits()
{
    IntValue value;
    ValueHost::SetDescription(value, Limited(ValueType::Integer, -2.5, 8.5));
    QVERIFY(value.SetValue(9, nullptr));
    QCOMPARE(value.GetValue(), 8);
    QCOMPARE(ValueHost::Status(value).reason, QString("Limited to the maximum of 8.5"));
    QVERIFY(value.SetValue(-3, nullptr));
    QCOMPARE(value.GetValue(), -2);
    ValueHost::SetDescription(value, Limited(ValueType::Integer, -1e300, 1e300));
    QVERIFY(value.SetValue(std::numeric_limits<int>::max(), nullptr));
    QCOMPARE(value.GetValue(), std::numeric_limits<int>::max());
}

void tst_values::aWriteWithinTheLimitsEndsTheClampedStatus()
{
    FloatValue value;
    ValueHost::SetDescription(value, Limited(ValueType::Float, 0, 10));
    value.SetValue(11, nullptr);
    value.SetValue(7, nullptr);
    QCOMPARE(ValueHost::Status(value).answer, WriteStatus::Accepted);
    QCOMPARE(ValueHost::Status(value).reason, QString());
}

void tst_values::aClampedWriterIsToldToReadAgainEachTime()
{
    FloatValue value;
    ValueHost::SetDescription(value, Limited(ValueType::Float, 0, 10, "Hz"));
    Watcher writer;
    value.AddObserver(&writer);
    QVERIFY(value.SetValue(11, &writer));
    QCOMPARE(writer.codes, QVector<TChangeCode>{CC_DESCRIPTION});
    QVERIFY(value.SetValue(11, &writer));
    QCOMPARE(writer.codes, (QVector<TChangeCode>{CC_DESCRIPTION, CC_DESCRIPTION}));
}

void tst_values::theValueMayBeDeletedByAnObserverOfAClampedWrite()
{
    OwnTree tree;
    ValueBase* value = ValueHost::Create("/A/B", Limited(ValueType::Float, 0, 10), 5.0);
    Watcher watcher([](Observable*, TChangeCode code) {
        if (code == CC_VALUE) {
            Tree::Instance()->DeleteValue("/A/B");
        }
    });
    value->AddObserver(&watcher);
    QVERIFY(ValueHost::SetContent(*value, 11, nullptr));
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_VALUE, CC_STATE}));
}

void tst_values::aMirroredNumberIsNotClamped()
{
    FloatValue value;
    ValueHost::SetMirrored(value, true);
    ValueHost::SetDescription(value, Limited(ValueType::Float, 0, 10));
    QVERIFY(ValueHost::IsMirrored(value));
    QVERIFY(value.SetValue(1000, nullptr));
    QCOMPARE(value.GetValue(), 1000.0);
    QCOMPARE(ValueHost::Status(value).answer, WriteStatus::None);
}

void tst_values::limitsThatMakeNoSenseAreNoLimits()
{
    for (const auto& limits : {std::pair(10.0, 0.0), std::pair(notANumber, 5.0), std::pair(0.0, infinity)}) {
        FloatValue value;
        ValueHost::SetDescription(value, Limited(ValueType::Float, limits.first, limits.second));
        QVERIFY(!ValueHost::Description(value).hasLimits);
        QVERIFY(value.SetValue(1e9, nullptr));
        QCOMPARE(value.GetValue(), 1e9);
    }
    FloatValue zero;
    ValueDescription description = Described(ValueType::Float);  // limits of 0 and 0, which do not hold
    ValueHost::SetDescription(zero, description);
    QVERIFY(zero.SetValue(3, nullptr));
    QCOMPARE(zero.GetValue(), 3.0);
}

void tst_values::newLimitsHoldForWhatStands()
{
    FloatValue value;
    value.SetValue(50, nullptr);
    Watcher watcher;
    value.AddObserver(&watcher);
    ValueHost::SetDescription(value, Limited(ValueType::Float, 0, 10));
    QCOMPARE(value.GetValue(), 10.0);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_DESCRIPTION, CC_VALUE}));
    QCOMPARE(ValueHost::Status(value).answer, WriteStatus::None);
}

void tst_values::aValueThatIsNotWritableTakesWhatItsAuthorityTells()
{
    FloatValue value;
    ValueDescription description = Described(ValueType::Float);
    description.writable = false;
    ValueHost::SetDescription(value, description);
    Watcher authority, other;
    value.AddObserver(&authority);
    value.AddObserver(&other);
    QVERIFY(ValueHost::SetContent(value, 42.0, &authority));
    QCOMPARE(value.GetValue(), 42.0);
    QVERIFY(authority.codes.isEmpty());
    QCOMPARE(other.codes, QVector<TChangeCode>{CC_VALUE});
}

void tst_values::anEventValueNotifiesForEqualWritesToo()
{
    BoolValue open;
    ValueSelection mode;
    ValueDescription description = Described(ValueType::Bool);
    description.event = true;
    ValueHost::SetDescription(open, description);
    description.items = {SelectionItem(0, "Stop", 0)};
    ValueHost::SetDescription(mode, description);
    Watcher watcher;
    open.AddObserver(&watcher);
    mode.AddObserver(&watcher);
    open.SetValue(true, nullptr);
    open.SetValue(true, nullptr);
    mode.SelectKey(0, nullptr);
    mode.SelectKey(0, nullptr);
    QCOMPARE(watcher.Count(CC_VALUE), 4);
}

void tst_values::statesAreAnnouncedWhereTheyDiffer()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    ValueHost::SetState(value, VS_USABLE);
    QVERIFY(watcher.codes.isEmpty());
    ValueHost::SetState(value, VS_NOT_AVAILABLE);
    ValueHost::SetState(value, VS_NOT_AVAILABLE);
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_STATE});
    QCOMPARE(value.GetState(), VS_NOT_AVAILABLE);
}

void tst_values::losingAndRegainingTheDriverKeepsTheContent()
{
    IntValue value;
    value.SetValue(5, nullptr);
    Watcher watcher;
    value.AddObserver(&watcher);
    ValueHost::SetState(value, VS_STALE);
    QCOMPARE(value.GetValue(), 5);
    ValueHost::SetState(value, VS_USABLE);
    QCOMPARE(value.GetValue(), 5);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_STATE, CC_STATE}));
}

void tst_values::pendingIsAFlagAndNotAState()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    WriteStatus status;
    status.pending = true;
    ValueHost::SetStatus(value, status);
    ValueHost::SetStatus(value, status);
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_DESCRIPTION});
    QCOMPARE(value.GetState(), VS_USABLE);
    QVERIFY(ValueHost::Status(value).pending);
    status.pending = false;
    status.answer = WriteStatus::Refused;
    status.reason = "coupled to the main receiver";
    ValueHost::SetStatus(value, status);
    QCOMPARE(watcher.codes.size(), 2);
    QCOMPARE(ValueHost::Status(value).reason, QString("coupled to the main receiver"));
}

void tst_values::descriptionsAreAnnouncedWhereTheyDiffer()
{
    FloatValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    ValueDescription description = Limited(ValueType::Float, 0, 100, "%");
    description.precision = 1;
    description.step = 5;
    ValueHost::SetDescription(value, description);
    ValueHost::SetDescription(value, description);
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_DESCRIPTION});
    QCOMPARE(ValueHost::Description(value).precision, 1);
    QCOMPARE(ValueHost::Description(value).step, 5.0);
    QCOMPARE(ValueHost::Description(value).unit, QString("%"));
    description.writable = false;
    ValueHost::SetDescription(value, description);
    QCOMPARE(watcher.codes.size(), 2);
}

void tst_values::aDescriptionKeepsTheTypeOfItsValue()
{
    FloatValue value;
    ValueHost::SetDescription(value, Described(ValueType::Text));
    QCOMPARE(ValueHost::Description(value).type, ValueType::Float);
    QCOMPARE(ValueHost::TypeOf(value), ValueType::Float);
}

void tst_values::timeStampsTellNobody()
{
    IntValue value;
    Watcher watcher;
    value.AddObserver(&watcher);
    ValueHost::SetTimeStamp(value, 1700000000000000);
    QCOMPARE(ValueHost::TimeStamp(value), qint64(1700000000000000));
    QVERIFY(watcher.codes.isEmpty());
}

void tst_values::translationContextsAreKeptAndAnnounced()
{
    ValueSelection value;
    Watcher watcher, originator;
    value.AddObserver(&watcher);
    value.AddObserver(&originator);
    QCOMPARE(ValueHost::TranslationContext(value), QByteArray());
    value.SetTranslationNamespace("DemodBandwidth", &originator);
    value.SetTranslationNamespace("DemodBandwidth", &originator);
    QCOMPARE(ValueHost::TranslationContext(value), QByteArray("DemodBandwidth"));
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_DESCRIPTION});
    QVERIFY(originator.codes.isEmpty());
    value.SetTranslationNamespace(nullptr, nullptr);
    QVERIFY(ValueHost::TranslationContext(value).isEmpty());
}

void tst_values::appliedContentCarriesItsTimeStamp()
{
    BoolValue open;
    FloatValue level;
    IntValue count;
    TextValue client;
    ValueSelection mode;
    ValueDescription description = Described(ValueType::Selection);
    description.items = {SelectionItem(0, "AM", 0), SelectionItem(4, "FM", 0)};
    ValueHost::SetDescription(mode, description);
    Watcher watcher([](Observable* subject, TChangeCode) {
        QCOMPARE(ValueHost::TimeStamp(*dynamic_cast<ValueBase*>(subject)), qint64(99));
    });
    for (ValueBase* value : std::initializer_list<ValueBase*>{&open, &level, &count, &client, &mode}) {
        value->AddObserver(&watcher);
    }
    QVERIFY(ValueHost::ApplyBool(open, true, 99, nullptr));
    QVERIFY(ValueHost::ApplyFloat(level, 17.5, 99, nullptr));
    QVERIFY(ValueHost::ApplyInteger(count, 3, 99, nullptr));
    QVERIFY(ValueHost::ApplyText(client, "host", 99, nullptr));
    QVERIFY(ValueHost::ApplyKey(mode, 4, 99, nullptr));
    QCOMPARE(watcher.Count(CC_VALUE), 5);
    QCOMPARE(level.GetValue(), 17.5);
    QCOMPARE(mode.GetCurrentText(), QString("FM"));
    QVERIFY(ValueHost::ApplyFloat(level, 17.5, 100, nullptr));
    QCOMPARE(watcher.codes.size(), 5);
    QCOMPARE(ValueHost::TimeStamp(level), qint64(100));
}

void tst_values::appliedContentOfAnotherTypeIsRefused()
{
    FloatValue level;
    ValueSelection mode;
    QVERIFY(!ValueHost::ApplyBool(level, true, 5, nullptr));
    QVERIFY(!ValueHost::ApplyInteger(level, 1, 5, nullptr));
    QVERIFY(!ValueHost::ApplyText(level, "1", 5, nullptr));
    QVERIFY(!ValueHost::ApplyKey(level, 1, 5, nullptr));
    QVERIFY(!ValueHost::ApplyKey(mode, 1, 5, nullptr));
    QVERIFY(!ValueHost::ApplyFloat(mode, 1, 5, nullptr));
    QCOMPARE(ValueHost::TimeStamp(level), qint64(0));
    QCOMPARE(ValueHost::TimeStamp(mode), qint64(0));
}

void tst_values::textIsTakenInTheUnitOfTheValue_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("number");
    QTest::newRow("no unit at all") << "Hz"
                                    << "98.5" << 98.5;
    QTest::newRow("prefix") << "Hz"
                            << "98.5M" << 98.5e6;
    QTest::newRow("prefix and unit") << "Hz"
                                     << "98.5 MHz" << 98.5e6;
    QTest::newRow("level") << QString::fromUtf8("dBµV") << QString::fromUtf8("-12.5 dBµV") << -12.5;
    QTest::newRow("level with u") << QString::fromUtf8("dBµV") << "-12.5 dBuV" << -12.5;
    QTest::newRow("unit of its own") << "apples"
                                     << "3 apples" << 3.0;
    QTest::newRow("value without a unit") << ""
                                          << "12 kHz" << 12e3;
}

void tst_values::textIsTakenInTheUnitOfTheValue()
{
    QFETCH(QString, unit);
    QFETCH(QString, text);
    QFETCH(double, number);
    FloatValue value;
    ValueDescription description = Described(ValueType::Float);
    description.unit = unit;
    ValueHost::SetDescription(value, description);
    QVERIFY(value.SetText(text, nullptr));
    QCOMPARE(value.GetValue(), number);
}

void tst_values::textThatDoesNotFitChangesNothing_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("text");
    QTest::newRow("another unit") << QString::fromUtf8("dBµV") << "12 kHz";
    QTest::newRow("unknown unit") << "Hz"
                                  << "12 bananas";
    QTest::newRow("unknown unit without one") << ""
                                              << "12 bananas";
    QTest::newRow("empty") << "Hz"
                           << "";
    QTest::newRow("unit alone") << "Hz"
                                << "Hz";
}

void tst_values::textThatDoesNotFitChangesNothing()
{
    QFETCH(QString, unit);
    QFETCH(QString, text);
    FloatValue number;
    IntValue whole;
    ValueDescription description = Described(ValueType::Float);
    description.unit = unit;
    ValueHost::SetDescription(number, description);
    ValueHost::SetDescription(whole, description);
    number.SetValue(5, nullptr);
    whole.SetValue(5, nullptr);
    QVERIFY(!number.SetText(text, nullptr));
    QVERIFY(!whole.SetText(text, nullptr));
    QCOMPARE(number.GetValue(), 5.0);
    QCOMPARE(whole.GetValue(), 5);
}

void tst_values::reannouncingCallsEverybody()
{
    BoolValue value;
    Watcher a, b;
    value.AddObserver(&a);
    value.AddObserver(&b);
    value.NotifyObservers(CC_VALUE, nullptr);
    value.NotifyObservers(CC_VALUE, &b);
    QCOMPARE(a.codes.size(), 2);
    QCOMPARE(b.codes.size(), 1);
}

QTEST_GUILESS_MAIN(tst_values)
#include "tst_values.moc"
