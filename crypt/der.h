#pragma once

#include "crypt/bytes.h"
#include "crypt/failure.h"

#include <initializer_list>
#include <span>

// DER by hand, for structures that OpenSSL cannot make around a key that it does not hold.
namespace zvcrypt::der {

enum Tag : unsigned char {
    boolean = 0x01,
    integer = 0x02,
    bit_string = 0x03,
    octet_string = 0x04,
    oid = 0x06,
    sequence = 0x30,
    set = 0x31,
    issuer_unique_id = 0x81,
    subject_unique_id = 0x82,
    context0 = 0xA0,
    context3 = 0xA3,
    context4 = 0xA4,
};

// Identifier and length of a value of that many bytes.
[[nodiscard]] Bytes header(Tag tag, std::size_t length);

[[nodiscard]] Bytes joined(std::initializer_list<std::span<const unsigned char>> parts);

[[nodiscard]] Bytes tlv(Tag tag, std::initializer_list<std::span<const unsigned char>> parts);

// SET OF: its elements in the order of their encodings.
[[nodiscard]] Bytes set_of(Tag tag, std::vector<Bytes> elements);

[[nodiscard]] Bytes object_identifier(int nid);

// What OpenSSL encodes itself.
template <class T> [[nodiscard]] Bytes encoded(int (*encode)(const T*, unsigned char**), const T* object) {
    const int length = encode(object, nullptr);
    if (length <= 0) throw Failure(ZVC_ERR_INTERNAL, "Errore interno nella codifica DER");
    Bytes bytes(static_cast<std::size_t>(length));
    unsigned char* end = bytes.data();
    (void)encode(object, &end);
    return bytes;
}

} // namespace zvcrypt::der
