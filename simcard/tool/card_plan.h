#pragma once

#include "simcard/tool/personalise.h"

namespace simcard {

// Refuses a plan with names, texts or numbers that a card cannot have, and fills in what it leaves open.
[[nodiscard]] CardPlan completed(CardPlan plan, const std::filesystem::path& home);

// Whether a card of the folder is in that reader now.
[[nodiscard]] bool holds_a_card(const std::filesystem::path& home, const std::string& reader);

} // namespace simcard
