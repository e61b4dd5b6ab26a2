#pragma once

#include "host/card_view.h"
#include "host/install_plan.h"
#include "host/plan.h"
#include "host/request_plan.h"

namespace zvhost {

// Notices that tell of what a later step removes, under the identifier "id" where that is known.
inline constexpr const char* REMOVES_LATER = "renewal-removes-later";
inline constexpr const char* CERTIFICATE_GOES_FIRST = "certificate-goes-first"; // its keys later

// What carrying out a plan does to the objects that a card holds now.
[[nodiscard]] Plan changes_of(const RequestPlan& plan, const CardFacts& card, const CardView& view);
[[nodiscard]] Plan changes_of(const InstallPlan& plan, const CardFacts& card, const CardView& view);

// A plan that changes nothing.
[[nodiscard]] Plan unchanged(const CardFacts& card, const CardView& view);

// An object of the card that goes.
[[nodiscard]] Change removal_of(const CardObject& object, const Sentence& why);

// SHA-256 of bytes, its first four, in hexadecimal.
[[nodiscard]] std::string short_digest(const Bytes& bytes);

// Gives the plan the fingerprint of its changes to what the card holds.
void seal(Plan& plan, const CardView& view);

} // namespace zvhost
