#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <vector>

// DER (X.690) as values: each function gives the bytes of what it encodes, and throws without memory.
namespace zv::der {

constexpr unsigned char TAG_INTEGER = 0x02, TAG_BIT_STRING = 0x03, TAG_OCTET_STRING = 0x04,
                        TAG_SEQUENCE = 0x30, TAG_SET = 0x31, TAG_CONTEXT_0 = 0xA0;

using Bytes = std::vector<unsigned char>;
using View = std::span<const unsigned char>;

// Tag and length of a content. One of 65,536 bytes and more gets no length: a request never comes near it.
[[nodiscard]] Bytes header(unsigned char tag, std::size_t length);

[[nodiscard]] Bytes joined(std::initializer_list<View> parts);

[[nodiscard]] Bytes tlv(unsigned char tag, std::initializer_list<View> parts);

// A positive number: a zero goes in front when the top bit is set, zeros that lead stay.
[[nodiscard]] Bytes integer(View number);

// A BIT STRING whose bytes are all used.
[[nodiscard]] Bytes bit_string(View content);

// AlgorithmIdentifier without parameters (NULL), from an encoded OID.
[[nodiscard]] Bytes algorithm(View oid);

} // namespace zv::der
