#include "crypt/der.h"

#include <openssl/objects.h>

#include <algorithm>

namespace zvcrypt::der {

Bytes header(Tag tag, std::size_t length) {
    if (length < 0x80) return {tag, static_cast<unsigned char>(length)};
    Bytes reversed;
    for (std::size_t rest = length; rest != 0; rest >>= 8)
        reversed.push_back(static_cast<unsigned char>(rest & 0xFF));
    Bytes bytes{tag, static_cast<unsigned char>(0x80 | reversed.size())};
    bytes.insert(bytes.end(), reversed.rbegin(), reversed.rend());
    return bytes;
}

Bytes joined(std::initializer_list<std::span<const unsigned char>> parts) {
    Bytes bytes;
    for (const auto part : parts)
        bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

Bytes tlv(Tag tag, std::initializer_list<std::span<const unsigned char>> parts) {
    const Bytes content = joined(parts);
    return joined({header(tag, content.size()), content});
}

Bytes set_of(Tag tag, std::vector<Bytes> elements) {
    std::sort(elements.begin(), elements.end());
    Bytes content;
    for (const auto& element : elements)
        content.insert(content.end(), element.begin(), element.end());
    return joined({header(tag, content.size()), content});
}

Bytes object_identifier(int nid) {
    const ASN1_OBJECT* object = OBJ_nid2obj(nid);
    return encoded(i2d_ASN1_OBJECT, object);
}

} // namespace zvcrypt::der
