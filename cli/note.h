#pragma once

#include "cli/engine.h"
#include "host/sentence.h"

#include <string>

namespace cli {

// Tells the person at the terminal what goes on, on standard error: results alone go to standard output.
void note(const std::string& line);
void note(const Sentence& sentence);

} // namespace cli
