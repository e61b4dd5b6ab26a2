#ifndef ZV_UTIL_NAME_RECORD_H
#define ZV_UTIL_NAME_RECORD_H

#include <string_view>

#include "name_attributes.h"
#include "util/text.h"

/** The values of a name record, by attribute. */
namespace zv {

/** One value: the attribute, and which of its values. */
struct NamePlace {
    NameAttribute attribute{};
    std::size_t unit = 0;

    constexpr NamePlace() = default;
    constexpr NamePlace(NameAttribute only, std::size_t which = 0) : attribute(only), unit(which) {}

    [[nodiscard]] constexpr std::size_t width() const { return nameAttribute(attribute).width; }
    /** Where in datiDN the value begins. */
    [[nodiscard]] constexpr std::size_t offset() const {
        return nameAttribute(attribute).offset + unit * width();
    }
};

[[nodiscard]] inline std::string_view nameText(const datiDN& name, const NamePlace& place) {
    return boundedText(reinterpret_cast<const char*>(&name) + place.offset(), place.width());
}

/** Copies as much of a value as its field has room for. */
inline void setNameText(datiDN& name, const NamePlace& place, std::string_view value) {
    copyText(reinterpret_cast<char*>(&name) + place.offset(), place.width(), value);
}

} // namespace zv

#endif
