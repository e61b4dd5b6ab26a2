#include "host/new_file.h"

#include "host/error.h"
#include "host/file_writing.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zvhost {
namespace {

constexpr mode_t READABLE_BY_ALL = 0644;
constexpr mode_t READABLE_BY_OWNER = 0600;

// More than a request or a few certificates need.
constexpr std::size_t ROOM = 65536;

// The functions below give 0, or the error that stopped them.

bool rename_to_new(const char* from, const char* to) {
#ifdef __APPLE__
    return ::renamex_np(from, to, RENAME_EXCL) == 0;
#else
    return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0;
#endif
}

// File systems that cannot rename without replacing know links, or neither, as the ones of memory sticks.
int put(const std::string& from, const std::string& to, std::string_view text, mode_t mode) {
    if (rename_to_new(from.c_str(), to.c_str())) return 0;
    const bool linked = errno != EEXIST && ::link(from.c_str(), to.c_str()) == 0;
    const int error = linked ? 0 : errno;
    ::unlink(from.c_str());
    return linked || error == EEXIST ? error : make_file(to, text, mode);
}

int make_whole(const std::string& path, std::string_view text, mode_t mode) {
    const std::string draft = draft_beside(path);
    if (const int error = make_file(draft, text, mode); error != 0) return error;
    if (const int error = put(draft, path, text, mode); error != 0) return error;
    return sync_folder_of(path);
}

int try_place(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0) return EEXIST;
    if (errno != ENOENT) return errno;
    const std::string draft = draft_beside(path);
    const int error = make_file(draft, std::string(ROOM, '\0'), READABLE_BY_OWNER);
    ::unlink(draft.c_str());
    return error;
}

[[noreturn]] void refuse(const std::string& path, int error) {
    if (error == EEXIST)
        throw Error(Exit::refused, Sentence{"file-there", {{"file", path}}},
                    Advice{"other-file", Sentence{"file-other-name", {}}, {{"file", path}}});
    throw Error(Exit::refused, Sentence{"file-unmade", {{"file", path}, {"reason", std::strerror(error)}}});
}

} // namespace

NewFile::NewFile(std::string path) : path_(std::move(path)) {
    if (const int error = try_place(path_); error != 0) refuse(path_, error);
}

void NewFile::save(std::string_view text, For whom) const {
    const int error = make_whole(path_, text, whom == For::owner ? READABLE_BY_OWNER : READABLE_BY_ALL);
    if (error != 0)
        throw Error(Exit::failed,
                    Sentence{"file-unwritten", {{"file", path_}, {"reason", std::strerror(error)}}});
}

} // namespace zvhost
