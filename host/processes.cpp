#include "host/processes.h"

#ifdef __linux__
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#endif

namespace zvhost {
#ifdef __linux__
namespace {

namespace fs = std::filesystem;

// The path that a line of a process's map ends with; empty when it has none.
std::string mapped_path(const std::string& line) {
    const auto at = line.find('/');
    return at == std::string::npos ? "" : line.substr(at);
}

bool speaks_to_cards(const std::string& path, const std::vector<std::string>& modules) {
    const std::string name = path.substr(path.rfind('/') + 1);
    return name.starts_with("libpcsclite.so") || name.starts_with("libpcsclite_real.so") ||
           std::find(modules.begin(), modules.end(), path) != modules.end();
}

std::string first_word_of(const fs::path& file) {
    std::string word;
    std::getline(std::ifstream(file), word);
    return word;
}

// Without a look into its memory a process counts as hidden, unless it is the system's own or has ended: neither has
// arguments.
void look_into(const fs::path& process, const std::vector<std::string>& modules, CardProcesses& all) {
    std::ifstream map(process / "maps");
    if (!map) {
        if (!first_word_of(process / "cmdline").empty()) ++all.hidden;
        return;
    }
    for (std::string line; std::getline(map, line);) {
        const std::string path = mapped_path(line);
        if (path.empty() || !speaks_to_cards(path, modules)) continue;
        all.found.push_back({std::stol(process.filename()), first_word_of(process / "comm"), path});
        return;
    }
}

bool is_number(const std::string& text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

} // namespace

std::optional<CardProcesses> card_processes(const std::vector<std::string>& modules) {
    CardProcesses all;
    std::error_code none;
    const std::string own = std::to_string(::getpid());
    bool seen = false;
    for (const auto& entry : fs::directory_iterator("/proc", none)) {
        const std::string name = entry.path().filename();
        if (!is_number(name)) continue;
        seen = true;
        if (name != own) look_into(entry.path(), modules, all);
    }
    std::sort(all.found.begin(), all.found.end(),
              [](const CardProcess& a, const CardProcess& b) { return a.id < b.id; });
    return seen ? std::optional(all) : std::nullopt;
}
#else
std::optional<CardProcesses> card_processes(const std::vector<std::string>&) {
    return std::nullopt;
}
#endif

} // namespace zvhost
