#include "crypt/asn1_text.h"

#include "crypt/text.h"

#include <openssl/asn1.h>

#include <algorithm>
#include <optional>

namespace zvcrypt {
namespace {

using Span = std::span<const unsigned char>;

// The first character of some bytes, or none, and how many bytes that took.
struct Step {
    std::optional<char32_t> character;
    std::size_t length = 1;
};

bool is_high_surrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool is_low_surrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

bool is_character(char32_t value) {
    return value <= 0x10FFFF && !is_high_surrogate(value) && !is_low_surrogate(value);
}

char32_t big_endian(Span bytes) {
    char32_t value = 0;
    for (const unsigned char byte : bytes)
        value = value << 8 | byte;
    return value;
}

Step latin1(Span bytes) {
    return {bytes[0], 1};
}

Step ascii(Span bytes) {
    if (bytes[0] >= 0x80) return {};
    return {bytes[0], 1};
}

Step utf8(Span bytes) {
    static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const unsigned char lead = bytes[0];
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC0 || lead > 0xF4 || bytes.size() < length) return {};
    char32_t value = lead & (0x7FU >> length);
    for (const unsigned char byte : bytes.subspan(1, length - 1)) {
        if ((byte & 0xC0) != 0x80) return {};
        value = value << 6 | (byte & 0x3FU);
    }
    if (value < smallest[length] || !is_character(value)) return {};
    return {value, length};
}

Step utf16(Span bytes) {
    if (bytes.size() < 2) return {};
    const char32_t unit = big_endian(bytes.first(2));
    if (is_character(unit)) return {unit, 2};
    const char32_t second = bytes.size() < 4 ? 0 : big_endian(bytes.subspan(2, 2));
    if (!is_high_surrogate(unit) || !is_low_surrogate(second)) return {std::nullopt, 2};
    return {0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00), 4};
}

Step utf32(Span bytes) {
    if (bytes.size() < 4) return {};
    const char32_t value = big_endian(bytes.first(4));
    if (!is_character(value)) return {std::nullopt, 4};
    return {value, 4};
}

auto decoder_of(int tag) -> Step (*)(Span) {
    switch (tag) {
    case V_ASN1_UTF8STRING:
        return utf8;
    case V_ASN1_BMPSTRING:
        return utf16;
    case V_ASN1_UNIVERSALSTRING:
        return utf32;
    case V_ASN1_NUMERICSTRING:
    case V_ASN1_PRINTABLESTRING:
    case V_ASN1_T61STRING:
    case V_ASN1_VIDEOTEXSTRING:
    case V_ASN1_IA5STRING:
    case V_ASN1_GRAPHICSTRING:
    case V_ASN1_VISIBLESTRING:
    case V_ASN1_GENERALSTRING:
        return latin1;
    default:
        return ascii;
    }
}

// Controls, the escape's own mark, line ends and marks of direction that Unicode has beside them.
bool is_escaped(char32_t character) {
    static constexpr struct {
        char32_t first, last;
    } ranges[] = {{0, 0x1F},        {'\\', '\\'},     {0x7F, 0x9F},     {0x61C, 0x61C},
                  {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF}};
    return std::any_of(std::begin(ranges), std::end(ranges), [&](const auto& range) {
        return character >= range.first && character <= range.last;
    });
}

std::string escaped_bytes(Span bytes) {
    std::string text;
    for (const unsigned char byte : bytes)
        text += "\\x" + upper_hex({&byte, 1});
    return text;
}

std::string escaped_character(char32_t character) {
    const unsigned char halves[] = {static_cast<unsigned char>(character >> 8),
                                    static_cast<unsigned char>(character & 0xFF)};
    return character < 0x80 ? escaped_bytes({&halves[1], 1}) : "\\U" + upper_hex(halves);
}

std::string encoded(char32_t character) {
    if (character < 0x80) return {static_cast<char>(character)};
    std::string reversed;
    char32_t mark = 0x80, room = 0x40; // what the first byte holds beside its mark is below room
    for (; character >= room; character >>= 6) {
        reversed += static_cast<char>(0x80 | (character & 0x3F));
        mark |= mark >> 1;
        room >>= 1;
    }
    reversed += static_cast<char>(mark | character);
    return {reversed.rbegin(), reversed.rend()};
}

} // namespace

std::string display_text(int tag, Span value) {
    const auto decode = decoder_of(tag);
    std::string text;
    while (!value.empty()) {
        const Step step = decode(value);
        if (!step.character)
            text += escaped_bytes(value.first(std::min(step.length, value.size())));
        else
            text +=
                is_escaped(*step.character) ? escaped_character(*step.character) : encoded(*step.character);
        value = value.subspan(std::min(step.length, value.size()));
    }
    return text;
}

std::string plain_text(std::string_view field) {
    std::string text;
    Span value(reinterpret_cast<const unsigned char*>(field.data()), field.size());
    for (Step step; !value.empty(); value = value.subspan(step.length)) {
        step = utf8(value);
        const bool shown = step.character && (*step.character == '\\' || !is_escaped(*step.character));
        text += shown ? encoded(*step.character) : "?";
    }
    return text;
}

} // namespace zvcrypt
