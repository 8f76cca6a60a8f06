#pragma once

#include <QString>
#include <QTimer>
#include <functional>

#include "valueframework/iobserver.h"

class ValueBase;

// Follows the value at a path through everything that can happen to it: it may come later than the
// follower, change, be deleted and come again. While it is missing the tree is asked for it
// regularly, as the tree does not tell of new values. GUI thread only.
class ValueFollower : public IObserver
{
public:
    // Called after every change: content, state, description, coming and going. `Value()` tells the
    // rest. The follower may be destroyed inside.
    typedef std::function<void()> Listener;

    explicit ValueFollower(Listener listener);
    ~ValueFollower() override;

    // Leaves the former value. Empty: follows nothing. The listener is called if a value is there.
    void SetPath(const QString& path);

    ValueBase* Value() const { return m_Value; }  // null while there is none

    void Update(Observable* subject, TChangeCode code) override;

private:
    void Search();
    void Tell();

    Listener m_Listener;
    QString m_Path;
    ValueBase* m_Value = nullptr;
    QTimer m_SearchTimer;
};
