#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

// What a card holds before a request, and whether a pending key is among it.
namespace zv {

enum class Census { empty = 0, failed = 1, no_pending = 2, pending_few = 3, pending = 4 };

// What each outcome says: how many objects there are at least, and whether a pending key is among them. A census that
// failed says neither.
struct CensusMeaning {
    Census code;
    bool pending_key;
    int fewest_objects;
};

inline constexpr CensusMeaning CENSUS_MEANINGS[] = {{Census::pending, true, 3},
                                                    {Census::pending_few, true, 0},
                                                    {Census::no_pending, false, 1},
                                                    {Census::empty, false, 0}};

// The first that fits.
[[nodiscard]] constexpr Census census_of(int objects, bool pending_key) {
    for (const CensusMeaning& row : CENSUS_MEANINGS)
        if (row.pending_key == pending_key && objects >= row.fewest_objects) return row.code;
    return Census::failed;
}

[[nodiscard]] constexpr bool has_pending_key(Census code) {
    for (const CensusMeaning& row : CENSUS_MEANINGS)
        if (row.code == code) return row.pending_key;
    return false;
}

constexpr std::size_t CENSUS_SIZE = 1536;

// Appends a line for each object, as many whole ones as fit; after a failure those written so far stay.
[[nodiscard]] Census take_census(std::span<char, CENSUS_SIZE> text);

// True for a text with digits where a tax code has them, and only there; the last five characters are not looked
// at. A text of another length passes: most authentication certificates have other labels.
[[nodiscard]] bool looks_like_tax_code(std::string_view text);

} // namespace zv
