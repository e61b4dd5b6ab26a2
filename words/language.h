#pragma once

#include <array>
#include <filesystem>
#include <string>

namespace words {

// What there are words in; the sentences are written in the first.
inline constexpr std::array<const char*, 2> LANGUAGES{"en", "it"};

// What this user's environment asks for, of these. In the C locale it is the first.
[[nodiscard]] std::string usual_language();

// From now on, sentences are in this language; the catalogues are in the folder.
void speak(const std::string& language, const std::filesystem::path& folder);

[[nodiscard]] std::string spoken_language();

// A text of a face itself, in the language that is spoken.
[[nodiscard]] std::string tr(const char* english);

} // namespace words

// What a translator gets to see, and is translated elsewhere. The catalogue's tools look for the name.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage,readability-identifier-naming)
#define N_(text) text
