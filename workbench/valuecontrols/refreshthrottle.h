#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>

// Lets a control follow its value at once while changes are rare, and at most 30 times in any
// second while they rain: a few refreshes are free, further ones come at a steady pace, and the
// newest state is always shown in the end.
class RefreshThrottle
{
public:
    explicit RefreshThrottle(std::function<void()> refresh);

    void Request();  // now, or as soon as the rate allows
    void Now();      // at once, whatever the rate
    bool IsWaiting() const { return m_Timer.isActive(); }

private:
    void Refill();
    void Refresh();

    std::function<void()> m_Refresh;
    QTimer m_Timer;
    QElapsedTimer m_Clock;
    double m_Free;  // refreshes that may be made at once
};
