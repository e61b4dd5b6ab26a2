#pragma once

#include "cli/card_json.h"
#include "cli/engine.h"
#include "host/card_status.h"

#include <string>

namespace cli {

[[nodiscard]] std::string in_words(const CardList& list);

} // namespace cli
