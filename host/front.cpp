#include "host/front.h"

#include "host/environment.h"
#include "host/link_folder.h"
#include "host/module_folder.h"
#include "pkcs11/front_interface.h"
#include "zvConstants.h"

#include <dlfcn.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace zvhost {
namespace {

#ifdef __APPLE__
constexpr const char* FRONT_FILE = "zvrenew/libzvfront.dylib";
#else
constexpr const char* FRONT_FILE = "zvrenew/libzvfront.so";
#endif

// Beside the engine, wherever it is; where that is part of a program, beside what belongs to the program.
std::string find_front() {
    std::vector<fs::path> folders = own_folders();
    Dl_info engine{};
    if (::dladdr(reinterpret_cast<const void*>(&front_file), &engine) != 0 && engine.dli_fname != nullptr)
        folders.insert(folders.begin(), fs::path(engine.dli_fname).parent_path());
    std::error_code none;
    for (const fs::path& folder : folders)
        if (const fs::path found = fs::canonical(folder / FRONT_FILE, none); !none) return found;
    return {};
}

// The front in memory, where it stays: it knows what it has started.
struct Front {
    std::string file = find_front();
    bool unusable = false;
    void* loaded = file.empty() ? nullptr : ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);

    template <class Function> [[nodiscard]] Function function(const char* name) const {
        return loaded == nullptr ? nullptr : reinterpret_cast<Function>(::dlsym(loaded, name));
    }
};

Front& front() {
    static Front one;
    return one;
}

bool stands_before(const std::string& module_path) {
    if (front_file().empty()) return false;
    const auto stand = front().function<pkcs11::StandBefore>(pkcs11::STAND_BEFORE);
    return stand != nullptr && stand(module_path.c_str()) == 0;
}

} // namespace

std::string front_file() {
    const bool usable = front().loaded != nullptr && !front().unusable;
    return usable && environment("ZVRENEW_FRONT") != "off" && has_link_folder() ? front().file : "";
}

std::string module_way(const std::string& module_path) {
    return stands_before(module_path) ? front_file() : module_path;
}

LibraryWay library_way(const std::string& module_path) {
    const fs::path as_it_is = module_path;
    if (stands_before(module_path)) {
        const fs::path link = link_named(as_it_is.filename(), front_file());
        if (!link.empty() && link.native().size() < ZV_MODULE_PATH_SIZE) return {link.parent_path(), link};
        // The library would end a module that the front has open.
        end_modules();
        front().unusable = true;
    }
    return {as_it_is.parent_path(), module_path};
}

void end_modules() {
    if (const auto let_go = front().function<pkcs11::LetGo>(pkcs11::LET_GO)) let_go();
}

} // namespace zvhost
