#include "host/file_writing.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace zvhost {
namespace {

constexpr mode_t OWNER_ONLY = 0600;

std::string folder_with_slash(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

// Not every file system has something to do here; one that has and cannot did not take the file.
int synced(int fd) {
    const bool nothing_to_do = ::fsync(fd) == 0 || errno == EINVAL || errno == EROFS || errno == ENOTSUP;
    return nothing_to_do ? 0 : errno;
}

int write_whole(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(fd, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return synced(fd);
}

} // namespace

int make_file(const std::string& path, std::string_view text, mode_t mode) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (fd < 0) return errno;
    const int error = write_whole(fd, text);
    ::close(fd);
    if (error != 0) ::unlink(path.c_str());
    return error;
}

int sync_folder_of(const std::string& path) {
    const int fd = ::open(folder_with_slash(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return 0;
    const int error = synced(fd);
    ::close(fd);
    return error;
}

std::string draft_beside(const std::string& path) {
    std::string draft = folder_with_slash(path) + ".zvrenew-" + std::to_string(::getpid());
    ::unlink(draft.c_str());
    return draft;
}

int replace_file(const std::string& path, std::string_view text) {
    const std::string draft = draft_beside(path);
    if (const int error = make_file(draft, text, OWNER_ONLY); error != 0) return error;
    if (::rename(draft.c_str(), path.c_str()) == 0) return sync_folder_of(path);
    const int error = errno;
    ::unlink(draft.c_str());
    return error;
}

} // namespace zvhost
