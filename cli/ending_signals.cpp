#include "cli/ending_signals.h"

#include <sys/select.h>

#include <cerrno>

namespace cli {
namespace {

volatile std::sig_atomic_t signal_came = 0;

timespec as_timespec(std::chrono::milliseconds time) {
    const auto count = time.count() > 0 ? time.count() : 0;
    timespec spec{};
    spec.tv_sec = count / 1000;
    spec.tv_nsec = count % 1000 * 1'000'000;
    return spec;
}

} // namespace

EndingSignals::EndingSignals() {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : SIGNALS)
        sigaddset(&held, signal);
    pthread_sigmask(SIG_BLOCK, &held, &mask_before_);
    struct sigaction noticing {};
    noticing.sa_handler = [](int) { signal_came = 1; };
    for (std::size_t i = 0; i < SIGNALS.size(); ++i) {
        sigaction(SIGNALS[i], &noticing, &before_[i]);
        if (before_[i].sa_handler == SIG_IGN) sigaction(SIGNALS[i], &before_[i], nullptr);
    }
}

EndingSignals::~EndingSignals() {
    for (std::size_t i = 0; i < SIGNALS.size(); ++i)
        sigaction(SIGNALS[i], &before_[i], nullptr);
    pthread_sigmask(SIG_SETMASK, &mask_before_, nullptr);
}

EndingSignals::Came EndingSignals::select(int fd, const timespec* longest) const {
    fd_set wanted;
    FD_ZERO(&wanted);
    if (fd >= 0) FD_SET(fd, &wanted);
    const int ready =
        signal_came != 0 ? -1 : pselect(fd + 1, &wanted, nullptr, nullptr, longest, &mask_before_);
    if (signal_came != 0) return Came::signal;
    return ready > 0 ? Came::input : Came::nothing;
}

EndingSignals::Came EndingSignals::wait_for_input(int fd, std::chrono::milliseconds longest) const {
    const auto end = std::chrono::steady_clock::now() + longest;
    Came came = Came::nothing;
    while (came == Came::nothing) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        const timespec time = as_timespec(left);
        came = select(fd, &time);
        if (left.count() <= 0) break;
    }
    return came;
}

bool EndingSignals::input(int fd) const {
    Came came = Came::nothing;
    do
        came = select(fd, nullptr);
    while (came == Came::nothing && errno == EINTR);
    return came == Came::input;
}

bool EndingSignals::sleep(std::chrono::milliseconds time) const {
    return wait_for_input(-1, time) != Came::signal;
}

bool told_to_end() {
    return signal_came != 0;
}

} // namespace cli
