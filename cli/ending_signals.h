#pragma once

#include <array>
#include <chrono>
#include <csignal>

namespace cli {

// While it lives, what would end the program (Ctrl-C, a request to terminate, a hang-up) is noticed instead: whoever
// waits has something to put back first, such as a terminal's echo.
class EndingSignals {
  public:
    EndingSignals();
    ~EndingSignals();
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;

    enum class Came { input, nothing, signal };

    // Waits until there is something to read, or the time is up, or one of the signals has come.
    [[nodiscard]] Came wait_for_input(int fd, std::chrono::milliseconds longest) const;
    // The same without a time.
    [[nodiscard]] bool input(int fd) const;
    // Waits that long; false when one of the signals has come.
    [[nodiscard]] bool sleep(std::chrono::milliseconds time) const;

  private:
    static constexpr std::array SIGNALS{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

    [[nodiscard]] Came select(int fd, const timespec* longest) const;

    std::array<struct sigaction, SIGNALS.size()> before_{};
    sigset_t mask_before_{};
};

// Whether one of the signals has come while they were noticed.
[[nodiscard]] bool told_to_end();

} // namespace cli
