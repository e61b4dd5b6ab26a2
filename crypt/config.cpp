#include "config.h"

#include "built_in_cards.h"
#include "failure.h"
#include "files.h"

#include <cstdlib>
#include <ctime>
#include <optional>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace zvcrypt {
namespace {

constexpr off_t largestTable = off_t{8} * 1024 * 1024;
constexpr const char* systemConfiguration = "/etc/zvcrypt.conf";

// The environment belongs to the caller, not to the owner of a set-user-id program.
std::string environment(const char* name) {
#ifdef __GLIBC__
    const char* value = ::secure_getenv(name);
#else
    const char* value = ::issetugid() != 0 ? nullptr : std::getenv(name);
#endif
    return value == nullptr ? std::string() : std::string(value);
}

std::string readTable(const std::string& path) {
    InputFile file(path, Links::followed, ZVC_ERR_CONFIG_FILE);
    if (file.size() > largestTable)
        throw Failure(ZVC_ERR_CONFIG_FILE, path + " è troppo grande (più di 8 MiB)");
    std::string text(static_cast<std::size_t>(file.size()), '\0');
    text.resize(file.read({reinterpret_cast<unsigned char*>(text.data()), text.size()}));
    return text;
}

// What tells one state of a file from another: where it is, its size, when it and its inode were changed.
using FileState = std::tuple<dev_t, ino_t, off_t, time_t, long, time_t, long>;

// Nothing when there is no file, or when it was written so lately that its times may not show the next change.
std::optional<FileState> settledState(const std::string& path) {
    constexpr time_t coarsestClock = 2;
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
#ifdef __APPLE__
    const timespec written = status.st_mtimespec, changed = status.st_ctimespec;
#else
    const timespec written = status.st_mtim, changed = status.st_ctim;
#endif
    if (std::time(nullptr) - written.tv_sec < coarsestClock) return std::nullopt;
    return FileState{status.st_dev,   status.st_ino,  status.st_size, written.tv_sec,
                     written.tv_nsec, changed.tv_sec, changed.tv_nsec};
}

// The table in a file, parsed once for each state of it.
class TableFile {
  public:
    explicit TableFile(SoftwareReaders readers) : readers_(readers) {}

    [[nodiscard]] const Table& load(const std::string& path) {
        // Asked before it is read: a change in between only makes the next lookup read it again.
        const auto state = settledState(path);
        if (!state || state != state_ || path != path_) {
            state_.reset();
            table_ = parseTable(readTable(path), path, readers_);
            path_ = path;
            state_ = state;
        }
        return table_;
    }

  private:
    SoftwareReaders readers_;
    std::string path_;
    std::optional<FileState> state_;
    Table table_;
};

std::optional<std::string> userConfiguration() {
    if (const std::string base = environment("XDG_CONFIG_HOME"); base.starts_with('/'))
        return base + "/zvcrypt.conf";
    if (const std::string home = environment("HOME"); !home.empty()) return home + "/.config/zvcrypt.conf";
    return std::nullopt;
}

bool exists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

std::optional<std::string> configurationPath() {
    if (std::string named = environment("ZVCRYPT_CONF"); named == "/dev/null")
        return std::nullopt;
    else if (!named.empty())
        return named;
    if (auto user = userConfiguration(); user && exists(*user)) return user;
    if (exists(systemConfiguration)) return systemConfiguration;
    return std::nullopt;
}

} // namespace

const Table& loadConfiguration() {
    static const auto& none = undying<Table>();
    static auto& file = undying<TableFile>(SoftwareReaders::allowed);
    const auto path = configurationPath();
    return path ? file.load(*path) : none;
}

const Table& loadHostTable(const std::string& folder) {
    static auto& file = undying<TableFile>(SoftwareReaders::refused);
    return file.load(folder + "/atr.ini");
}

const Table& builtInTable() {
    static const auto& table =
        undying<Table>(parseTable(builtInCards, "cards.ini", SoftwareReaders::refused));
    return table;
}

} // namespace zvcrypt
