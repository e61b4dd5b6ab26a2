#pragma once

#include "cli/engine.h"
#include "host/on_card.h"

#include <string>

namespace cli {

// "DS0 (certificate and keys), DS3 (keys without a certificate)"
[[nodiscard]] std::string in_words(const OnCard& contents);

} // namespace cli
