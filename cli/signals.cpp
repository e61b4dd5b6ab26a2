#include "cli/signals.h"

#include <csignal>
#include <initializer_list>

namespace cli {

void hold_signals() {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP})
        sigaddset(&held, signal);
    // Only an unknown signal or mode can fail here.
    pthread_sigmask(SIG_BLOCK, &held, nullptr);
}

void let_writes_fail() {
    for (const int signal : {SIGPIPE, SIGXFSZ})
        (void)std::signal(signal, SIG_IGN);
}

} // namespace cli
