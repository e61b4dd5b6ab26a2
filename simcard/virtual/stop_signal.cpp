#include "simcard/virtual/stop_signal.h"

#include <sys/select.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace simcard {
namespace {

constexpr int STOP_SIGNALS[] = {SIGTERM, SIGINT, SIGHUP};

volatile std::sig_atomic_t stopped = 0;
sigset_t while_waiting;

void note_stop(int) {
    stopped = 1;
}

} // namespace

void hold_stop_signals() {
    struct sigaction action {};
    action.sa_handler = note_stop;
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : STOP_SIGNALS) {
        ::sigaction(signal, &action, nullptr);
        sigaddset(&held, signal);
    }
    ::pthread_sigmask(SIG_BLOCK, &held, &while_waiting);
    for (const int signal : STOP_SIGNALS)
        sigdelset(&while_waiting, signal);
    (void)std::signal(SIGPIPE, SIG_IGN); // a reader that is gone is a failed write
}

Wait wait_readable(int descriptor, std::chrono::milliseconds limit) {
    fd_set readable;
    FD_ZERO(&readable);
    if (descriptor >= 0) FD_SET(descriptor, &readable);
    timespec time{};
    time.tv_sec = static_cast<std::time_t>(limit.count() / 1000);
    time.tv_nsec = static_cast<long>(limit.count() % 1000) * 1'000'000;
    const bool forever = limit < std::chrono::milliseconds::zero();
    int count = 0;
    do {
        count =
            ::pselect(descriptor + 1, &readable, nullptr, nullptr, forever ? nullptr : &time, &while_waiting);
    } while (count < 0 && errno == EINTR && stopped == 0);
    if (stopped != 0) return Wait::stopped;
    if (count < 0) throw std::system_error(errno, std::generic_category(), "select");
    return count == 0 ? Wait::timed_out : Wait::readable;
}

} // namespace simcard
