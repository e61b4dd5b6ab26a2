#ifndef ZV_INVENTORY_OID_NAMES_H
#define ZV_INVENTORY_OID_NAMES_H

#include "util/name_forms.h"

namespace zv {

/** An attribute's short name, slash included, and the numeric OID that takes its place. */
struct OidName {
    const char* key;
    const char* replacement;
};

constexpr auto oidNames() noexcept {
    std::array<OidName, std::size(forms::CARD)> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = {nameAttribute(forms::CARD[i]).slash, nameAttribute(forms::CARD[i]).oid};
    return rows;
}

/** Applied in this order, whatever the case of the letters. */
inline constexpr std::array __DescrOid = oidNames();

} // namespace zv

#endif
