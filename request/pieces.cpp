#include "request/pieces.h"

#include "request/der.h"

#include <algorithm>
#include <cstdlib>

namespace zv {

namespace {

der::View view_of(const ADATA* piece) {
    return piece != nullptr ? der::View(piece->data, piece->length) : der::View();
}

void release(ADATA* piece) {
    if (piece != nullptr) std::free(piece->data);
    std::free(piece);
}

ADATA* piece_of(const der::Bytes& bytes) {
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

der::Bytes padded_bytes(const unsigned char* bytes, unsigned long size, unsigned long copy_length) {
    der::Bytes copy(size);
    if (bytes != nullptr) std::copy_n(bytes, std::min(copy_length, size), copy.begin());
    return copy;
}

} // namespace

ADATA* create_piece(const unsigned char* bytes, unsigned long size, unsigned long copy_length) {
    return piece_of(padded_bytes(bytes, size, copy_length));
}

ADATA* join_pieces(ADATA* first, ADATA* second) {
    ADATA* both = piece_of(der::joined({view_of(first), view_of(second)}));
    if (both == nullptr) return nullptr;
    release(first);
    release(second);
    return both;
}

ADATA* wrap_pieces(unsigned char tag, ADATA* first, va_list list) {
    std::vector<ADATA*> pieces;
    der::Bytes content;
    for (ADATA* next = first; next != nullptr; next = va_arg(list, ADATA*)) {
        content = der::joined({content, view_of(next)});
        pieces.push_back(next);
    }
    ADATA* whole = piece_of(der::tlv(tag, {content}));
    if (whole != nullptr) std::ranges::for_each(pieces, release);
    return whole;
}

ADATA* integer_piece(const unsigned char* bytes, unsigned long length) {
    // The first byte is looked at whatever the length; a zero in front of it keeps the value positive.
    const bool looks_negative = bytes != nullptr && (bytes[0] & 0x80) != 0;
    const der::Bytes zero(looks_negative ? 1 : 0);
    return piece_of(der::tlv(der::TAG_INTEGER, {zero, padded_bytes(bytes, length, length)}));
}

} // namespace zv
