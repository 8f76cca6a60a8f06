#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>

// Keeps pictures at least a thirtieth of a second apart. A picture that is due is made at once, so
// that a steady stream of frames is shown with little delay; what comes sooner waits, and only the
// newest is shown.
class PaintPacer
{
public:
    static constexpr int intervalMs = 34;  // at most 30 in any second

    explicit PaintPacer(std::function<void()> show) : m_show(std::move(show))
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { now(); });
    }

    void request()
    {
        if (m_timer.isActive())
            return;
        const qint64 since = m_since.isValid() ? m_since.elapsed() : intervalMs;
        if (since >= intervalMs)
            now();
        else
            m_timer.start(int(intervalMs - since));
    }

    void now()
    {
        m_timer.stop();
        m_since.start();
        m_show();
    }

    void stop() { m_timer.stop(); }

private:
    std::function<void()> m_show;
    QTimer m_timer;
    QElapsedTimer m_since;
};
