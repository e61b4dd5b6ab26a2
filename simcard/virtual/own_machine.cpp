#include "simcard/virtual/own_machine.h"

#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

namespace simcard {
namespace {

void require(bool done, const char* what) {
    if (!done) throw std::system_error(errno, std::generic_category(), what);
}

void write_line(const char* file, const std::string& line) {
    const int descriptor = ::open(file, O_WRONLY | O_CLOEXEC);
    const bool written = ::write(descriptor, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    require(written, file);
}

// In a user namespace a user may do what only root may outside. It keeps its number.
void enter_user_namespace(int parts) {
    const std::string user = std::to_string(::geteuid()), group = std::to_string(::getegid());
    require(::unshare(CLONE_NEWUSER | parts) == 0, "this user may not have a network and a /run of its own");
    write_line("/proc/self/setgroups", "deny");
    write_line("/proc/self/uid_map", user + " " + user + " 1");
    write_line("/proc/self/gid_map", group + " " + group + " 1");
}

void start_loopback() {
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq loopback{};
    std::strcpy(loopback.ifr_name, "lo");
    loopback.ifr_flags = IFF_UP;
    const bool up = ::ioctl(socket, SIOCSIFFLAGS, &loopback) == 0;
    const int reason = errno;
    ::close(socket);
    errno = reason;
    require(up, "no loopback network");
}

} // namespace

void enter_own_machine() {
    static bool entered = false;
    if (entered) return;
    const int parts = CLONE_NEWNET | CLONE_NEWNS;
    if (::unshare(parts) != 0) enter_user_namespace(parts);
    require(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "mounts stay shared");
    require(::mount("none", "/run", "tmpfs", MS_NOSUID | MS_NODEV, nullptr) == 0, "no /run of its own");
    start_loopback();
    entered = true;
}

} // namespace simcard
