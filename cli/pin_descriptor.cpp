#include "cli/pin_descriptor.h"

#include "cli/read_char.h"
#include "host/error.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace cli {
namespace {

void refuse_descriptor(int fd, const char* why) {
    throw Error(Exit::refused,
                Sentence("pin-descriptor-unread", {{"descriptor", long{fd}}, {"reason", std::string(why)}}));
}

// Standard input stays open, so that no file gets its number.
void close_descriptor(int fd) {
    if (fd != STDIN_FILENO) {
        ::close(fd);
        return;
    }
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing < 0) return;
    ::dup2(nothing, fd);
    ::close(nothing);
}

Pin line_from(int fd) {
    Pin pin;
    char c = 0;
    ssize_t got = 0;
    while (!pin.full() && (got = read_char(fd, c)) == 1 && c != '\n')
        pin.add(c);
    c = '\0';
    if (got < 0) refuse_descriptor(fd, std::strerror(errno));
    if (pin.view().ends_with('\r')) pin.remove_last();
    return pin;
}

} // namespace

Pin pin_from_descriptor(int fd) {
    if (fd == STDOUT_FILENO || fd == STDERR_FILENO) refuse_descriptor(fd, "it is for what the program says");
    if (::fcntl(fd, F_GETFD) == -1) refuse_descriptor(fd, std::strerror(errno));
    if (::isatty(fd) == 1) refuse_descriptor(fd, "it is a terminal, which would show the PIN");
    Pin pin = line_from(fd);
    close_descriptor(fd);
    check_pin_form(pin);
    return pin;
}

} // namespace cli
