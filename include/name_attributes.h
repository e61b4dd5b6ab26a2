/**
 * The attributes of a distinguished name that the library knows: how a name spells each, where a name record has
 * its value, and what a request makes of it. C++.
 */
#ifndef ZV_NAME_ATTRIBUTES_H
#define ZV_NAME_ATTRIBUTES_H

#include "records.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <string_view>

namespace zv {

/** Named and ordered like the fields of datiDN. */
enum class NameAttribute : unsigned char {
    country,
    organization,
    orgUnit,
    commonName,
    description,
    dnQualifier,
    serialNumber,
    givenName,
    surname,
    email,
    locality,
    title,
    pseudonym,
    stateOrProvince
};

/** Type of a value in a request, by its tag (X.690). */
enum class NameString : unsigned char { utf8 = 0x0C, printable = 0x13, ia5 = 0x16 };

/** Bytes of any value that a request carries. */
constexpr std::size_t NAME_VALUE_MAX = 127;

/** Width of one value of an attribute, terminator included. */
template <std::size_t Width> constexpr std::size_t name_width(char (datiDN::*)[Width]) {
    return Width;
}

template <std::size_t Count, std::size_t Width>
constexpr std::size_t name_width(char (datiDN::*)[Count][Width]) {
    return Width;
}

/** What is known of one attribute. */
struct NameAttributeRow {
    NameAttribute id;
    std::size_t offset; ///< of its first value in datiDN; others follow
    std::size_t width;  ///< of each value there, terminator included
    NameString type;
    const char* slash;           ///< its short name in a name in slash form: "/C="
    const char* oid;             ///< its numeric OID (X.520, PKCS#9) in front of a value: "2.5.4.6="
    unsigned char der_bytes[11]; ///< the OID in DER, zeros behind it

    [[nodiscard]] constexpr std::string_view name() const {
        const std::string_view framed = slash;
        return framed.substr(1, framed.size() - 2);
    }
    [[nodiscard]] constexpr std::span<const unsigned char> der() const {
        return {der_bytes, der_bytes[1] + std::size_t{2}};
    }
    /** Bytes of a value that a request carries. */
    [[nodiscard]] constexpr std::size_t longest() const { return std::min(width - 1, NAME_VALUE_MAX); }
};

#define ZV_NAME_ROW(field, type, name, oid, ...)                                                             \
    NameAttributeRow {                                                                                       \
        NameAttribute::field, offsetof(datiDN, field), name_width(&datiDN::field), NameString::type,         \
            "/" name "=", oid "=", {                                                                         \
            __VA_ARGS__                                                                                      \
        }                                                                                                    \
    }
#define ZV_X520_ROW(field, type, name, number)                                                               \
    ZV_NAME_ROW(field, type, name, "2.5.4." #number, 0x06, 0x03, 0x55, 0x04, number)

inline constexpr NameAttributeRow NAME_ATTRIBUTES[] = {
    ZV_X520_ROW(country, printable, "C", 6),
    ZV_X520_ROW(organization, utf8, "O", 10),
    ZV_X520_ROW(orgUnit, utf8, "OU", 11),
    ZV_X520_ROW(commonName, utf8, "CN", 3),
    ZV_X520_ROW(description, utf8, "description", 13),
    ZV_X520_ROW(dnQualifier, utf8, "dnQualifier", 46),
    ZV_X520_ROW(serialNumber, printable, "serialNumber", 5),
    ZV_X520_ROW(givenName, utf8, "GN", 42),
    ZV_X520_ROW(surname, utf8, "SN", 4),
    ZV_NAME_ROW(email, ia5, "emailAddress", "1.2.840.113549.1.9.1", 0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7,
                0x0D, 0x01, 0x09, 0x01),
    ZV_X520_ROW(locality, utf8, "L", 7),
    ZV_X520_ROW(title, utf8, "title", 12),
    ZV_X520_ROW(pseudonym, utf8, "pseudonym", 65),
    ZV_X520_ROW(stateOrProvince, utf8, "ST", 8),
};

#undef ZV_NAME_ROW
#undef ZV_X520_ROW

[[nodiscard]] constexpr const NameAttributeRow& name_attribute(NameAttribute id) {
    return NAME_ATTRIBUTES[static_cast<std::size_t>(id)];
}

static_assert(std::all_of(std::begin(NAME_ATTRIBUTES), std::end(NAME_ATTRIBUTES),
                          [](const NameAttributeRow& row) { return &name_attribute(row.id) == &row; }));

} // namespace zv

#endif
