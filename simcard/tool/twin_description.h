#pragma once

#include "simcard/tool/twin.h"

#include <string_view>

namespace simcard {

// What another card shows without its PIN.
struct CardDescription {
    std::string serial;
    std::string label;
    bool services_card = false;
    std::optional<unsigned long> memory_left;
    std::vector<SeenObject> objects;
};

// Reads a description in JSON: "serial", "label", "services_card", "memory_left" (null when the card does not say) and
// "objects", each with "class" ("certificate", "public key", "data"), "id", "label", "value" and "application"; bytes
// are in hexadecimal. What is missing is empty.
//
// @throws Refusal that says what is wrong
[[nodiscard]] CardDescription read_description(std::string_view json);

} // namespace simcard
