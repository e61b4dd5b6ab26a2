#pragma once

#include "host/sentence.h"

#include <string>

namespace words {

// What the engine has to tell, in words.
[[nodiscard]] std::string of(const zvhost::Sentence& sentence);

// Several, one behind the other.
[[nodiscard]] std::string of(const std::vector<zvhost::Sentence>& sentences);

// A kind of certificate, as a part of a sentence.
[[nodiscard]] std::string of(zvhost::Kind kind);

// "YYYY-MM-DD", UTC.
[[nodiscard]] std::string day_of(std::time_t time);

} // namespace words
