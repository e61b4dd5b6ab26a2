#pragma once

#include "simcard/common/card.h"
#include "simcard/tool/secret.h"

#include <string>
#include <vector>

namespace simcard {

// An object of a card as a person wants to see it; what does not apply is empty or 0.
struct ObjectView {
    std::string object_class; // "certificate", "public key", "private key", "data", else the class's number
    std::string id;           // as text, or in hexadecimal when it is none
    std::string label;
    std::size_t key_bits = 0;
    std::string subject;
    std::string ends; // last day of the certificate, "2031-12-24", in UTC
};

// Looks at a card's objects past the card's face: in or out of the reader, and without spending a PIN try.
//
// @param pin  shows the private objects too; empty for the others alone
// @return the objects sorted by identifier, class and label
// @throws Refusal when the PIN is not the card's
[[nodiscard]] std::vector<ObjectView> view_objects(const Card& card, const Secret& pin);

} // namespace simcard
