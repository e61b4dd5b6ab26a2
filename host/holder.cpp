#include "host/holder.h"

#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "zvCrypt.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <string_view>
#include <vector>

namespace zvhost {
namespace {

// The capitals without accents of U+00C0 to U+017F, in order; '.' is no letter.
constexpr std::string_view UNACCENTED =
    "AAAAAAACEEEEIIIIDNOOOOO.OUUUUYTSAAAAAAACEEEEIIIIDNOOOOO.OUUUUYTYAAAAAACCCCCCCCDDDDEEEEEEEEEEGGGG"
    "GGGGHHHHIIIIIIIIIIIIJJKKKLLLLLLLLLLNNNNNNNNNOOOOOOOORRRRRRSSSSSSSSTTTTTTUUUUUUUUUUUUWWYYYZZZZZZS";

char unaccented_letter(unsigned code) {
    const unsigned at = code - 0xC0;
    return at < UNACCENTED.size() ? UNACCENTED[at] : '.';
}

// Letters that are neither ASCII nor in the table keep their bytes; accents that stand alone go.
void add_letter(std::string& word, std::string_view letter) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(letter[at]); };
    const unsigned code = letter.size() == 2 ? (byte(0) & 0x1FU) << 6U | (byte(1) & 0x3FU) : 0;
    const char plain = unaccented_letter(code);
    if ((code >= 0x300 && code < 0x370) || letter == "\u2019") return;
    if (plain != '.')
        word += plain;
    else
        word += letter;
}

std::string upper(std::string_view text) {
    std::string capitals(text);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return capitals;
}

std::string code_in(Bytes der) {
    std::array<char, 128> text{};
    if (kvGetCodFisc(der.data(), der.size(), text.data(), static_cast<int>(text.size())) != ZVC_OK) return {};
    std::string code = upper({text.data(), strnlen(text.data(), text.size())});
    for (const std::string_view prefix : {"IT:", "TINIT-"})
        if (code.starts_with(prefix)) code.erase(0, prefix.size());
    return code;
}

} // namespace

std::string plain_name(std::string_view name) {
    std::vector<std::string> words(1);
    for (std::size_t at = 0; at < name.size();) {
        const auto first = static_cast<unsigned char>(name[at]);
        std::size_t size = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        size = std::min(size, name.size() - at);
        if (size > 1 || first >= 0x80)
            add_letter(words.back(), name.substr(at, size));
        else if (std::isalnum(first) != 0)
            words.back() += static_cast<char>(std::toupper(first));
        else if (first != '\'' && !words.back().empty()) // an apostrophe stands for an accent, too
            words.emplace_back();
        at += size;
    }
    std::sort(words.begin(), words.end());
    std::erase(words, "");
    return fmt::format("{}", fmt::join(words, " "));
}

Holder holder_of(const Bytes& der) {
    Holder holder;
    holder.tax_code = code_in(der);
    const Certificate certificate = certificate_from(der);
    if (!certificate) return holder;
    const DistinguishedName subject = subject_of(*certificate);
    std::string name = subject.value("CN");
    if (name.empty()) name = subject.value("GN") + " " + subject.value("SN");
    holder.name = plain_name(name);
    holder.shown = holder.tax_code.empty() ? name : fmt::format("{} ({})", name, holder.tax_code);
    return holder;
}

bool same_holder(const Holder& one, const Holder& other) {
    if (!one.tax_code.empty() && !other.tax_code.empty()) return one.tax_code == other.tax_code;
    if (!one.tax_code.empty() || !other.tax_code.empty()) return true;
    return one.name.empty() || other.name.empty() || one.name == other.name;
}

} // namespace zvhost
