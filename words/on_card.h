#pragma once

#include "host/on_card.h"

#include <string>

namespace words {

// "DS0 (certificate and keys), DS3 (keys without a certificate)"
[[nodiscard]] std::string of(const zvhost::OnCard& contents);

} // namespace words
