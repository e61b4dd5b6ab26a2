#pragma once

#include "host/sentence.h"

#include <string>

namespace words {

// Who tells it: a terminal names commands and options, a window what can be chosen in it.
enum class Face { terminal, window };

// From now on; before that it is the terminal.
void face_is(Face face);

// What the engine has to tell, in words.
[[nodiscard]] std::string of(const zvhost::Sentence& sentence);

// In the words of that face, once.
[[nodiscard]] std::string of(const zvhost::Sentence& sentence, Face face);

// Several, one behind the other.
[[nodiscard]] std::string of(const std::vector<zvhost::Sentence>& sentences);

// A kind of certificate, as a part of a sentence.
[[nodiscard]] std::string of(zvhost::Kind kind);

// The same as a heading: "Signature certificate".
[[nodiscard]] std::string title_of(zvhost::Kind kind);

// "YYYY-MM-DD", UTC.
[[nodiscard]] std::string day_of(std::time_t time);

} // namespace words
