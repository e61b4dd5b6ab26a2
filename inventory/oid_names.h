#pragma once

#include "util/name_forms.h"

namespace zv {

// An attribute's short name, slash included, and the numeric OID that takes its place.
struct OidName {
    const char* key;
    const char* replacement;
};

constexpr auto oid_names() noexcept {
    std::array<OidName, std::size(forms::CARD)> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = {nameAttribute(forms::CARD[i]).slash, nameAttribute(forms::CARD[i]).oid};
    return rows;
}

// Applied in this order, whatever the case of the letters.
inline constexpr std::array DESCR_OID = oid_names();

} // namespace zv
