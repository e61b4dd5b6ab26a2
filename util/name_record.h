#pragma once

#include "name_attributes.h"
#include "records.h"
#include "util/text.h"

#include <string_view>

// The values of a name record, by attribute.
namespace zv {

// One value: the attribute, and which of its values.
struct NamePlace {
    NameAttribute attribute{};
    std::size_t unit = 0;

    constexpr NamePlace() = default;
    constexpr NamePlace(NameAttribute only, std::size_t which = 0) : attribute(only), unit(which) {}

    [[nodiscard]] constexpr std::size_t width() const { return name_attribute(attribute).width; }
    // Where in datiDN the value begins.
    [[nodiscard]] constexpr std::size_t offset() const {
        return name_attribute(attribute).offset + unit * width();
    }
};

[[nodiscard]] inline std::string_view name_text(const datiDN& name, const NamePlace& place) {
    return bounded_text(reinterpret_cast<const char*>(&name) + place.offset(), place.width());
}

// Copies as much of a value as its field has room for.
inline void set_name_text(datiDN& name, const NamePlace& place, std::string_view value) {
    copy_text(reinterpret_cast<char*>(&name) + place.offset(), place.width(), value);
}

} // namespace zv
