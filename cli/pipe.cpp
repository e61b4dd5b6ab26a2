#include "cli/pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace cli {

std::array<int, 2> Pipe::opened() {
    std::array<int, 2> ends{-1, -1};
    if (::pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    for (const int end : ends)
        (void)::fcntl(end, F_SETFD, FD_CLOEXEC);
    return ends;
}

} // namespace cli
