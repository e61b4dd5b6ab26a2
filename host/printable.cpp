#include "host/printable.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace zvhost {
namespace {

// UTF-8's characters by their first two bytes, without those that control a terminal.
struct Form {
    unsigned char first, last;     // first byte
    unsigned char lowest, highest; // second byte
    std::size_t size;
};
constexpr Form FORMS[] = {
    {'\n', '\n', 0, 0, 1},       {0x20, 0x7E, 0, 0, 1},       {0xC2, 0xC2, 0xA0, 0xBF, 2},
    {0xC3, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};

// How many bytes the character has that a text begins with; 0 when that is none to be shown.
std::size_t shown_size(std::string_view text) {
    const auto within = [&](std::size_t at, unsigned char low, unsigned char high) {
        const auto byte = static_cast<unsigned char>(text[at]);
        return low <= byte && byte <= high;
    };
    const auto* form = std::find_if(std::begin(FORMS), std::end(FORMS),
                                    [&](const Form& one) { return within(0, one.first, one.last); });
    if (form == std::end(FORMS) || form->size > text.size()) return 0;
    for (std::size_t at = 1; at < form->size; ++at)
        if (!within(at, at == 1 ? form->lowest : 0x80, at == 1 ? form->highest : 0xBF)) return 0;
    return form->size;
}

} // namespace

std::string printable(std::string text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t size = shown_size(std::string_view(text).substr(at));
        if (size == 0) text[at] = '?';
        at += std::max<std::size_t>(size, 1);
    }
    return text;
}

} // namespace zvhost
