#include "cli/pin_input.h"

#include "cli/note.h"
#include "cli/scoped_fd.h"
#include "host/error.h"
#include "words/words.h"

#include <fcntl.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace cli {
namespace {

constexpr char END_OF_TEXT = 3;  // Ctrl-C
constexpr char END_OF_INPUT = 4; // Ctrl-D
constexpr char BACKSPACE = 8;
constexpr char KILL_LINE = 21; // Ctrl-U
constexpr char QUIT = 28;      // Ctrl and a backslash
constexpr char DEL = 127;

// One byte at a time: no buffer of the C library keeps a copy of the PIN.
bool read_char(int fd, char& c) {
    ssize_t got = 0;
    do
        got = ::read(fd, &c, 1);
    while (got < 0 && errno == EINTR);
    return got == 1;
}

// Echo off, and no signals from the keyboard, which would leave it off: Ctrl-C comes as a character.
class QuietTerminal {
  public:
    explicit QuietTerminal(int fd) : fd_(fd) {
        if (tcgetattr(fd, &before_) != 0) throw Error(Exit::refused, Sentence{"terminal-unread", {}});
        termios quiet = before_;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG);
        quiet.c_cc[VMIN] = 1;
        quiet.c_cc[VTIME] = 0;
        if (tcsetattr(fd, TCSAFLUSH, &quiet) != 0) throw Error(Exit::refused, Sentence{"terminal-echo", {}});
    }
    ~QuietTerminal() { tcsetattr(fd_, TCSAFLUSH, &before_); }
    QuietTerminal(const QuietTerminal&) = delete;
    QuietTerminal& operator=(const QuietTerminal&) = delete;

  private:
    int fd_;
    termios before_{};
};

void say(int terminal, const std::string& text) {
    // A terminal that takes no text still gives the PIN.
    [[maybe_unused]] const ssize_t written = ::write(terminal, text.data(), text.size());
}

volatile std::sig_atomic_t told_to_end = 0;

// While it lives, what would end the program is noticed instead: the terminal has to get its echo back.
class EndingSignals {
  public:
    EndingSignals() {
        sigset_t held;
        sigemptyset(&held);
        for (const int signal : SIGNALS)
            sigaddset(&held, signal);
        pthread_sigmask(SIG_BLOCK, &held, &mask_before_);
        struct sigaction noticing {};
        noticing.sa_handler = [](int) { told_to_end = 1; };
        for (std::size_t i = 0; i < SIGNALS.size(); ++i) {
            sigaction(SIGNALS[i], &noticing, &before_[i]);
            if (before_[i].sa_handler == SIG_IGN) sigaction(SIGNALS[i], &before_[i], nullptr);
        }
    }
    ~EndingSignals() {
        for (std::size_t i = 0; i < SIGNALS.size(); ++i)
            sigaction(SIGNALS[i], &before_[i], nullptr);
        pthread_sigmask(SIG_SETMASK, &mask_before_, nullptr);
    }
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;

    // Waits until there is something to read; false when there is a signal instead.
    [[nodiscard]] bool input(int fd) const {
        fd_set wanted;
        int ready = 0;
        do {
            FD_ZERO(&wanted);
            FD_SET(fd, &wanted);
            ready = pselect(fd + 1, &wanted, nullptr, nullptr, nullptr, &mask_before_);
        } while (ready < 0 && errno == EINTR && told_to_end == 0);
        return ready > 0 && told_to_end == 0;
    }

  private:
    static constexpr std::array SIGNALS{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    std::array<struct sigaction, SIGNALS.size()> before_{};
    sigset_t mask_before_{};
};

bool ends(char c) {
    return c == '\n' || c == '\r' || c == END_OF_INPUT || c == END_OF_TEXT || c == QUIT;
}

// The prompt comes once the terminal is quiet: what is typed after it is neither shown nor thrown away.
Pin typed(int terminal, const std::string& prompt) {
    const EndingSignals signals;
    const QuietTerminal quiet(terminal);
    say(terminal, prompt);
    Pin pin;
    char c = 0;
    while (signals.input(terminal) && read_char(terminal, c) && !ends(c)) {
        if (c == BACKSPACE || c == DEL)
            pin.remove_last();
        else if (c == KILL_LINE)
            pin.wipe();
        else
            pin.add(c);
    }
    say(terminal, "\n");
    if (c != '\n' && c != '\r') throw Error(Exit::refused, Sentence{"pin-stopped", {}});
    return pin;
}

Pin pin_from_terminal(const std::string& reader) {
    const ScopedFd terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!terminal)
        throw Error(Exit::refused, Sentence{"no-terminal", {}}, Advice{"pin-file", Sentence{"pin-file", {}}});
    return typed(terminal.get(), words::of(Sentence{"pin-prompt", {{"reader", reader}}}));
}

void warn_when_others_can_read(int fd, const std::string& path) {
    struct stat status {};
    if (fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        note(Sentence{"pin-file-open", {{"file", path}}});
}

Pin pin_from_file(const std::string& path) {
    const ScopedFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file)
        throw Error(Exit::refused,
                    Sentence{"pin-file-unread", {{"file", path}, {"reason", std::strerror(errno)}}});
    warn_when_others_can_read(file.get(), path);
    Pin pin;
    char c = 0;
    while (!pin.full() && read_char(file.get(), c))
        pin.add(c);
    c = '\0';
    if (pin.view().ends_with('\n')) pin.remove_last();
    if (pin.view().ends_with('\r')) pin.remove_last();
    return pin;
}

} // namespace

std::optional<Pin> PinInput::at_once() {
    if (options_.pin_file.empty()) return std::nullopt;
    return pin_from_file(options_.pin_file);
}

Pin PinInput::ask(const CardFacts& card) {
    if (const auto tries = card.state && card.state->pin ? tries_told(*card.state->pin) : Sentence();
        !tries.empty())
        note(Sentence{"pin-card-says", {{"tries", std::vector{tries}}}});
    return pin_from_terminal(card.reader);
}

} // namespace cli
