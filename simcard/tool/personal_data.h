#pragma once

#include "simcard/authority/authority.h"
#include "simcard/authority/name.h"

#include <string>

namespace simcard {

// The text that a services card holds about itself and its holder: the length of the rest in 6 hexadecimal
// digits, then fields, each behind its own length in 2 such digits: issuer, day of issue and last day of the card
// (DDMMYYYY, in UTC), surname, given name, tax code.
[[nodiscard]] std::string personal_data(const Holder& holder, Validity card);

} // namespace simcard
