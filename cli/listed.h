#pragma once

#include "cli/engine.h"
#include "cli/json.h"
#include "host/card_status.h"

#include <string>

namespace cli {

[[nodiscard]] std::string in_words(const CardList& list);
[[nodiscard]] Json as_json(const CardList& list);
// The same without what a new pair would be called.
[[nodiscard]] Json contents_json(const CardList& list);

} // namespace cli
