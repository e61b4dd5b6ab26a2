#include "request/der.h"

namespace zv::der {

namespace {

constexpr unsigned char ZERO[] = {0x00};

unsigned char byte_of(std::size_t value, unsigned shift) {
    return static_cast<unsigned char>(value >> shift);
}

} // namespace

Bytes header(unsigned char tag, std::size_t length) {
    if (length < 0x80) return {tag, byte_of(length, 0)};
    if (length < 0x100) return {tag, 0x81, byte_of(length, 0)};
    if (length < 0x10000) return {tag, 0x82, byte_of(length, 8), byte_of(length, 0)};
    return {tag};
}

Bytes joined(std::initializer_list<View> parts) {
    Bytes bytes;
    for (const View part : parts)
        bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

Bytes tlv(unsigned char tag, std::initializer_list<View> parts) {
    const Bytes content = joined(parts);
    return joined({header(tag, content.size()), content});
}

Bytes integer(View number) {
    const bool looks_negative = !number.empty() && (number[0] & 0x80) != 0;
    return tlv(TAG_INTEGER, {looks_negative ? View(ZERO) : View(), number});
}

Bytes bit_string(View content) {
    return tlv(TAG_BIT_STRING, {ZERO, content});
}

Bytes algorithm(View oid) {
    static constexpr unsigned char none[] = {0x05, 0x00};
    return tlv(TAG_SEQUENCE, {oid, none});
}

} // namespace zv::der
