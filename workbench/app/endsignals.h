#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

// Turns SIGINT, SIGTERM and SIGHUP into a call on the GUI thread, so that a run that is told to end
// frees its channel like one whose window was closed.
class EndSignals
{
public:
    explicit EndSignals(std::function<void()> onSignal);

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};
