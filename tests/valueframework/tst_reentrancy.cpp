#include <QTest>
#include <algorithm>
#include <memory>
#include <random>

#include "tests/valueframework/reentrancymodel.h"
#include "tests/valueframework/watcher.h"

namespace {

constexpr int placeCount = 2;  // paths at which values stand
constexpr int seatCount = 40;  // observers alive at a time
constexpr int deepest = 4;     // nested notifications
constexpr int stepsPerSeed = 400;

class World;

class Actor : public IObserver
{
public:
    Actor(World* world, int number) : m_world(world), m_number(number) {}
    void Update(Observable* subject, TChangeCode code) override;
    int Number() const { return m_number; }

private:
    World* m_world;
    int m_number;
};

// Values and observers to which random things happen, within notifications too, and the model that
// says what should be.
class World
{
public:
    explicit World(unsigned seed) : m_random(seed)
    {
        ValueHost::CreateTree();
        for (int place = 0; place < placeCount; ++place) {
            Renew(place);
        }
        for (int seat = 0; seat < seatCount; ++seat) {
            m_actors.push_back(std::make_unique<Actor>(this, m_nextActor++));
        }
    }
    ~World()
    {
        m_silent = true;
        ValueHost::DestroyTree();
    }

    void Run()
    {
        for (int step = 0; step < stepsPerSeed && failure.isEmpty(); ++step) {
            m_budget = 40;
            Act();
            for (int place = 0; place < placeCount; ++place) {
                if (!m_subjects[place].value) {
                    Renew(place);
                }
                longest = std::max(longest, m_subjects[place].value->CountObservers());
                Expect(m_subjects[place].value->CountObservers() == m_model.Count(m_subjects[place].number),
                       "another number of observers");
            }
        }
    }

    void Called(Actor* actor, Observable* subject, TChangeCode code)
    {
        if (m_silent || !failure.isEmpty()) {
            return;
        }
        ++calls;
        const int number = NumberOf(subject);
        Report(m_model.Called(number, actor->Number(), code));
        const int actions = Draw(3);
        for (int i = 0; i < actions && m_budget > 0 && m_depth < deepest && failure.isEmpty(); ++i) {
            --m_budget;
            Act();
        }
    }

    QString failure;
    int calls = 0;
    int longest = 0;  // list of observers

private:
    struct Place
    {
        IntValue* value = nullptr;
        int number = -1;
    };

    // Every subject ever, by an address that a later one may have again.
    struct Known
    {
        Observable* subject;
        int number;
    };

    int Draw(int count) { return int(m_random() % unsigned(count)); }

    static QString PathOf(int place) { return QString("/Places/p%1").arg(place); }

    void Report(const QString& text)
    {
        if (failure.isEmpty()) {
            failure = text;
        }
    }

    void Expect(bool condition, const char* text)
    {
        if (!condition) {
            Report(text);
        }
    }

    void Renew(int place)
    {
        m_subjects[place] = Place{MakeInt(PathOf(place)), m_nextSubject++};
        m_model.AddSubject(m_subjects[place].number);
        m_known.push_back({m_subjects[place].value, m_subjects[place].number});
    }

    // Also of a subject that has left its place and is being announced.
    int NumberOf(Observable* subject) const
    {
        for (auto known = m_known.rbegin(); known != m_known.rend(); ++known) {
            if (known->subject == subject) {
                return known->number;
            }
        }
        return -1;
    }

    void Act()
    {
        const int place = Draw(placeCount);
        const int seat = Draw(seatCount);
        const int chance = Draw(100);
        if (chance < 1) {
            Delete(place);
        } else if (chance < 2) {
            DeleteAll(place);
        } else if (chance < 7) {
            Replace(seat);
        } else if (chance < 15) {
            Join(place, seat, true);
        } else if (chance < 27) {
            Leave(place, seat);
        } else if (chance < 40) {
            Write(place, seat);
        } else {
            Join(place, seat, false);
        }
    }

    void Join(int place, int seat, bool first)
    {
        const Place at = m_subjects[place];
        if (!at.value || !m_actors[std::size_t(seat)]) {
            return;
        }
        Actor* actor = m_actors[std::size_t(seat)].get();
        if (first) {
            at.value->MakeFirstObserver(actor);
            m_model.MakeFirst(at.number, actor->Number());
        } else {
            at.value->AddObserver(actor);
            m_model.Add(at.number, actor->Number());
        }
    }

    void Leave(int place, int seat)
    {
        const Place at = m_subjects[place];
        if (at.value && m_actors[std::size_t(seat)]) {
            at.value->DeleteObserver(m_actors[std::size_t(seat)].get());
            m_model.Delete(at.number, m_actors[std::size_t(seat)]->Number());
        }
    }

    void DeleteAll(int place)
    {
        const Place at = m_subjects[place];
        if (at.value) {
            at.value->DeleteObservers();
            m_model.DeleteAll(at.number);
        }
    }

    // The observer of a seat is destroyed, perhaps in the middle of its own Update, and another
    // takes the seat.
    void Replace(int seat)
    {
        m_model.RemoveObserver(m_actors[std::size_t(seat)]->Number());
        m_actors[std::size_t(seat)].reset();
        m_actors[std::size_t(seat)] = std::make_unique<Actor>(this, m_nextActor++);
    }

    void Write(int place, int seat)
    {
        const Place at = m_subjects[place];
        if (!at.value) {
            return;
        }
        Actor* writer = Draw(2) ? m_actors[std::size_t(seat)].get() : nullptr;
        m_model.Begin(at.number, CC_VALUE, writer ? writer->Number() : -1);
        ++m_depth;
        at.value->SetValue(++m_content, writer);
        --m_depth;
        Report(m_model.End());
    }

    // From the announcement on the place is empty for everybody.
    void Delete(int place)
    {
        const Place at = m_subjects[place];
        if (!at.value) {
            Tree::Instance()->DeleteValue(PathOf(place));
            return;
        }
        m_subjects[place] = Place();
        m_model.Begin(at.number, CC_STATE, -1, true);
        ++m_depth;
        Tree::Instance()->DeleteValue(PathOf(place));
        --m_depth;
        Report(m_model.End());
        m_model.RemoveSubject(at.number);
    }

    std::mt19937 m_random;
    ReentrancyModel m_model;
    Place m_subjects[placeCount];
    std::vector<Known> m_known;
    std::vector<std::unique_ptr<Actor>> m_actors;
    int m_nextSubject = 0;
    int m_nextActor = 0;
    int m_content = 0;
    int m_depth = 0;
    int m_budget = 0;
    bool m_silent = false;
};

void Actor::Update(Observable* subject, TChangeCode code)
{
    m_world->Called(this, subject, code);  // may destroy this
}

}  // namespace

// Random joining, leaving, writing and destroying inside notifications, compared with a model.
class tst_reentrancy : public QObject
{
    Q_OBJECT
private slots:
    void anythingInsideUpdateGoesAsTheModelSays_data();
    void anythingInsideUpdateGoesAsTheModelSays();
    void theModelNoticesAWrongOrder();
};

void tst_reentrancy::anythingInsideUpdateGoesAsTheModelSays_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 60; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

void tst_reentrancy::anythingInsideUpdateGoesAsTheModelSays()
{
    QFETCH(unsigned, seed);
    World world(seed);
    world.Run();
    QVERIFY2(world.failure.isEmpty(), qPrintable(world.failure));
    QVERIFY2(world.longest > 20, qPrintable(QString("at most %1 observers").arg(world.longest)));
    QVERIFY2(world.calls > 500, qPrintable(QString("only %1 calls").arg(world.calls)));
}

void tst_reentrancy::theModelNoticesAWrongOrder()
{
    ReentrancyModel model;
    model.AddSubject(0);
    model.Add(0, 1);
    model.Add(0, 2);
    model.Begin(0, CC_VALUE, -1);
    QVERIFY(!model.Called(0, 2, CC_VALUE).isEmpty());
    QVERIFY(!model.End().isEmpty());
    model.Begin(0, CC_VALUE, 1);
    QCOMPARE(model.Called(0, 2, CC_VALUE), QString());
    QCOMPARE(model.End(), QString());
    QVERIFY(!model.Called(0, 2, CC_VALUE).isEmpty());
}

QTEST_GUILESS_MAIN(tst_reentrancy)
#include "tst_reentrancy.moc"
