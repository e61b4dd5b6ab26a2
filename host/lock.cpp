#include "host/lock.h"

#include "host/error.h"
#include "zvConstants.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#ifndef __APPLE__
#include <sys/sysmacros.h>
#endif
#include <unistd.h>

namespace zvhost {
namespace {

constexpr mode_t FOR_EVERY_USER = 0644; // locking takes no more than reading
constexpr int MOST_ATTEMPTS = 100;

constexpr int SELDOM_REACHED = 100;

int open_lock_file(const std::string& path) {
    int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0 && errno == ENOENT) {
        fd = ::open(path.c_str(), O_RDONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, FOR_EVERY_USER);
        if (fd >= 0) (void)::fchmod(fd, FOR_EVERY_USER);
    }
    if (fd < 0) return fd;
    return out_of_reach(fd);
}

bool is_named(int fd, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(fd, &open) == 0 && ::lstat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

// The system lists the locks; 0 where it does not.
int locker_of(int fd) {
    struct stat status {};
    if (::fstat(fd, &status) != 0) return 0;
#ifndef __APPLE__
    const std::string file =
        fmt::format(" {:02x}:{:02x}:{} ", major(status.st_dev), minor(status.st_dev), status.st_ino);
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        std::istringstream words(line);
        std::string number, kind, way, access;
        int process = 0;
        if (line.find(file) != std::string::npos && words >> number >> kind >> way >> access >> process &&
            kind == "FLOCK")
            return process;
    }
#endif
    return 0;
}

[[noreturn]] void refuse_second(int fd, const std::string& busy) {
    const int process = locker_of(fd);
    const std::vector<Sentence> who =
        process > 0 ? std::vector{Sentence{"busy-process", {{"process", long{process}}}}}
                    : std::vector<Sentence>{};
    throw Error(Exit::refused, Sentence{busy, {{"who", who}}},
                Advice{"wait",
                       Sentence{"run-when-ended", {}},
                       {{"process", process > 0 ? Value(long{process}) : Value()}}});
}

[[noreturn]] void refuse_unusable(const std::string& path, int error) {
    throw Error(Exit::refused, Sentence{"lock-unusable", {{"file", path}, {"reason", std::strerror(error)}}},
                Advice{"free-tmp", Sentence{"free-name", {{"file", path}}}, {{"file", path}}});
}

ScopedFd acquire(const std::string& path, const std::string& busy) {
    // A program that ends removes the file, which may be the one that was just opened here.
    for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
        ScopedFd file(open_lock_file(path));
        if (!file && errno == EEXIST) continue;
        if (!file) refuse_unusable(path, errno);
        if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) refuse_second(file.get(), busy);
        if (is_named(file.get(), path)) return file;
    }
    refuse_unusable(path, EEXIST);
}

} // namespace

int out_of_reach(int fd) {
    const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, SELDOM_REACHED);
    ::close(fd);
    return moved;
}

int process_that_locks(const std::string& path) {
    const ScopedFd file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return file ? locker_of(file.get()) : 0;
}

Value owner_of(unsigned int user) {
    const passwd* entry = ::getpwuid(user);
    if (entry != nullptr) return std::string(entry->pw_name);
    return std::vector{Sentence{"user-without-name", {{"number", long{user}}}}};
}

Lock::Lock(const std::string& name, const std::string& busy)
    : path_(ZV_TEMP_FOLDER "/zvrenew-" + name + ".lock"), file_(acquire(path_, busy)) {}

Lock::~Lock() {
    if (holds()) ::unlink(path_.c_str());
}

bool Lock::holds() const {
    return is_named(file_.get(), path_);
}

} // namespace zvhost
