// The DER pieces of the interface: records from the C heap around what request/der.h encodes.
#include "request/der.h"
#include "routines.h"
#include "util/guarded.h"

#include <algorithm>
#include <cstdlib>

namespace {

using zv::der::Bytes;
using zv::der::View;

constexpr ADATA* NO_PIECE = nullptr;

View view_of(const ADATA* piece) {
    return piece != nullptr ? View(piece->data, piece->length) : View();
}

void release(ADATA* piece) {
    if (piece != nullptr) std::free(piece->data);
    std::free(piece);
}

ADATA* piece_of(const Bytes& bytes) {
    auto* piece = static_cast<ADATA*>(std::calloc(1, sizeof(ADATA)));
    if (piece == nullptr || bytes.empty()) return piece;
    piece->data = static_cast<unsigned char*>(std::calloc(bytes.size(), 1));
    if (piece->data == nullptr) {
        std::free(piece);
        return nullptr;
    }
    piece->length = bytes.size();
    std::ranges::copy(bytes, piece->data);
    return piece;
}

} // namespace

ADATA* CreateADATA(unsigned char* src, unsigned long size, unsigned long copy_length) {
    return zv::guarded(NO_PIECE, [=] {
        Bytes bytes(size);
        if (src != nullptr) std::copy_n(src, std::min(copy_length, size), bytes.begin());
        return piece_of(bytes);
    });
}

ADATA* ConcatenateADATA(ADATA* first, ADATA* second) {
    ADATA* both = zv::guarded(NO_PIECE, [=] {
        return piece_of(zv::der::joined({view_of(first), view_of(second)}));
    });
    if (both == nullptr) return nullptr;
    release(first);
    release(second);
    return both;
}

ADATA* ConstructADATA(unsigned char tag, ADATA* first, va_list list) {
    ADATA* content = first != nullptr ? ConcatenateADATA(nullptr, first) : nullptr;
    for (ADATA* next = first; next != nullptr;)
        if ((next = va_arg(list, ADATA*)) != nullptr) content = ConcatenateADATA(content, next);
    ADATA* header =
        zv::guarded(NO_PIECE, [=] { return piece_of(zv::der::header(tag, view_of(content).size())); });
    return ConcatenateADATA(header, content);
}

ADATA* var_tlv(unsigned char tag, ADATA* first, ...) {
    va_list list;
    va_start(list, first);
    ADATA* piece = ConstructADATA(tag, first, list);
    va_end(list);
    return piece;
}

ADATA* SET(ADATA* first, ...) {
    va_list list;
    va_start(list, first);
    ADATA* piece = ConstructADATA(zv::der::TAG_SET, first, list);
    va_end(list);
    return piece;
}

ADATA* SEQUENCE(ADATA* first, ...) {
    va_list list;
    va_start(list, first);
    ADATA* piece = ConstructADATA(zv::der::TAG_SEQUENCE, first, list);
    va_end(list);
    return piece;
}

ADATA* _INTEGER(unsigned char* bytes, unsigned long length) {
    ADATA* number = CreateADATA(bytes, length, length);
    ADATA* none = nullptr;
    // The first byte is looked at whatever the length; a zero in front of it keeps the value positive.
    if (bytes == nullptr || (bytes[0] & 0x80) == 0) return var_tlv(zv::der::TAG_INTEGER, number, none);
    return var_tlv(zv::der::TAG_INTEGER, CreateADATA(nullptr, 1, 0), number, none);
}
