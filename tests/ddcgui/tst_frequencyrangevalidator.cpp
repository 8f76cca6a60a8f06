#include <QSignalSpy>
#include <QTest>
#include <cmath>

#include "frequencyrangevalidator.h"
#include "tests/support/testtree.h"

class tst_FrequencyRangeValidator : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_Tree.reset(new TestTree);
        TestTree::AddFloat("/F", 1000, "Hz");
        TestTree::AddFloat("/C", 1000, "Hz");
        TestTree::AddSelection("/S", TestTree::Numbers({0, 100, 1000}, "Hz"), 100);
        m_Validator.reset(new FrequencyRangeValidator(nullptr));
        m_Spy.reset(new QSignalSpy(m_Validator.data(), SIGNAL(si_inRangeChanged(bool))));
    }
    void cleanup()
    {
        m_Spy.reset();
        m_Validator.reset();
        m_Tree.reset();
    }

    void frequencyIsJudgedAgainstCentreAndHalfTheSpan_data()
    {
        QTest::addColumn<double>("frequency");
        QTest::addColumn<double>("centre");
        QTest::addColumn<double>("span");
        QTest::addColumn<bool>("inRange");
        QTest::newRow("at the centre") << 1000.0 << 1000.0 << 100.0 << true;
        QTest::newRow("exactly at the upper bound") << 1050.0 << 1000.0 << 100.0 << true;
        QTest::newRow("exactly at the lower bound") << 950.0 << 1000.0 << 100.0 << true;
        QTest::newRow("just above") << 1050.001 << 1000.0 << 100.0 << false;
        QTest::newRow("just below") << 949.999 << 1000.0 << 100.0 << false;
        QTest::newRow("span 0 at the centre") << 1000.0 << 1000.0 << 0.0 << true;
        QTest::newRow("span 0 beside the centre") << 1000.001 << 1000.0 << 0.0 << false;
        QTest::newRow("span is no number") << 1000.0 << 1000.0 << std::nan("") << false;
        QTest::newRow("span is negative") << 1000.0 << 1000.0 << -100.0 << false;
    }
    void frequencyIsJudgedAgainstCentreAndHalfTheSpan()
    {
        QFETCH(double, frequency);
        QFETCH(double, centre);
        QFETCH(double, span);
        QFETCH(bool, inRange);
        TestTree::Float("/F").SetValue(frequency, nullptr);
        TestTree::Float("/C").SetValue(centre, nullptr);
        TestTree::AddSelection("/S", {{1, "span", span}}, 1);
        QVERIFY(Connect());
        QCOMPARE(Answers(), QVector<bool>({inRange}));
    }

    void constructionEmitsNothingAndConnectAlwaysEmitsOnce()
    {
        QCOMPARE(m_Spy->size(), 0);
        TestTree::Float("/F").SetValue(5000, nullptr);
        QVERIFY(Connect());
        QCOMPARE(Answers(), QVector<bool>({false}));  // the initial answer, told all the same
        QVERIFY(Connect());
        QCOMPARE(Answers(), QVector<bool>({false, false}));
    }

    void connectAttachesEachRegardlessOfTheOthersAndEmitsNothingWithoutAll()
    {
        QVERIFY(!m_Validator->Connect("/missing", "/C", "/S"));
        QCOMPARE(TestTree::Float("/C").CountObservers(), 2);
        QCOMPARE(TestTree::Selection("/S").CountObservers(), 2);
        QVERIFY(!m_Validator->Connect("/F", "/S", "/C"));  // wrong types
        QCOMPARE(TestTree::Float("/C").CountObservers(), 0);
        QCOMPARE(m_Spy->size(), 0);
    }

    void changeOfTheSpanAloneEvaluatesAgain()
    {
        TestTree::Float("/F").SetValue(1100, nullptr);
        QVERIFY(Connect());
        TestTree::Selection("/S").SelectKey(1000, nullptr);
        QCOMPARE(Answers(), QVector<bool>({false, true}));
    }

    void changesThatKeepTheAnswerEmitNothing()
    {
        QVERIFY(Connect());
        TestTree::Float("/F").SetValue(1010, nullptr);
        TestTree::Float("/F").SetValue(1020, nullptr);
        TestTree::Float("/C").SetValue(1005, nullptr);
        QCOMPARE(Answers(), QVector<bool>({true}));
        TestTree::Float("/F").SetValue(2000, nullptr);
        TestTree::Float("/F").SetValue(3000, nullptr);
        QCOMPARE(Answers(), QVector<bool>({true, false}));
    }

    void deletedValueResetsTheAnswerSilentlyAndOnlyTrueIsToldAfterwards()
    {
        // A fourth value with the validator among its observers: it goes away while the three that
        // are judged stay, so that later changes are evaluated.
        TestTree::AddBool("/Fourth", true);
        QVERIFY(Connect());
        QCOMPARE(Answers(), QVector<bool>({true}));
        TestTree::Bool("/Fourth").AddObserver(m_Validator.data());
        TestTree::Delete("/Fourth");
        QCOMPARE(m_Spy->size(), 1);

        TestTree::Float("/F").SetValue(9000, nullptr);  // false once more: no change
        QCOMPARE(m_Spy->size(), 1);
        TestTree::Float("/F").SetValue(1001, nullptr);
        QCOMPARE(Answers(), QVector<bool>({true, true}));
    }

    void deletedValueStopsTheEvaluationUntilConnectedAgain()
    {
        QVERIFY(Connect());
        TestTree::Delete("/C");
        TestTree::Float("/F").SetValue(9000, nullptr);
        TestTree::Float("/F").SetValue(1000, nullptr);
        QCOMPARE(m_Spy->size(), 1);
        TestTree::AddFloat("/C", 1000, "Hz");
        QVERIFY(Connect());
        QCOMPARE(Answers(), QVector<bool>({true, true}));
    }

    void otherStatesAndCodesChangeNothing()
    {
        QVERIFY(Connect());
        ValueHost::SetState(TestTree::Float("/C"), VS_STALE);
        for (int code = 4; code < 20; ++code)
            TestTree::Float("/F").NotifyObservers(TChangeCode(code), nullptr);
        TestTree::Float("/F").SetValue(1001, nullptr);
        QCOMPARE(m_Spy->size(), 1);
    }

    void metaCastAnswersTheClassAndTheObserver()
    {
        QVERIFY(m_Validator->qt_metacast("FrequencyRangeValidator") == m_Validator.data());
        QVERIFY(m_Validator->qt_metacast("IObserver") == static_cast<IObserver*>(m_Validator.data()));
        QVERIFY(!m_Validator->qt_metacast("Something"));
    }

    void destructionLeavesAllValues()
    {
        QVERIFY(Connect());
        m_Spy.reset();
        m_Validator.reset();
        QCOMPARE(TestTree::Float("/F").CountObservers(), 0);
        QCOMPARE(TestTree::Float("/C").CountObservers(), 0);
        QCOMPARE(TestTree::Selection("/S").CountObservers(), 0);
    }

private:
    bool Connect() { return m_Validator->Connect("/F", "/C", "/S"); }
    QVector<bool> Answers() const
    {
        QVector<bool> answers;
        for (const QList<QVariant>& arguments : *m_Spy)
            answers.append(arguments.at(0).toBool());
        return answers;
    }

    QScopedPointer<TestTree> m_Tree;
    QScopedPointer<FrequencyRangeValidator> m_Validator;
    QScopedPointer<QSignalSpy> m_Spy;
};

QTEST_GUILESS_MAIN(tst_FrequencyRangeValidator)
#include "tst_frequencyrangevalidator.moc"
