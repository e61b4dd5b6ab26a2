#include "cli/twin_programs.h"

#include "cli/engine.h"
#include "host/error.h"
#include "host/installation.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>

#ifdef __APPLE__
#include <crt_externs.h>
#endif

namespace fs = std::filesystem;

namespace cli {
namespace {

constexpr const char* TOOL = "zvsimcard-tool";
#ifdef __APPLE__
constexpr const char* MODULE = "libzvsimcard.dylib";
#else
constexpr const char* MODULE = "libzvsimcard.so";
#endif

// Beside this program, else where the shell would find it.
std::string find_program(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::stringstream folders(program_folder() + ":" + (path != nullptr ? path : ""));
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string file = folder;
        file.append("/").append(name);
        if (folder.starts_with('/') && ::access(file.c_str(), X_OK) == 0) return file;
    }
    return {};
}

char** own_environment() {
#ifdef __APPLE__
    return *_NSGetEnviron();
#else
    return ::environ;
#endif
}

std::vector<std::string> settings_in(const std::string& folder) {
    return {"HOME=" + folder,
            "XDG_CONFIG_HOME=" + folder + "/config",
            "XDG_DATA_HOME=" + folder + "/data",
            "XDG_STATE_HOME=" + folder + "/state",
            "XDG_CACHE_HOME=" + folder + "/cache",
            "ZVCRYPT_CONF=" + folder + "/zvcrypt.conf",
            "ZVSIMCARD_HOME=" + folder + "/cards",
            "PCSCLITE_CSOCK_NAME=" + folder + "/no-service",
            std::string(REHEARSAL_FOLDER) + "=" + folder};
}

std::string name_of(const std::string& setting) {
    return setting.substr(0, setting.find('='));
}

} // namespace

SimulatedCard find_simulated_card() {
    SimulatedCard found{find_program(TOOL), find_module(MODULE)};
    if (found.tool.empty() || found.module.empty())
        throw Error(Exit::refused, {"no-simulated-card", {{"file", found.tool.empty() ? TOOL : MODULE}}},
                    Advice{"install-simcard", {"install-simcard", {}}});
    return found;
}

// The caller's, but for what leads out of the folder. What a test does to a simulated card is meant for the real one.
std::vector<std::string> environment_in(const fs::path& folder) {
    std::vector<std::string> list = settings_in(folder);
    std::vector<std::string> others = {"ZVSIMCARD_TRACE", "ZVSIMCARD_RULES", "ZVSIMCARD_KEYS"};
    std::transform(list.begin(), list.end(), std::back_inserter(others), name_of);
    for (char** entry = own_environment(); *entry != nullptr; ++entry)
        if (std::find(others.begin(), others.end(), name_of(*entry)) == others.end())
            list.emplace_back(*entry);
    return list;
}

} // namespace cli
