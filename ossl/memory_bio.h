#pragma once

#include "ossl/owners.h"

#include <string_view>

// OpenSSL reads from and writes to texts in memory through these.
namespace ossl {

// Reads from `text`, which must outlive it.
[[nodiscard]] Bio reading(std::string_view text);

// Collects what is written to it.
[[nodiscard]] Bio writing();

// What was written so far; valid while `target` is and nothing more is written.
[[nodiscard]] std::string_view written(BIO& target);

} // namespace ossl
