#include "host/user_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace zvhost {
namespace {

// The environment belongs to the caller, not to the owner of a set-user-id program.
std::string folder_given(const char* name) {
#ifdef __GLIBC__
    const char* value = ::secure_getenv(name);
#else
    const char* value = ::issetugid() != 0 ? nullptr : std::getenv(name);
#endif
    return value != nullptr && value[0] == '/' ? value : "";
}

std::string users_folder(const char* name, const char* below_home) {
    if (std::string given = folder_given(name); !given.empty()) return given;
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
