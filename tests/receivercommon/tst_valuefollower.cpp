#include <QTest>
#include <memory>

#include "receivercommon/valuefollower.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"

namespace {

const int patienceMs = 60000;
const QString path = QStringLiteral("/A/B");

BoolValue* Make(const QString& at = path)
{
    ValueDescription description;
    description.type = ValueType::Bool;
    return dynamic_cast<BoolValue*>(ValueHost::Create(at, description, false));
}

}  // namespace

class TestValueFollower : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        ValueHost::CreateTree();
        m_Calls = 0;
        m_Follower = std::make_unique<ValueFollower>([this] { ++m_Calls; });
    }
    void cleanup()
    {
        m_Follower.reset();
        if (Tree::Instance())
            ValueHost::DestroyTree();
    }

    void aValueThatIsThereIsFoundAtOnce()
    {
        BoolValue* const value = Make();
        m_Follower->SetPath(path);
        QCOMPARE(m_Follower->Value(), static_cast<ValueBase*>(value));
        QCOMPARE(m_Calls, 1);
    }

    void everyChangeIsTold()
    {
        BoolValue* const value = Make();
        m_Follower->SetPath(path);
        value->SetValue(true, nullptr);
        QCOMPARE(m_Calls, 2);
        ValueHost::SetState(*value, VS_STALE);
        QCOMPARE(m_Calls, 3);
        QCOMPARE(m_Follower->Value(), static_cast<ValueBase*>(value));
    }

    void aValueThatComesLaterIsFound()
    {
        m_Follower->SetPath(path);
        QVERIFY(!m_Follower->Value());
        QCOMPARE(m_Calls, 0);
        BoolValue* const value = Make();
        QTRY_COMPARE_WITH_TIMEOUT(m_Follower->Value(), static_cast<ValueBase*>(value), patienceMs);
        QCOMPARE(m_Calls, 1);
    }

    void aDeletedValueIsLetGoAndItsSuccessorFound()
    {
        Make();
        m_Follower->SetPath(path);
        Tree::Instance()->DeleteValue(path);
        QVERIFY(!m_Follower->Value());
        QCOMPARE(m_Calls, 2);
        BoolValue* const next = Make();
        QTRY_COMPARE_WITH_TIMEOUT(m_Follower->Value(), static_cast<ValueBase*>(next), patienceMs);
    }

    void anotherPathLeavesTheFormerValue()
    {
        BoolValue* const former = Make();
        BoolValue* const next = Make(QStringLiteral("/A/C"));
        m_Follower->SetPath(path);
        m_Follower->SetPath(QStringLiteral("/A/C"));
        QCOMPARE(former->CountObservers(), 0);
        QCOMPARE(m_Follower->Value(), static_cast<ValueBase*>(next));
        m_Follower->SetPath(QString());
        QVERIFY(!m_Follower->Value());
        QCOMPARE(next->CountObservers(), 0);
    }

    void theTreeMayGoFirst()
    {
        Make();
        m_Follower->SetPath(path);
        ValueHost::DestroyTree();
        QVERIFY(!m_Follower->Value());
    }

    void theFollowerMayBeDestroyedInsideItsOwnCall()
    {
        BoolValue* const value = Make();
        std::unique_ptr<ValueFollower> follower;
        bool armed = false;
        follower = std::make_unique<ValueFollower>([&] {
            if (armed)
                follower.reset();
        });
        follower->SetPath(path);
        armed = true;
        value->SetValue(true, nullptr);
        QVERIFY(!follower);
        QCOMPARE(value->CountObservers(), 0);
    }

private:
    int m_Calls = 0;
    std::unique_ptr<ValueFollower> m_Follower;
};

QTEST_GUILESS_MAIN(TestValueFollower)
#include "tst_valuefollower.moc"
