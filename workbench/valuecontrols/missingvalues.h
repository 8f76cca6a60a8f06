#pragma once

#include <QList>
#include <QTimer>

class ValueBinding;

// Looks for the values that bound controls miss, so that a control comes back by itself when its
// value is made again. One timer for all controls; it stands still while nothing is missing.
class MissingValues
{
public:
    static MissingValues& Instance();

    void Add(ValueBinding* binding);
    void Remove(ValueBinding* binding);

private:
    MissingValues();
    void LookAgain();

    QList<ValueBinding*> m_Bindings;
    QTimer* m_Timer;  // child of the application, so that it never outlives its thread's timers
};
