#pragma once

#include "host/card_status.h"
#include "host/plan.h"
#include "host/renew.h"

#include <vector>

namespace zvhost {

// What plan_renewal would plan for a card, as far as the card shows it without a PIN and this computer knows the rest: the
// authority's certificate is not read, sizes are 0, keys may be labelled anew that need not be, and there is no fingerprint.
//
// @param certificate_at_hand  the authority's certificate has come
// @throws Error that plan_renewal would throw, where that shows: nothing is due, no identifier is free
[[nodiscard]] Plan foresee_renewal(const CardStatus& status, const RenewalWishes& wishes,
                                   bool certificate_at_hand);

// Whether a plan removes an object that the foreseen one does not, by its class and identifier, or makes or labels one of
// a class that this does not.
[[nodiscard]] bool goes_beyond(const Plan& plan, const Plan& foreseen);

// What a plan does to the card and what of it later steps remove, for somebody who knows no objects; before that, whether it
// may be for nothing.
[[nodiscard]] std::vector<Sentence> told_plainly(const Plan& plan);

} // namespace zvhost
