#include "cli/Interrupts.h"
#include <QSocketNotifier>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace kvr {

namespace {
int g_pipe[2] = {-1, -1};

void OnSigint(int)
{
    const char c = 1;
    [[maybe_unused]] const auto written = ::write(g_pipe[1], &c, 1);
}
} // namespace

InterruptWatcher::InterruptWatcher(QObject *parent) : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_pipe) != 0)
        return;
    m_notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char c = 0;
        [[maybe_unused]] const auto got = ::read(g_pipe[0], &c, 1);
        emit Interrupted();
    });
    struct sigaction action = {};
    action.sa_handler = OnSigint;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
}

InterruptWatcher::~InterruptWatcher()
{
    ::signal(SIGINT, SIG_DFL);
    delete m_notifier;
    m_notifier = nullptr;
    ::close(g_pipe[0]);
    ::close(g_pipe[1]);
    g_pipe[0] = g_pipe[1] = -1;
}

} // namespace kvr
