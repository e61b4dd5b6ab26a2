#pragma once

#include "host/card_session.h"

#include <vector>

namespace zvhost {

// Removes objects from a card, in their order: exactly these, found again by class, identifier and value in a session of
// its own, each by its handle there. One that is gone already is no matter. @throws Error when the card does not hold
// them as they were, or keeps one; what comes behind that one stays
// @return what is on the card then
[[nodiscard]] CardNow remove_objects(OpenedCard& card, const std::vector<CardObject>& objects);

// Removes the mark of a request from a services card, where it is. @throws Error
// @return what is on the card then
[[nodiscard]] CardNow remove_mark(OpenedCard& card);

} // namespace zvhost
