#pragma once

#include <unistd.h>

#include <cerrno>

namespace cli {

// One byte at a time: no buffer of the C library keeps a copy of a PIN. -1 when it cannot be read, 0 at the end.
inline ssize_t read_char(int fd, char& c) {
    ssize_t got = 0;
    do
        got = ::read(fd, &c, 1);
    while (got < 0 && errno == EINTR);
    return got;
}

} // namespace cli
