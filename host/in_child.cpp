#include "host/in_child.h"

#include "host/scoped_fd.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <optional>

namespace zvhost {
namespace {

using Clock = std::chrono::steady_clock;

void tell_all(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(fd, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) ::_exit(1);
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

[[noreturn]] void be_child(int fd, const std::function<void(const Tell&)>& work) {
    if (const int nowhere = ::open("/dev/null", O_RDWR); nowhere >= 0) {
        ::dup2(nowhere, STDOUT_FILENO);
        ::dup2(nowhere, STDERR_FILENO);
    }
    try {
        work([fd](std::string_view text) { tell_all(fd, text); });
    } catch (...) {
        ::_exit(1);
    }
    ::_exit(0);
}

int milliseconds_until(Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return static_cast<int>(std::max<decltype(left)>(left, 0));
}

// False when the time was over before the end came.
bool listen(int fd, Clock::time_point end, std::string& told) {
    std::array<char, 4096> piece{};
    for (;;) {
        pollfd waiting{fd, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, milliseconds_until(end));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;
        const ssize_t count = ::read(fd, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return true;
        told.append(piece.data(), static_cast<std::size_t>(count));
    }
}

int signal_that_ended(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return 0;
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

} // namespace

ChildAnswer in_child(const std::function<void(const Tell&)>& work, int most_seconds) {
    ChildAnswer answer;
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return {{}, 0, true};
    const ScopedFd from(ends[0]);
    std::optional<ScopedFd> to(std::in_place, ends[1]);
    for (const int fd : ends)
        (void)::fcntl(fd, F_SETFD, FD_CLOEXEC);
    (void)std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) return {{}, 0, true};
    if (child == 0) be_child(to->get(), work);
    to.reset();
    answer.late = !listen(from.get(), Clock::now() + std::chrono::seconds(most_seconds), answer.told);
    if (answer.late) ::kill(child, SIGKILL);
    answer.signal = signal_that_ended(child);
    return answer;
}

} // namespace zvhost
