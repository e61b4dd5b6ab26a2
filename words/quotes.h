#pragma once

#include <string>
#include <string_view>

namespace words {

// What an Italian text of the library means, in English; empty where that is not known.
[[nodiscard]] std::string meaning_of(std::string_view italian);

} // namespace words
