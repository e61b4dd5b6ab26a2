#include "lenient/mended.h"

#include "ossl/owners.h"

#include <openssl/err.h>

#include <algorithm>
#include <optional>

namespace lenient {
namespace {

using Span = std::span<unsigned char>;

struct Element {
    unsigned char* identifier;
    int tag; // of the universal class; -1 for another
    bool constructed;
    Span content;
};

// Takes an element off the input; none where no DER goes on.
std::optional<Element> next(Span& rest) {
    constexpr int failed = 0x80, indefinite = 0x01;
    const unsigned char* content = rest.data();
    long length = 0;
    int tag = 0, type = 0;
    const int head = ASN1_get_object(&content, &length, &tag, &type, static_cast<long>(rest.size()));
    if ((head & (failed | indefinite)) != 0) return std::nullopt;
    const auto before = static_cast<std::size_t>(content - rest.data());
    const Element element{rest.data(), type == V_ASN1_UNIVERSAL ? tag : -1, (head & V_ASN1_CONSTRUCTED) != 0,
                          rest.subspan(before, static_cast<std::size_t>(length))};
    rest = rest.subspan(before + element.content.size());
    return element;
}

bool is_text(int tag, Span value) {
    const auto is_ascii = [](unsigned char byte) { return byte < 0x80; };
    if (tag == V_ASN1_UTF8STRING && std::all_of(value.begin(), value.end(), is_ascii)) return true;
    const ossl::String text(ASN1_STRING_type_new(tag));
    unsigned char* utf8 = nullptr;
    if (!text || ASN1_STRING_set(text.get(), value.data(), static_cast<int>(value.size())) != 1) return false;
    const int length = ASN1_STRING_to_UTF8(&utf8, text.get());
    OPENSSL_free(utf8);
    return length >= 0;
}

void mend_value(const Element& element) {
    const Span value = element.content;
    switch (element.tag) {
    case V_ASN1_INTEGER:
        if (value.size() > 1 && value[0] == 0x00 && value[1] < 0x80) value[0] = 0x01;
        if (value.size() > 1 && value[0] == 0xFF && value[1] >= 0x80) value[0] = 0xFE;
        break;
    case V_ASN1_UTF8STRING:
    case V_ASN1_UNIVERSALSTRING:
    case V_ASN1_BMPSTRING:
        if (!is_text(element.tag, value)) *element.identifier = V_ASN1_T61STRING;
        break;
    default:
        break;
    }
}

// A name's attribute is SET { SEQUENCE { type, value } }; the parameters of an algorithm may look so, too.
void mend_attribute(Span attribute) {
    static constexpr int taken[] = {V_ASN1_NULL,          V_ASN1_BIT_STRING,      V_ASN1_UTF8STRING,
                                    V_ASN1_NUMERICSTRING, V_ASN1_PRINTABLESTRING, V_ASN1_T61STRING,
                                    V_ASN1_IA5STRING,     V_ASN1_UNIVERSALSTRING, V_ASN1_BMPSTRING};
    const auto type = next(attribute);
    if (!type || type->tag != V_ASN1_OBJECT || attribute.empty()) return;
    const auto value = next(attribute);
    if (value && !value->constructed && value->tag >= 0 && attribute.empty() &&
        std::find(std::begin(taken), std::end(taken), value->tag) == std::end(taken))
        *value->identifier = V_ASN1_T61STRING;
}

void mend_all(Span rest, int around, int depth) {
    constexpr int deepest = 32;
    while (!rest.empty() && depth < deepest) {
        const auto element = next(rest);
        if (!element) return;
        if (!element->constructed) {
            mend_value(*element);
            continue;
        }
        if (around == V_ASN1_SET && element->tag == V_ASN1_SEQUENCE) mend_attribute(element->content);
        mend_all(element->content, element->tag, depth + 1);
    }
}

} // namespace

std::vector<unsigned char> mended(std::span<const unsigned char> der) {
    std::vector<unsigned char> copy(der.begin(), der.end());
    ERR_set_mark();
    mend_all(copy, -1, 0);
    ERR_pop_to_mark();
    return copy;
}

} // namespace lenient
