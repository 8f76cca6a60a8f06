#include "valuecontrols/refreshthrottle.h"

#include <cmath>

namespace {

// Together never more than 30 in a second.
const double freeRefreshes = 6;
const double refreshesPerSecond = 24;

}  // namespace

RefreshThrottle::RefreshThrottle(std::function<void()> refresh)
    : m_Refresh(std::move(refresh)), m_Free(freeRefreshes)
{
    m_Timer.setSingleShot(true);
    m_Timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_Timer, &QTimer::timeout, &m_Timer, [this]() {
        Refill();
        Refresh();
    });
    m_Clock.start();
}

void RefreshThrottle::Refill()
{
    m_Free = qMin(freeRefreshes, m_Free + double(m_Clock.nsecsElapsed()) * 1e-9 * refreshesPerSecond);
    m_Clock.restart();
}

void RefreshThrottle::Refresh()
{
    m_Free = qMax(0.0, m_Free - 1);
    m_Refresh();
}

void RefreshThrottle::Request()
{
    if (m_Timer.isActive())
        return;
    Refill();
    if (m_Free >= 1)
        Refresh();
    else
        m_Timer.start(int(std::ceil((1 - m_Free) / refreshesPerSecond * 1000)));
}

void RefreshThrottle::Now()
{
    m_Timer.stop();
    Refill();
    Refresh();
}
