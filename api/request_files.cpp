#include "api/request_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace zv {

namespace {

bool write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

RequestFile::~RequestFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

bool RequestFile::create(std::string_view text) {
    ::unlink(REQUEST_FILE);
    descriptor_ = ::open(REQUEST_FILE, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    keep_out_of_reach();
    return descriptor_ >= 0 && write_all(descriptor_, text);
}

// There are modules that go on using the number of a descriptor that they closed; the lowest free ones are such.
void RequestFile::keep_out_of_reach() {
    constexpr int seldom_reached = 100;
    const int moved = ::fcntl(descriptor_, F_DUPFD_CLOEXEC, seldom_reached);
    if (moved < 0) return;
    ::close(descriptor_);
    descriptor_ = moved;
}

bool RequestFile::is_ours() const {
    struct stat created, named;
    return ::fstat(descriptor_, &created) == 0 && ::lstat(REQUEST_FILE, &named) == 0 &&
           created.st_dev == named.st_dev && created.st_ino == named.st_ino;
}

int open_base64() {
    const int descriptor = ::open(BASE64_FILE, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    struct stat status;
    if (descriptor < 0 || (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))) return descriptor;
    ::close(descriptor);
    return -1;
}

std::size_t read_all(int descriptor, char* out, std::size_t size) {
    std::size_t total = 0;
    while (total < size) {
        const ssize_t got = ::read(descriptor, out + total, size - total);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        total += static_cast<std::size_t>(got);
    }
    return total;
}

void remove_request_files() {
    for (const char* path : {REQUEST_FILE, SIGNED_FILE, BASE64_FILE})
        ::unlink(path);
}

} // namespace zv
