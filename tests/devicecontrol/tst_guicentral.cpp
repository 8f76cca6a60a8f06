#include <QSet>
#include <QTest>
#include <limits>

#include "devicecontrol/guicentral.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"

namespace {

template <class T>
T* Find(const QString& path)
{
    return dynamic_cast<T*>(Tree::Instance()->FindValue(path));
}

const double lowest = -std::numeric_limits<double>::max();
const double highest = std::numeric_limits<double>::max();

}  // namespace

// Private values of the tree.
class TestGuiCentral : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { ValueHost::CreateTree(); }
    void cleanup() { ValueHost::DestroyTree(); }

    void aFloatValueIsMadeWithItsLimits()
    {
        const QString path = GuiCentral::Instance()->CreateUniqueValueFloat(2.5, -10, 20, 0.5);
        FloatValue* const value = Find<FloatValue>(path);
        QVERIFY(value);
        QCOMPARE(value->GetPathName(), path);
        QCOMPARE(value->GetValue(), 2.5);
        const ValueDescription& description = ValueHost::Description(*value);
        QVERIFY(description.hasLimits);
        QCOMPARE(description.minimum, -10.0);
        QCOMPARE(description.maximum, 20.0);
        QCOMPARE(description.step, 0.5);
        value->SetValue(100, nullptr);
        QCOMPARE(value->GetValue(), 20.0);
    }

    void aFloatValueMayTakeTheWholeRange()
    {
        const QString path = GuiCentral::Instance()->CreateUniqueValueFloat(-1.0, lowest, highest, 0.0);
        FloatValue* const value = Find<FloatValue>(path);
        QVERIFY(value);
        QCOMPARE(value->GetValue(), -1.0);
        value->SetValue(1e300, nullptr);
        QCOMPARE(value->GetValue(), 1e300);
    }

    void anIntegerValueIsMadeWithItsLimits()
    {
        const QString path = GuiCentral::Instance()->CreateUniqueValueInt(4, 1, 8, 0);
        IntValue* const value = Find<IntValue>(path);
        QVERIFY(value);
        QCOMPARE(value->GetValue(), 4);
        value->SetValue(0, nullptr);
        QCOMPARE(value->GetValue(), 1);
        value->SetValue(9, nullptr);
        QCOMPARE(value->GetValue(), 8);
    }

    void everyValueHasAPathOfItsOwn()
    {
        QSet<QString> paths;
        for (int i = 0; i < 500; ++i) {
            paths.insert(GuiCentral::Instance()->CreateUniqueValueFloat(i, lowest, highest, 0));
            paths.insert(GuiCentral::Instance()->CreateUniqueValueInt(i, 0, 1000, 0));
        }
        QCOMPARE(paths.size(), 1000);
        QCOMPARE(ValueHost::CountValues(), 1000);
        QVERIFY(!paths.contains(QString()));
    }

    void aPathThatSomebodyElseTookIsPassedOver()
    {
        const QString path = GuiCentral::Instance()->CreateUniqueValueInt(1, 0, 9, 0);
        const int slash = int(path.lastIndexOf(QLatin1Char('/')));
        const QString next = path.left(slash + 1) + QString::number(path.mid(slash + 1).toInt() + 1);
        ValueDescription description;
        QVERIFY(ValueHost::Create(next, description, QStringLiteral("taken")));
        const QString other = GuiCentral::Instance()->CreateUniqueValueInt(2, 0, 9, 0);
        QVERIFY(other != next);
        QCOMPARE(Find<TextValue>(next)->GetValue(), QStringLiteral("taken"));
        QCOMPARE(Find<IntValue>(other)->GetValue(), 2);
    }

    void anInitialContentBeyondTheLimitsIsBroughtInside()
    {
        QCOMPARE(Find<FloatValue>(GuiCentral::Instance()->CreateUniqueValueFloat(99, 0, 10, 0))->GetValue(),
                 10.0);
        QCOMPARE(Find<IntValue>(GuiCentral::Instance()->CreateUniqueValueInt(-5, 0, 10, 0))->GetValue(), 0);
    }

    void limitsTheWrongWayRoundAreNone()
    {
        FloatValue* const value =
            Find<FloatValue>(GuiCentral::Instance()->CreateUniqueValueFloat(5, 10, 0, 0));
        QVERIFY(value);
        QVERIFY(!ValueHost::Description(*value).hasLimits);
        QCOMPARE(value->GetValue(), 5.0);
    }

    void withoutATreeThereIsNoPath()
    {
        ValueHost::DestroyTree();
        QCOMPARE(GuiCentral::Instance()->CreateUniqueValueFloat(0, 0, 1, 0), QString());
        QCOMPARE(GuiCentral::Instance()->CreateUniqueValueInt(0, 0, 1, 0), QString());
    }
};

QTEST_GUILESS_MAIN(TestGuiCentral)
#include "tst_guicentral.moc"
