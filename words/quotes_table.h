#pragma once

#include <span>

namespace words {

// A text that the library, or the crypto library, leaves for the user, and what it means. "{}" is anything; what stands
// there may be such a text itself.
struct Quote {
    const char* italian;
    const char* meaning;
};

[[nodiscard]] std::span<const Quote> quotes();

} // namespace words
