#include "cli/signals.h"

#include "cli/ending_signals.h"
#include "cli/note.h"

#include <csignal>
#include <thread>

namespace cli {
namespace {

// Ctrl-Z stops nothing either.
void hold_suspension() {
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGTSTP);
    // Only an unknown signal or mode can fail here.
    pthread_sigmask(SIG_BLOCK, &held, nullptr);
}

// The signals reach nobody any more but a thread that waits for them and answers the first.
class AnsweredSignals {
  public:
    AnsweredSignals() {
        std::thread([this] { answer(); }).detach();
    }

  private:
    static constexpr int NO_INPUT = -1;

    void answer() const {
        if (!signals_.input(NO_INPUT)) note(Sentence("stops-after-step", {}));
    }

    EndingSignals signals_;
};

} // namespace

void hold_signals() {
    hold_suspension();
    // To the last: nobody ends it.
    static const auto* held = new AnsweredSignals; // NOLINT(cppcoreguidelines-owning-memory)
    (void)held;
}

void let_writes_fail() {
    for (const int signal : {SIGPIPE, SIGXFSZ})
        (void)std::signal(signal, SIG_IGN);
}

} // namespace cli
