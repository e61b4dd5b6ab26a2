#include "cli/note.h"

#include "cli/status_line.h"
#include "host/printable.h"
#include "words/words.h"

#include <fmt/format.h>

#include <cstdio>

namespace cli {

void note(const std::string& line) {
    clear_status_line();
    fmt::print(stderr, "{}\n", printable(line));
    (void)std::fflush(stderr);
}

void note(const Sentence& sentence) {
    note(words::of(sentence));
}

} // namespace cli
