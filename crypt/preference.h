#pragma once

#include "crypt/certificate.h"

#include <ctime>
#include <string>
#include <tuple>

namespace zvcrypt {

// Which of a key's certificates speaks for it: one that is valid at that time rather than one that is not,
// then the one that ends later, then the one that begins later; the encoding settles what is left. The
// greatest wins.
using Preference = std::tuple<bool, std::string, std::string, Bytes>;

[[nodiscard]] Preference preference_of(const Certificate& certificate, std::time_t time);

} // namespace zvcrypt
