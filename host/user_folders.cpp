#include "host/user_folders.h"

#include "host/environment.h"

#include <pwd.h>
#include <unistd.h>

namespace zvhost {
namespace {

std::string users_folder(const char* name, const char* below_home) {
    if (std::string given = environment(name); given.starts_with('/')) return given;
    const passwd* entry = ::getpwuid(::getuid());
    if (entry == nullptr || entry->pw_dir == nullptr || entry->pw_dir[0] != '/') return {};
    return std::string(entry->pw_dir) + below_home;
}

} // namespace

std::string state_folder() {
    return users_folder("XDG_STATE_HOME", "/.local/state");
}

std::string configuration_folder() {
    return users_folder("XDG_CONFIG_HOME", "/.config");
}

} // namespace zvhost
