#include "install/name_text.h"

#include "util/name_forms.h"
#include "util/text.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zv {

struct NamePair {
    const char* pattern;
    char replacement[24];
};

constexpr auto name_pairs() noexcept {
    std::array<NamePair, std::size(forms::COMMA_SEPARATED)> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const auto& [pattern, place] = forms::COMMA_SEPARATED[i];
        pairs[i].pattern = pattern;
        char* end = pairs[i].replacement;
        // Behind a blank the comma is there already.
        if (*pattern == '/') *end++ = ',';
        std::ranges::copy(forms::oid(place.attribute), end);
    }
    return pairs;
}

constinit std::array DescrOid = name_pairs();

} // namespace zv

namespace {

char* found_in(char* text, const char* part) {
    const std::size_t place = zv::find_ignoring_case(zv::or_empty(text), part);
    return place != std::string_view::npos ? text + place : nullptr;
}

// ", X=" becomes "/X=".
void slash_for(char* text, const char* separator) {
    char* comma = found_in(text, separator);
    if (comma == nullptr) return;
    std::memmove(comma, comma + 1, std::strlen(comma));
    *comma = '/';
}

} // namespace

int zv::slash_commas(char* dn) {
    static constexpr char description[] = ", D=";
    int rounds = 0;
    for (char* match = found_in(dn, description); match != nullptr;
         match = found_in(match + 1, description)) {
        slash_for(match + 1, ", N=");
        slash_for(match + 1, description);
        ++rounds;
    }
    return rounds;
}

int zv::write_oids(char* dn, char* work) {
    const int rounds = slash_commas(dn);
    for (bool replaced = true; replaced;) {
        replaced = false;
        // One occurrence a row in each pass.
        for (const auto& [pattern, replacement] : DescrOid)
            replaced = replace_first(dn, NAME_TEXT_SIZE, pattern, replacement, work) || replaced;
    }
    return rounds;
}

int zv::write_oids(std::span<char* const> names) {
    char work[NAME_TEXT_SIZE];
    int rounds = 0;
    for (char* name : names)
        if (name != nullptr) rounds = write_oids(name, work);
    return rounds;
}
