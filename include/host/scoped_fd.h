#pragma once

#include <unistd.h>

#include <utility>

namespace zvhost {

// A file descriptor that is closed with its owner; a negative number stands for none. It can be moved, not copied.
class ScopedFd {
  public:
    explicit ScopedFd(int fd) : fd_(fd) {}
    ScopedFd(ScopedFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    ScopedFd& operator=(ScopedFd&&) = delete;
    ~ScopedFd() {
        if (fd_ >= 0) ::close(fd_);
    }

    [[nodiscard]] int get() const { return fd_; }
    [[nodiscard]] explicit operator bool() const { return fd_ >= 0; }

  private:
    int fd_;
};

} // namespace zvhost
