#include "config.h"

#include "built_in_cards.h"
#include "files.h"

#include <cstdlib>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zvcrypt {
namespace {

constexpr off_t largestTable = 1024 * 1024;
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
    if (file.size() > largestTable) throw Failure(ZVC_ERR_CONFIG_FILE, path + " è troppo grande");
    std::string text(static_cast<std::size_t>(file.size()), '\0');
    text.resize(file.read({reinterpret_cast<unsigned char*>(text.data()), text.size()}));
    return text;
}

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

Table loadConfiguration() {
    const auto path = configurationPath();
    return path ? parseTable(readTable(*path), *path, SoftwareReaders::allowed) : Table{};
}

Table loadHostTable(const std::string& folder) {
    const std::string path = folder + "/atr.ini";
    return parseTable(readTable(path), path, SoftwareReaders::refused);
}

Table builtInTable() {
    return parseTable(builtInCards, "cards.ini", SoftwareReaders::refused);
}

} // namespace zvcrypt
