#include "platform/linux/TerminationSignals.h"

#include <QCoreApplication>

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>

namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

// All that a signal handler may touch. A handler, unlike a blocked signal that is read from a
// descriptor, is not inherited by the tools that we start.
volatile std::sig_atomic_t s_arrivedFd = -1;

void noteSignal(int)
{
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(s_arrivedFd, &one, sizeof one);
    errno = error;
}

} // namespace

TerminationSignals::TerminationSignals() : m_arrived(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!m_arrived.isOpen())
        return; // The signals then end the program at once, as they do by default.
    s_arrivedFd = m_arrived.get();
    m_notifier = std::make_unique<QSocketNotifier>(m_arrived.get(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t got = ::read(m_arrived.get(), &count, sizeof count);
        QCoreApplication::quit();
    });
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
        Former former{.signal = signal};
        ::sigaction(signal, nullptr, &former.action);
        if (former.action.sa_handler == SIG_IGN)
            continue;
        ::sigaction(signal, &action, nullptr);
        m_former.push_back(former);
    }
}

TerminationSignals::~TerminationSignals()
{
    for (const Former &former : m_former)
        ::sigaction(former.signal, &former.action, nullptr);
    s_arrivedFd = -1;
}
