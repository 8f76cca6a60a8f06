#include "receiver/main/endsignals.h"

#include <sys/socket.h>
#include <unistd.h>
#include <QSocketNotifier>
#include <cerrno>
#include <csignal>

namespace Receiver {

namespace {

constexpr int endingSignals[] = {SIGTERM, SIGINT};
int writeEnd = -1;
int readEnd = -1;

// Only what may be called in a signal handler.
void noteSignal(int)
{
    const int saved = errno;
    const char mark = 1;
    [[maybe_unused]] const ssize_t written = ::write(writeEnd, &mark, 1);
    errno = saved;
}

void handleWith(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : endingSignals)
        ::sigaction(number, &action, nullptr);
}

}  // namespace

EndSignals::EndSignals(QObject* parent) : QObject(parent)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) != 0)
        return;
    readEnd = ends[0];
    writeEnd = ends[1];
    m_notifier = new QSocketNotifier(readEnd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char mark = 0;
        if (::read(readEnd, &mark, 1) == 1)
            emit asked();
    });
    handleWith(noteSignal);
}

EndSignals::~EndSignals()
{
    if (!m_notifier)
        return;
    handleWith(SIG_DFL);
    delete m_notifier;
    ::close(readEnd);
    ::close(writeEnd);
    readEnd = writeEnd = -1;
}

}  // namespace Receiver
