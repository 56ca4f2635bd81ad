#include "app/TerminationSignals.h"
#include <QSocketNotifier>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace kvr {

namespace {
int g_pipe[2] = {-1, -1};

// Only async-signal-safe work here: the number goes through the pipe.
void OnSignal(int signalNumber)
{
    const auto byte = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t ignored = ::write(g_pipe[1], &byte, 1);
}
} // namespace

TerminationSignals::TerminationSignals(QList<int> handled, QObject *parent)
    : QObject(parent), m_handled(std::move(handled))
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_pipe) != 0)
        return;
    m_notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (::read(g_pipe[0], &byte, 1) == 1)
            emit Received(static_cast<unsigned char>(byte));
    });
    struct sigaction action {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signalNumber : std::as_const(m_handled))
        ::sigaction(signalNumber, &action, nullptr);
}

TerminationSignals::~TerminationSignals()
{
    for (int signalNumber : std::as_const(m_handled))
        ::signal(signalNumber, SIG_DFL);
    delete m_notifier;
    for (int &end : g_pipe) {
        if (end >= 0)
            ::close(end);
        end = -1;
    }
}

} // namespace kvr
