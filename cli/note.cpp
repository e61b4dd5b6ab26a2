#include "cli/note.h"

#include <fmt/format.h>

#include <cstdio>

namespace cli {

std::string printable(std::string text) {
    for (char& c : text)
        if ((static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F) c = '?';
    return text;
}

void note(const std::string& line) {
    fmt::print(stderr, "{}\n", printable(line));
    (void)std::fflush(stderr);
}

} // namespace cli
