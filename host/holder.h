#pragma once

#include "host/module.h"

#include <string>
#include <string_view>

namespace zvhost {

// Who a certificate is for.
struct Holder {
    std::string shown;    // for a person
    std::string tax_code; // in capitals, without what says that it is one; empty when there is none
    std::string name;     // its words without accents, in capitals and in one order
};

[[nodiscard]] Holder holder_of(const Bytes& certificate);

// Whether two are the same: by their tax codes when both have one, by their names only when neither has.
// What cannot be compared is taken for the same.
[[nodiscard]] bool same_holder(const Holder& one, const Holder& other);

// A name's words without accents, in capitals and sorted: "Città, D'Aosta" gives "CITTA DAOSTA".
[[nodiscard]] std::string plain_name(std::string_view name);

} // namespace zvhost
