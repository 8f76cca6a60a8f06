#pragma once

#include <QVector>
#include <functional>
#include <utility>

#include "valueframework/iobserver.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"
#include "valueframework/valueselection.h"

// An observer that notes what it is told, and does what a test wants done in the middle of it.
class Watcher : public IObserver
{
public:
    explicit Watcher(std::function<void(Observable*, TChangeCode)> reaction = {})
        : onUpdate(std::move(reaction))
    {}
    Watcher(QVector<const Watcher*>* order) : m_order(order) {}

    void Update(Observable* subject, TChangeCode code) override
    {
        codes.append(code);
        if (m_order) {
            m_order->append(this);
        }
        if (onUpdate) {
            const auto reaction = onUpdate;  // this may be gone when it returns
            reaction(subject, code);
        }
    }

    int Count(TChangeCode code) const { return int(codes.count(code)); }

    QVector<TChangeCode> codes;
    std::function<void(Observable*, TChangeCode)> onUpdate;

private:
    QVector<const Watcher*>* m_order = nullptr;
};

// A tree for the time of one test.
struct OwnTree
{
    OwnTree() { ValueHost::CreateTree(); }
    ~OwnTree() { ValueHost::DestroyTree(); }
    Q_DISABLE_COPY(OwnTree)
};

inline ValueDescription Described(ValueType type)
{
    ValueDescription description;
    description.type = type;
    return description;
}

inline ValueDescription Limited(ValueType type, double minimum, double maximum,
                                const QString& unit = QString())
{
    ValueDescription description = Described(type);
    description.hasLimits = true;
    description.minimum = minimum;
    description.maximum = maximum;
    description.unit = unit;
    return description;
}

inline FloatValue* MakeFloat(const QString& path, double content = 0)
{
    return dynamic_cast<FloatValue*>(ValueHost::Create(path, Described(ValueType::Float), content));
}

inline IntValue* MakeInt(const QString& path, int content = 0)
{
    return dynamic_cast<IntValue*>(ValueHost::Create(path, Described(ValueType::Integer), content));
}

inline TextValue* MakeText(const QString& path, const QString& content = QString())
{
    return dynamic_cast<TextValue*>(ValueHost::Create(path, Described(ValueType::Text), content));
}
