#include "cli/pin_terminal.h"

#include "cli/ending_signals.h"
#include "cli/read_char.h"
#include "host/error.h"
#include "host/scoped_fd.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace cli {
namespace {

constexpr char END_OF_TEXT = 3;  // Ctrl-C
constexpr char END_OF_INPUT = 4; // Ctrl-D
constexpr char BACKSPACE = 8;
constexpr char KILL_LINE = 21; // Ctrl-U
constexpr char QUIT = 28;      // Ctrl and a backslash
constexpr char DEL = 127;

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
    while (signals.input(terminal) && read_char(terminal, c) == 1 && !ends(c)) {
        if (c == BACKSPACE || c == DEL)
            pin.remove_last();
        else if (c == KILL_LINE)
            pin.wipe();
        else
            pin.add(c);
    }
    say(terminal, "\n");
    if (c != '\n' && c != '\r') throw Error(Exit::refused, Sentence("pin-stopped", {}));
    return pin;
}

} // namespace

Pin pin_from_terminal(const std::string& prompt) {
    const ScopedFd terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!terminal)
        throw Error(Exit::refused, Sentence{"no-terminal", {}}, Advice{"pin-file", Sentence{"pin-file", {}}});
    return typed(terminal.get(), prompt);
}

} // namespace cli
