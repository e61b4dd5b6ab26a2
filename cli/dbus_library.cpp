#include "cli/dbus_library.h"

#include <dlfcn.h>

namespace cli {
namespace {

constexpr const char* FILE_NAME = "libdbus-1.so.3";

std::string load_problem() {
    const char* reason = ::dlerror();
    return reason != nullptr ? reason : FILE_NAME;
}

template <class Function> bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
    return function != nullptr;
}

DbusLibrary load() {
    DbusLibrary loaded;
    void* library = ::dlopen(FILE_NAME, RTLD_NOW | RTLD_LOCAL);
#define CLI_DBUS_FIND(name) &&find(library, "dbus_" #name, loaded.name)
    const bool whole = library != nullptr CLI_DBUS_FUNCTIONS(CLI_DBUS_FIND);
#undef CLI_DBUS_FIND
    if (!whole) loaded.problem = load_problem();
    return loaded;
}

} // namespace

const DbusLibrary& dbus_library() {
    static const DbusLibrary library = load();
    return library;
}

} // namespace cli
