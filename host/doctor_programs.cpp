#include "host/doctor_looks.h"
#include "host/place.h"
#include "host/processes.h"
#include "routines/diag.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <openssl/crypto.h>

#include <filesystem>

namespace zvhost {
namespace {

std::vector<std::string> module_files(const Looks& looks) {
    std::vector<std::string> files;
    std::error_code none;
    for (const auto& [path, facts] : looks.modules)
        files.push_back(std::filesystem::weakly_canonical(path, none));
    return files;
}

void tell_program(Looks& looks, const CardProcess& one) {
    const Values values = {{"program", one.program}, {"process", one.id}, {"library", one.mapped}};
    looks.add("programs", Health::warning, "doctor-program", values,
              {one.program == "scdaemon" ? advise("close-program", "doctor-end-scdaemon", values)
                                         : advise("close-program", "doctor-close-program", values)});
}

// The file that a function of a library was loaded from, past the links to it.
std::string file_of(const void* function) {
    Dl_info found{};
    if (::dladdr(function, &found) == 0 || found.dli_fname == nullptr) return {};
    std::error_code none;
    return std::filesystem::weakly_canonical(found.dli_fname, none);
}

void tell_version(Looks& looks, const char* sentence, const std::string& version, const std::string& file) {
    looks.add("versions", Health::right, sentence, {{"version", version}, {"file", file}});
}

void tell_module_version(Looks& looks, const std::string& path, const CK_INFO& info) {
    const auto number = [](const CK_VERSION& version) {
        return fmt::format("{}.{}", unsigned{version.major}, unsigned{version.minor});
    };
    looks.add("versions", Health::right, "doctor-version-module",
              {{"version", number(info.libraryVersion)},
               {"file", path},
               {"description", token_text(info.libraryDescription, sizeof info.libraryDescription)},
               {"maker", token_text(info.manufacturerID, sizeof info.manufacturerID)},
               {"standard", number(info.cryptokiVersion)}});
}

} // namespace

void look_at_programs(Looks& looks) {
    const auto processes = card_processes(module_files(looks));
    if (!processes) return looks.add("programs", Health::unknown, "doctor-programs-unknown");
    for (const CardProcess& one : processes->found)
        tell_program(looks, one);
    if (processes->found.empty())
        looks.add("programs", Health::right, "doctor-programs-none", {{"hidden", processes->hidden}});
}

void look_at_versions(Looks& looks) {
    tell_version(looks, "doctor-version-library",
                 fmt::format("{}.{}.{}", ZV_VERSION_MAJOR, ZV_VERSION_MINOR, ZV_VERSION_PATCH),
                 file_of(reinterpret_cast<const void*>(&getLogPath)));
    tell_version(looks, "doctor-version-crypto", {}, file_of(reinterpret_cast<const void*>(&kvGetReader)));
    tell_version(looks, "doctor-version-openssl", ::OpenSSL_version(OPENSSL_FULL_VERSION_STRING),
                 file_of(reinterpret_cast<const void*>(&::OpenSSL_version)));
    for (const auto& [path, facts] : looks.modules)
        if (facts.info) tell_module_version(looks, path, *facts.info);
}

} // namespace zvhost
