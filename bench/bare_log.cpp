#include "bench/bare_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace bench {

std::vector<std::string> entries_of(const std::string& log) {
    std::vector<std::string> entries;
    for (std::size_t at = 0; at < log.size();) {
        const std::size_t end =
            std::min({log.find("\n[", at), log.find("\n**********", at), log.size() - 1}) + 1;
        entries.push_back(log.substr(at, end - at));
        at = end;
    }
    return entries;
}

void write_bare(const std::filesystem::path& log, const std::string& entry) {
    const int file = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (::write(file, entry.data(), entry.size()) < 0) std::perror("log");
    ::close(file);
}

} // namespace bench
