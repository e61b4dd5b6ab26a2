#include "cli/status_line.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>

namespace cli {
namespace {

std::mutex writing;
std::size_t shown = 0; // how long the line is that is there

void overwrite(const std::string& text) {
    fmt::print(stderr, "\r{:<{}}\r{}", "", shown, text);
    (void)std::fflush(stderr);
    shown = text.size();
}

} // namespace

void show_status_line(const std::string& text) {
    if (::isatty(STDERR_FILENO) != 1) return;
    const std::lock_guard only_one(writing);
    overwrite(text);
}

void clear_status_line() {
    const std::lock_guard only_one(writing);
    if (shown > 0) overwrite("");
}

} // namespace cli
