#include "crypt/config.h"

#include "built_in_cards.h"
#include "crypt/failure.h"
#include "crypt/files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <optional>
#include <tuple>

namespace zvcrypt {
namespace {

constexpr off_t LARGEST_TABLE = off_t{8} * 1024 * 1024;
constexpr const char* SYSTEM_CONFIGURATION = ZV_SYSCONFDIR "/" ZVC_CONFIGURATION_FILE;

// The environment belongs to the caller, not to the owner of a set-user-id program.
std::string environment(const char* name) {
#ifdef __GLIBC__
    const char* value = ::secure_getenv(name);
#else
    const char* value = ::issetugid() != 0 ? nullptr : std::getenv(name);
#endif
    return value == nullptr ? std::string() : std::string(value);
}

std::string read_table(const std::string& path) {
    InputFile file(path, Links::followed, ZVC_ERR_CONFIG_FILE);
    if (file.size() > LARGEST_TABLE)
        throw Failure(ZVC_ERR_CONFIG_FILE, path + " è troppo grande (più di 8 MiB)");
    std::string text(static_cast<std::size_t>(file.size()), '\0');
    text.resize(file.read({reinterpret_cast<unsigned char*>(text.data()), text.size()}));
    return text;
}

// What tells one state of a file from another: where it is, its size, when it and its inode were changed.
using FileState = std::tuple<dev_t, ino_t, off_t, time_t, long, time_t, long>;

// Nothing when there is no file, or when it was written so lately that its times may not show the next change.
std::optional<FileState> settled_state(const std::string& path) {
    constexpr time_t coarsest_clock = 2;
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
#ifdef __APPLE__
    const timespec written = status.st_mtimespec, changed = status.st_ctimespec;
#else
    const timespec written = status.st_mtim, changed = status.st_ctim;
#endif
    if (std::time(nullptr) - written.tv_sec < coarsest_clock) return std::nullopt;
    return FileState{status.st_dev,   status.st_ino,  status.st_size, written.tv_sec,
                     written.tv_nsec, changed.tv_sec, changed.tv_nsec};
}

// The table in a file, parsed once for each state of it.
class TableFile {
  public:
    explicit TableFile(SoftwareReaders readers) : readers_(readers) {}

    [[nodiscard]] const Table& load(const std::string& path) {
        // Asked before it is read: a change in between only makes the next lookup read it again.
        const auto state = settled_state(path);
        if (!state || state != state_ || path != path_) {
            state_.reset();
            table_ = parse_table(read_table(path), path, readers_);
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

std::optional<std::string> user_configuration() {
    if (const std::string base = environment("XDG_CONFIG_HOME"); base.starts_with('/'))
        return base + "/" ZVC_CONFIGURATION_FILE;
    if (const std::string home = environment("HOME"); !home.empty())
        return home + "/" ZVC_CONFIGURATION_HOME "/" ZVC_CONFIGURATION_FILE;
    return std::nullopt;
}

bool exists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

std::optional<std::string> configuration_path() {
    if (std::string named = environment(ZVC_CONFIGURATION_VARIABLE); named == "/dev/null")
        return std::nullopt;
    else if (!named.empty())
        return named;
    if (auto user = user_configuration(); user && exists(*user)) return user;
    if (exists(SYSTEM_CONFIGURATION)) return SYSTEM_CONFIGURATION;
    return std::nullopt;
}

} // namespace

const Table& load_configuration() {
    static const auto& none = undying<Table>();
    static auto& file = undying<TableFile>(SoftwareReaders::allowed);
    const auto path = configuration_path();
    return path ? file.load(*path) : none;
}

const Table& load_host_table(const std::string& folder) {
    static auto& file = undying<TableFile>(SoftwareReaders::refused);
    return file.load(folder + "/atr.ini");
}

const Table& built_in_table() {
    static const auto& table =
        undying<Table>(parse_table(BUILT_IN_CARDS, "cards.ini", SoftwareReaders::refused));
    return table;
}

} // namespace zvcrypt
