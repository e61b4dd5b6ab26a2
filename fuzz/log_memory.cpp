// Stands between the library and the system's calls for files (the linker's --wrap): those on the log reach a text, all
// others the system.
#include "fuzz/input.h"
#include "fuzz/log_file.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstdarg>
#include <utility>

namespace fuzz {

namespace {

std::string log;

// A descriptor that no other file gets. What is not wrapped reaches an empty file.
int log_descriptor() {
    static const int descriptor = ::memfd_create("log", MFD_CLOEXEC);
    return descriptor;
}

} // namespace

const std::string& log_path() {
    static const std::string path = scratch() + "/zvRenew.log";
    return path;
}

std::string take_log() {
    return std::exchange(log, {});
}

} // namespace fuzz

extern "C" {

int __real_open(const char* path, int flags, ...);
int __real_close(int file);
int __real_statx(int file, const char* path, int flags, unsigned asked, struct statx* status);
int __real_ftruncate(int file, off_t length);
uid_t __real_geteuid();
ssize_t __real_write(int file, const void* bytes, size_t count);
ssize_t __real_writev(int file, const iovec* parts, int count);

int __wrap_open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = va_arg(rest, mode_t);
    va_end(rest);
    return path == fuzz::log_path() ? fuzz::log_descriptor() : __real_open(path, flags, mode);
}

int __wrap_close(int file) {
    return file == fuzz::log_descriptor() ? 0 : __real_close(file);
}

int __wrap_statx(int file, const char* path, int flags, unsigned asked, struct statx* status) {
    if (file != fuzz::log_descriptor()) return __real_statx(file, path, flags, asked, status);
    *status = {};
    status->stx_mode = S_IFREG | S_IRUSR | S_IWUSR;
    status->stx_uid = ::geteuid();
    status->stx_size = fuzz::log.size();
    return 0;
}

uid_t __wrap_geteuid() {
    static const uid_t own = __real_geteuid();
    return own;
}

int __wrap_ftruncate(int file, off_t length) {
    if (file != fuzz::log_descriptor()) return __real_ftruncate(file, length);
    fuzz::log.resize(static_cast<std::size_t>(length));
    return 0;
}

ssize_t __wrap_write(int file, const void* bytes, size_t count) {
    if (file != fuzz::log_descriptor()) return __real_write(file, bytes, count);
    fuzz::log.append(static_cast<const char*>(bytes), count);
    return static_cast<ssize_t>(count);
}

ssize_t __wrap_writev(int file, const iovec* parts, int count) {
    if (file != fuzz::log_descriptor()) return __real_writev(file, parts, count);
    const std::size_t before = fuzz::log.size();
    for (const iovec* part = parts; part != parts + count; ++part)
        fuzz::log.append(static_cast<const char*>(part->iov_base), part->iov_len);
    return static_cast<ssize_t>(fuzz::log.size() - before);
}
}
