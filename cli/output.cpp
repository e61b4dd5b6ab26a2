#include "cli/output.h"

#include "cli/engine.h"
#include "host/error.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace cli {

bool open_standard_descriptors() {
    const bool output = ::fcntl(STDOUT_FILENO, F_GETFD) != -1;
    // The lowest free number is given. Not for writing: what would be lost is to fail.
    int last = STDIN_FILENO;
    while (last >= STDIN_FILENO && last <= STDERR_FILENO)
        last = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (last > STDERR_FILENO) ::close(last);
    return output;
}

void print_out(const std::string& text) {
    errno = 0;
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
    throw Error(Exit::failed, Sentence{"output-full", {{"reason", std::strerror(errno)}}},
                Advice{"other-output", Sentence{"output-elsewhere", {}}});
}

} // namespace cli
