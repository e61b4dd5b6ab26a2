#include "host/module_folder.h"

#include "host/error.h"
#include "host/installation.h"
#include "zvRenew.h"

#ifdef __APPLE__
#include <mach-o/dyld.h>

#include <cstdint>
#endif

namespace fs = std::filesystem;

namespace zvhost {
namespace {

bool holds(const fs::path& folder, const std::string& module) {
    std::error_code none;
    return fs::is_regular_file(folder / module, none);
}

std::string listed(const std::vector<fs::path>& folders) {
    std::string text;
    for (const fs::path& folder : folders)
        text += (text.empty() ? "" : ", ") + folder.string();
    return text;
}

} // namespace

std::string program_path() {
    std::error_code none;
#ifdef __APPLE__
    std::string path(4096, '\0');
    auto size = static_cast<std::uint32_t>(path.size());
    if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
    return fs::weakly_canonical(path.c_str(), none);
#else
    return fs::read_symlink("/proc/self/exe", none);
#endif
}

std::string program_folder() {
    return fs::path(program_path()).parent_path();
}

std::string find_module(const std::string& file_name) {
    for (const fs::path& folder : module_folders())
        if (holds(folder, file_name)) return folder / file_name;
    return {};
}

std::vector<fs::path> own_folders() {
    const fs::path own = program_folder();
    if (own.empty()) return {};
    const fs::path prefix = own.parent_path();
    return {prefix / "lib", prefix / ZV_INSTALL_LIBDIR, prefix / ZV_INSTALL_LIBDIR / "pkcs11"};
}

std::vector<fs::path> module_folders() {
    std::vector<fs::path> folders = own_folders();
#ifdef __APPLE__
    const auto system = {"/usr/local/lib", "/opt/homebrew/lib", "/usr/lib"};
#else
    const auto system = {"/usr/local/lib",
                         "/usr/lib/" ZV_LIBRARY_ARCHITECTURE "/pkcs11",
                         "/usr/lib/" ZV_LIBRARY_ARCHITECTURE,
                         "/usr/lib64/pkcs11",
                         "/usr/lib64",
                         "/usr/lib/pkcs11",
                         "/usr/lib"};
#endif
    folders.insert(folders.end(), system.begin(), system.end());
    return folders;
}

fs::path folder_of_module(const std::string& module, const std::string& given) {
    const std::vector<fs::path> folders = given.empty() ? module_folders() : std::vector<fs::path>{given};
    for (const fs::path& folder : folders) {
        if (!holds(folder, module)) continue;
        fs::path found = fs::absolute(folder).lexically_normal();
        if (found.native().size() > ZV_MODULE_DIR_MAX)
            throw Error(Exit::refused, Sentence{"module-folder-long", {{"most", long{ZV_MODULE_DIR_MAX}}}});
        return found;
    }
    throw Error(Exit::refused, Sentence{"module-missing", {{"module", module}, {"folders", listed(folders)}}},
                Advice{"module-dir", Sentence{"module-install", {}}, {{"module", module}}});
}

} // namespace zvhost
