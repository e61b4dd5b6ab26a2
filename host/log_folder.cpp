#include "host/log_folder.h"

#include "routines/diag.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace zvhost {

std::string log_path() {
    return getLogPath();
}

void log_to(const std::string& path) {
    constexpr std::size_t room = 513; // of the library's buffer
    if (path.size() < room) std::memcpy(getLogPath(), path.c_str(), path.size() + 1);
}

Sentence make_log_folder() {
    const std::string log = log_path();
    const std::string folder = log.substr(0, log.rfind('/'));
    if (folder.empty() || mkdir(folder.c_str(), S_IRWXU) == 0) return {};
    const int reason = errno;
    struct stat status {};
    if (reason == EEXIST && stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return {};
    return Sentence{"no-log", {{"folder", folder}, {"reason", std::strerror(reason)}}};
}

} // namespace zvhost
