#include "app/endsignals.h"

#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int ends[2] = {-1, -1};

void onEnd(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(ends[0], &byte, 1);
}

}  // namespace

EndSignals::EndSignals(std::function<void()> onSignal)
{
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) != 0) {
        return;  // the signals then end the process at once, as they do without us
    }
    m_notifier = std::make_unique<QSocketNotifier>(ends[1], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [onSignal = std::move(onSignal)] {
                         char byte;
                         while (read(ends[1], &byte, 1) > 0) {
                         }
                         onSignal();
                     });
    struct sigaction action = {};
    action.sa_handler = onEnd;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(number, &action, nullptr);
    }
}
