#pragma once

#include "host/sentence.h"

namespace CLI { // NOLINT(readability-identifier-naming): the parser library's own name
class App;
class ParseError;
} // namespace CLI

namespace cli {

// What is wrong with the command line that the parser refused.
[[nodiscard]] zvhost::Sentence mistake_in(const CLI::App& parser, const CLI::ParseError& error);

} // namespace cli
