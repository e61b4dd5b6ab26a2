#include "host/link_folder.h"

#include "host/environment.h"
#include "zvConstants.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace fs = std::filesystem;

namespace zvhost {
namespace {

// The path goes through the library, whose texts have their limits.
constexpr std::size_t LONGEST_BASE = 128;

bool is_plain(const std::string& path) {
    return path.starts_with('/') && path.size() <= LONGEST_BASE &&
           path.find(ZV_MODULE_PATH_MARK) == std::string::npos &&
           std::all_of(path.begin(), path.end(), [](char c) { return c > ' ' && c <= '~'; });
}

// The user's folder for what lasts as long as a session, or the one for everybody.
std::string base_folder() {
    const std::string own = environment("XDG_RUNTIME_DIR");
    struct stat status {};
    const bool usable = is_plain(own) && ::stat(own.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                        status.st_uid == ::geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return usable ? own : "/tmp";
}

struct LinkFolder {
    pid_t owner = ::getpid();
    std::string path;
};

// It outlasts whatever runs when the process ends.
LinkFolder*& link_folder() {
    static LinkFolder* folder = nullptr;
    return folder;
}

void remove_link_folder() {
    const LinkFolder* folder = link_folder();
    if (folder == nullptr || folder->owner != ::getpid()) return;
    std::error_code none;
    fs::remove_all(folder->path, none);
}

std::string make_folder() {
    std::string path = base_folder() + "/zvrenew-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) return {};
    (void)std::atexit(remove_link_folder);
    return path;
}

// A child of the process has a folder of its own: its parent's may go at any time.
std::string own_folder() {
    LinkFolder*& folder = link_folder();
    if (folder == nullptr || folder->owner != ::getpid()) {
        delete folder;
        folder = new LinkFolder{::getpid(), make_folder()};
    }
    return folder->path;
}

} // namespace

fs::path link_named(const std::string& name, const fs::path& file) {
    const fs::path folder = own_folder();
    if (folder.empty()) return {};
    fs::path link = folder / name;
    std::error_code failure;
    if (fs::read_symlink(link, failure) == file) return link;
    fs::remove(link, failure);
    fs::create_symlink(file, link, failure);
    return failure ? fs::path() : link;
}

} // namespace zvhost
