// Distinguished names written with short names, rewritten to numeric OIDs.
#include "routines.h"
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

constexpr std::size_t TEXT_SIZE = 8216;
constexpr int NAMES = 16;

// ", X=" becomes "/X=".
void slash_for(char* text, const char* separator) {
    char* comma = strstrICase(text, separator);
    if (comma == nullptr) return;
    std::memmove(comma, comma + 1, std::strlen(comma));
    *comma = '/';
}

} // namespace

int CommaToSlash(char* dn, char*) {
    static constexpr char description[] = ", D=";
    int rounds = 0;
    for (char* match = strstrICase(dn, description); match != nullptr;
         match = strstrICase(match + 1, description)) {
        slash_for(match + 1, ", N=");
        slash_for(match + 1, description);
        ++rounds;
    }
    return rounds;
}

int DescrToOid(char* dn, char* work) {
    const int rounds = CommaToSlash(dn, work);
    for (bool replaced = true; replaced;) {
        replaced = false;
        // One occurrence a row in each pass.
        for (const auto& [pattern, replacement] : zv::DescrOid)
            replaced = zv::replace_first(dn, TEXT_SIZE, pattern, replacement, work) || replaced;
    }
    return rounds;
}

int ConvertiCertificato(char** dns) {
    if (dns == nullptr) return 0;
    char work[TEXT_SIZE];
    int result = 0;
    for (int i = 0; i < NAMES; ++i)
        if (dns[i] != nullptr) result = DescrToOid(dns[i], work);
    return result;
}
