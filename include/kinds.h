/**
 * The kinds of certificate that are renewed, and what sets them apart: one row each. C++.
 */
#ifndef ZV_KINDS_H
#define ZV_KINDS_H

#include "zvConstants.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>

namespace zv {

/** A services card's own certificate is of the kind `services`. */
enum class Kind : unsigned char { signature, authentication, services };

/** What is known of one kind. */
struct KindRow {
    Kind id;
    const char* code;     ///< in the command block and in the names of the interface: "PRA"
    const char* name;     ///< in English
    const char* series;   ///< what the identifiers of its pairs begin with
    const char* first_id; ///< identifier of the pair that a card comes with
    bool new_pair;        ///< a request makes a pair in the series; else it is for the card's own
    bool authority;       ///< installing with deletion removes the authority's certificate too
    bool non_repudiation; ///< its certificates are for this key usage; else for digital signatures
    bool notice;          ///< its records have a field for the text of a user notice
};

inline constexpr KindRow KINDS[] = {
    {Kind::signature, "PRA", "signature", ZV_SIGNATURE_SERIES, ZV_SIGNATURE_SERIES "0", true, true, true,
     true},
    {Kind::authentication, "AUT", "authentication", ZV_AUTHENTICATION_SERIES, ZV_AUTHENTICATION_SERIES "0",
     true, false, false, false},
    {Kind::services, "CNS", "services", ZV_OWN_PAIR, ZV_OWN_PAIR, false, false, false, false},
};

[[nodiscard]] constexpr const KindRow& kind_row(Kind id) {
    return KINDS[static_cast<std::size_t>(id)];
}

static_assert(std::all_of(std::begin(KINDS), std::end(KINDS),
                          [](const KindRow& row) { return &kind_row(row.id) == &row; }));

/** One of a thing for each kind. */
template <typename Thing> struct ByKind {
    std::array<Thing, std::size(KINDS)> things{};

    constexpr Thing& operator[](Kind kind) { return things[static_cast<std::size_t>(kind)]; }
    constexpr const Thing& operator[](Kind kind) const { return things[static_cast<std::size_t>(kind)]; }
};

/** The kind of that code; none for another text. */
[[nodiscard]] constexpr std::optional<Kind> kind_of_code(std::string_view code) {
    for (const KindRow& row : KINDS)
        if (row.code == code) return row.id;
    return std::nullopt;
}

inline constexpr std::string_view SIGNATURE_SERIES = ZV_SIGNATURE_SERIES;
inline constexpr std::string_view AUTHENTICATION_SERIES = ZV_AUTHENTICATION_SERIES;
inline constexpr std::string_view OTHER_SIGNATURE_SERIES = ZV_OTHER_SIGNATURE_SERIES;
inline constexpr std::string_view OWN_PAIR = ZV_OWN_PAIR;
inline constexpr std::string_view FIRST_DIGITS = ZV_FIRST_DIGITS, RENEWED_DIGITS = ZV_RENEWED_DIGITS;
inline constexpr std::string_view ALL_DIGITS = "0123456789";

/** True for an identifier that is the series, one of those digits and whatever follows. */
[[nodiscard]] constexpr bool in_series(std::string_view id, std::string_view series,
                                       std::string_view digits) {
    return id.starts_with(series) && id.size() > series.size() &&
           digits.find(id[series.size()]) != std::string_view::npos;
}

/** True for the code of a kind whose requests are for the card's own pair. */
[[nodiscard]] constexpr bool is_for_own_pair(std::string_view code) {
    const std::optional<Kind> kind = kind_of_code(code);
    return kind && !kind_row(*kind).new_pair;
}

/** The kind of a pair that a request made. */
[[nodiscard]] constexpr Kind kind_of_pair(std::string_view id) {
    return id.find(AUTHENTICATION_SERIES) == std::string_view::npos ? Kind::signature : Kind::authentication;
}

/** The kind of a certificate that a reading lists, on a services card and on others. */
[[nodiscard]] constexpr Kind kind_of_certificate(std::string_view id, bool services_card) {
    if (services_card && id.starts_with(OWN_PAIR)) return Kind::services;
    const bool signature =
        services_card ? id.starts_with(SIGNATURE_SERIES)
                      : id.starts_with(OTHER_SIGNATURE_SERIES) || in_series(id, SIGNATURE_SERIES, ALL_DIGITS);
    return signature ? Kind::signature : Kind::authentication;
}

} // namespace zv

#endif
