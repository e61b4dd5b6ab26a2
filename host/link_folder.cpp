#include "host/link_folder.h"

#include "host/environment.h"
#include "host/lock.h"
#include "host/scoped_fd.h"
#include "zvConstants.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace fs = std::filesystem;

namespace zvhost {
namespace {

constexpr const char* BEGINNING = "zvrenew-front-";

// The path goes through the library, whose texts have their limits.
constexpr std::size_t LONGEST_BASE = 128;

// A new folder is not held yet for a moment.
constexpr std::time_t SECONDS_TO_TAKE_HOLD = 60;

bool is_plain(const std::string& path) {
    return path.starts_with('/') && path.size() <= LONGEST_BASE &&
           path.find(ZV_MODULE_PATH_MARK) == std::string::npos &&
           std::all_of(path.begin(), path.end(), [](char c) { return c > ' ' && c <= '~'; });
}

// Whether a folder is the user's and nobody else can enter it.
bool is_private(const std::string& path, struct stat& status) {
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

// The user's folder for what lasts as long as a session, or the one for everybody.
std::string base_folder() {
    const std::string own = environment("XDG_RUNTIME_DIR");
    struct stat status {};
    return is_plain(own) && is_private(own, status) ? own : "/tmp";
}

int open_folder(const std::string& folder) {
    return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

bool take_hold(int folder) {
    return folder >= 0 && ::flock(folder, LOCK_EX | LOCK_NB) == 0;
}

// Of its links alone: whatever else is in it is not ours.
void remove_folder(const fs::path& folder) {
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(folder, none))
        if (entry.is_symlink(none)) fs::remove(entry.path(), none);
    (void)::rmdir(folder.c_str());
}

void remove_if_left(const fs::path& folder) {
    struct stat status {};
    if (!folder.filename().native().starts_with(BEGINNING) || !is_private(folder, status)) return;
    if (std::time(nullptr) - status.st_mtime < SECONDS_TO_TAKE_HOLD) return;
    const ScopedFd held(open_folder(folder));
    if (take_hold(held.get())) remove_folder(folder);
}

void remove_what_was_left(const std::string& base) {
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(base, none))
        remove_if_left(entry.path());
}

struct LinkFolder {
    pid_t owner = ::getpid();
    std::string path;
    int held = -1; // as long as the process lives
};

// It outlasts whatever runs when the process ends.
LinkFolder*& link_folder() {
    static LinkFolder* folder = nullptr;
    return folder;
}

void remove_link_folder() {
    const LinkFolder* folder = link_folder();
    if (folder != nullptr && folder->owner == ::getpid()) remove_folder(folder->path);
}

LinkFolder* make_link_folder() {
    const std::string base = base_folder();
    remove_what_was_left(base);
    std::string path = base + "/" + BEGINNING + "XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) return nullptr;
    (void)std::atexit(remove_link_folder);
    const int held = out_of_reach(open_folder(path));
    (void)take_hold(held);
    return new LinkFolder{::getpid(), path, held};
}

// A child of the process uses its parent's, as long as that is there.
std::string folder_of_links() {
    LinkFolder*& folder = link_folder();
    std::error_code none;
    if (folder == nullptr || !fs::is_directory(folder->path, none)) {
        delete folder;
        folder = make_link_folder();
    }
    return folder == nullptr ? "" : folder->path;
}

} // namespace

bool has_link_folder() {
    return !folder_of_links().empty();
}

fs::path link_named(const std::string& name, const fs::path& file) {
    const fs::path folder = folder_of_links();
    if (folder.empty()) return {};
    fs::path link = folder / name;
    std::error_code failure;
    if (fs::read_symlink(link, failure) == file) return link;
    fs::remove(link, failure);
    fs::create_symlink(file, link, failure);
    return failure ? fs::path() : link;
}

} // namespace zvhost
