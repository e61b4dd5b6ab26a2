#include "cli/private_folder.h"

#include "cli/engine.h"
#include "host/error.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace cli {
namespace {

// A new folder is not held yet for a moment.
constexpr std::time_t SECONDS_TO_HOLD = 60;

// Holds the folder as long as the process lives.
bool hold(const ScopedFd& folder) {
    return folder.get() >= 0 && ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

ScopedFd opened(const fs::path& folder) {
    return ScopedFd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// Only the user's own, which nobody else could enter.
bool is_left(const fs::path& folder) {
    struct stat status {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0 &&
           std::time(nullptr) - status.st_mtime >= SECONDS_TO_HOLD;
}

// What a process left that was killed.
void remove_what_is_left(const fs::path& among, const std::string& beginning) {
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(among, none)) {
        if (!entry.path().filename().native().starts_with(beginning) || !is_left(entry.path())) continue;
        const ScopedFd folder = opened(entry.path());
        if (hold(folder)) fs::remove_all(entry.path(), none);
    }
}

} // namespace

PrivateFolder::PrivateFolder(const std::string& name) {
    const fs::path among = fs::temp_directory_path();
    remove_what_is_left(among, name + "-");
    std::string pattern = (among / (name + "-XXXXXX")).string();
    if (::mkdtemp(pattern.data()) == nullptr)
        throw Error(Exit::failed, {"no-folder-made", {{"folder", among.string()}}});
    path_ = pattern;
    held_.emplace(opened(path_));
    (void)hold(*held_);
}

PrivateFolder::~PrivateFolder() {
    std::error_code none;
    fs::remove_all(path_, none);
}

void PrivateFolder::write(const std::string& name, const std::string& text) const {
    std::ofstream file(path_ / name, std::ios::binary);
    file << text;
    if (!file.flush()) throw Error(Exit::failed, {"file-unwritable", {{"file", (path_ / name).string()}}});
}

std::string PrivateFolder::read(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace cli
