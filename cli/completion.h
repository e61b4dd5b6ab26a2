#pragma once

#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the parser library's own name
class App;
}

namespace cli {

// What the last word on a command line of the program could become, one a line: the word, a tab, what it means. Empty
// where it is a file's name or any text.
[[nodiscard]] std::string completions(const CLI::App& program, const std::vector<std::string>& words);

} // namespace cli
