#include <QTest>
#include <limits>
#include <memory>

#include "receivercommon/ifmappinghelper.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"
#include "valueframework/valueselection.h"

namespace {

const int patienceMs = 60000;
const QString frequencyPath = QStringLiteral("/RX1/FREQUENCY");
const QString spanPath = QStringLiteral("/RX1/IFPANSPAN");

ValueBase* MakeFrequency(double frequency)
{
    ValueDescription description;
    description.type = ValueType::Float;
    description.unit = QStringLiteral("Hz");
    return ValueHost::Create(frequencyPath, description, frequency);
}

ValueBase* MakeSpan(int key)
{
    ValueDescription description;
    description.type = ValueType::Selection;
    description.items = {SelectionItem(0, "1 MHz", 1e6), SelectionItem(1, "2 MHz", 2e6),
                         SelectionItem(2, "none", 0),
                         SelectionItem(3, "nonsense", std::numeric_limits<double>::quiet_NaN())};
    return ValueHost::Create(spanPath, description, key);
}

double Axis(const char* name)
{
    const FloatValue* const value = dynamic_cast<FloatValue*>(
        Tree::Instance()->FindValue(QStringLiteral("/GUICOMMON/") + QLatin1String(name)));
    return value ? value->GetValue() : std::numeric_limits<double>::quiet_NaN();
}

QList<double> Axis()
{
    return {Axis("IFPANHALFWIDTH"), Axis("IFPANSTARTFREQ"), Axis("IFPANSTOPFREQ")};
}

}  // namespace

class TestIfMappingHelper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        ValueHost::CreateTree();
        m_Helper = std::make_unique<IFMappingHelper>(QStringLiteral("/RX1"));
    }
    void cleanup()
    {
        m_Helper.reset();
        if (Tree::Instance())
            ValueHost::DestroyTree();
    }

    void theAxisIsSetFromFrequencyAndSpan()
    {
        MakeFrequency(98.5e6);
        MakeSpan(1);
        m_Helper->Init();
        QCOMPARE(Axis(), QList<double>({1e6, 97.5e6, 99.5e6}));
    }

    void theAxisValuesAreInHertz()
    {
        m_Helper->Init();
        for (const char* name : {"IFPANHALFWIDTH", "IFPANSTARTFREQ", "IFPANSTOPFREQ"}) {
            ValueBase* const value =
                Tree::Instance()->FindValue(QStringLiteral("/GUICOMMON/") + QLatin1String(name));
            QVERIFY(dynamic_cast<FloatValue*>(value));
            QCOMPARE(ValueHost::Description(*value).unit, QStringLiteral("Hz"));
        }
    }

    void theAxisFollowsBothValues()
    {
        FloatValue* const frequency = dynamic_cast<FloatValue*>(MakeFrequency(98.5e6));
        ValueSelection* const span = dynamic_cast<ValueSelection*>(MakeSpan(1));
        m_Helper->Init();
        frequency->SetValue(100e6, nullptr);
        QCOMPARE(Axis(), QList<double>({1e6, 99e6, 101e6}));
        span->SelectKey(0, nullptr);
        QCOMPARE(Axis(), QList<double>({0.5e6, 99.5e6, 100.5e6}));
    }

    void existingAxisValuesAreKept()
    {
        ValueDescription description;
        description.type = ValueType::Float;
        ValueBase* const present =
            ValueHost::Create(QStringLiteral("/GUICOMMON/IFPANHALFWIDTH"), description, 123.0);
        m_Helper->Init();
        QCOMPARE(Tree::Instance()->FindValue(QStringLiteral("/GUICOMMON/IFPANHALFWIDTH")), present);
        QCOMPARE(Axis("IFPANHALFWIDTH"), 123.0);
    }

    void aReceiverWithoutTheValuesLeavesTheAxisAlone()
    {
        m_Helper->Init();
        QCOMPARE(Axis(), QList<double>({0, 0, 0}));
        MakeSpan(1);
        QTRY_COMPARE_WITH_TIMEOUT(Axis("IFPANHALFWIDTH"), 1e6, patienceMs);
        QCOMPARE(Axis("IFPANSTARTFREQ"), 0.0);  // the centre is not known yet
        MakeFrequency(10e6);
        QTRY_COMPARE_WITH_TIMEOUT(Axis(), QList<double>({1e6, 9e6, 11e6}), patienceMs);
    }

    void spansWithoutAWidthLeaveTheAxisAlone_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("zero") << 2;
        QTest::newRow("not a number") << 3;
    }

    void spansWithoutAWidthLeaveTheAxisAlone()
    {
        QFETCH(int, key);
        MakeFrequency(10e6);
        ValueSelection* const span = dynamic_cast<ValueSelection*>(MakeSpan(1));
        m_Helper->Init();
        span->SelectKey(key, nullptr);
        QCOMPARE(Axis(), QList<double>({1e6, 9e6, 11e6}));
    }

    void valuesOfAnotherTypeAreLeftAlone()
    {
        ValueDescription text;
        ValueHost::Create(frequencyPath, text, QStringLiteral("98.5M"));
        ValueHost::Create(spanPath, text, QStringLiteral("1 MHz"));
        m_Helper->Init();
        QCOMPARE(Axis(), QList<double>({0, 0, 0}));
    }

    void deletedValuesAreLetGoAndFoundAgain()
    {
        MakeFrequency(10e6);
        MakeSpan(1);
        m_Helper->Init();
        Tree::Instance()->DeleteValue(QStringLiteral("/RX1"));
        QCOMPARE(Axis(), QList<double>({1e6, 9e6, 11e6}));
        MakeFrequency(20e6);
        MakeSpan(0);
        QTRY_COMPARE_WITH_TIMEOUT(Axis(), QList<double>({0.5e6, 19.5e6, 20.5e6}), patienceMs);
        dynamic_cast<FloatValue*>(Tree::Instance()->FindValue(frequencyPath))->SetValue(30e6, nullptr);
        QCOMPARE(Axis("IFPANSTARTFREQ"), 29.5e6);
    }

    void aDeletedAxisValueIsMadeAgain()
    {
        FloatValue* const frequency = dynamic_cast<FloatValue*>(MakeFrequency(10e6));
        MakeSpan(1);
        m_Helper->Init();
        Tree::Instance()->DeleteValue(QStringLiteral("/GUICOMMON/IFPANSTARTFREQ"));
        frequency->SetValue(20e6, nullptr);
        QCOMPARE(Axis(), QList<double>({1e6, 19e6, 21e6}));
    }

    void aDestroyedHelperFollowsNoMore()
    {
        FloatValue* const frequency = dynamic_cast<FloatValue*>(MakeFrequency(10e6));
        ValueBase* const span = MakeSpan(1);
        m_Helper->Init();
        QCOMPARE(frequency->CountObservers(), 1);
        m_Helper.reset();
        QCOMPARE(frequency->CountObservers(), 0);
        QCOMPARE(span->CountObservers(), 0);
        frequency->SetValue(50e6, nullptr);
        QCOMPARE(Axis("IFPANSTARTFREQ"), 9e6);
    }

    void initialisingTwiceIsOnce()
    {
        ValueBase* const frequency = MakeFrequency(10e6);
        MakeSpan(1);
        m_Helper->Init();
        m_Helper->Init();
        QCOMPARE(frequency->CountObservers(), 1);
        QCOMPARE(Axis(), QList<double>({1e6, 9e6, 11e6}));
    }

    void withoutATreeNothingHappens()
    {
        ValueHost::DestroyTree();
        m_Helper->Init();
        QVERIFY(!Tree::Instance());
    }

private:
    std::unique_ptr<IFMappingHelper> m_Helper;
};

QTEST_GUILESS_MAIN(TestIfMappingHelper)
#include "tst_ifmappinghelper.moc"
