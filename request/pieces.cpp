#include "request/pieces.h"

#include "request/der.h"
#include "util/guarded.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace zv {

namespace {

constexpr ADATA* NO_PIECE = nullptr;

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

// next gives the pieces behind the first, the last of them null.
template <typename Next> ADATA* wrap(unsigned char tag, ADATA* first, Next next) {
    ADATA* content = first != nullptr ? join_pieces(nullptr, first) : nullptr;
    for (ADATA* piece = first; piece != nullptr;)
        if ((piece = next()) != nullptr) content = join_pieces(content, piece);
    ADATA* header = guarded(NO_PIECE, [=] { return piece_of(der::header(tag, view_of(content).size())); });
    return join_pieces(header, content);
}

} // namespace

ADATA* create_piece(const unsigned char* bytes, unsigned long size, unsigned long copy_length) {
    return guarded(NO_PIECE, [=] {
        der::Bytes copy(size);
        if (bytes != nullptr) std::copy_n(bytes, std::min(copy_length, size), copy.begin());
        return piece_of(copy);
    });
}

ADATA* join_pieces(ADATA* first, ADATA* second) {
    ADATA* both = guarded(NO_PIECE, [=] { return piece_of(der::joined({view_of(first), view_of(second)})); });
    if (both == nullptr) return nullptr;
    release(first);
    release(second);
    return both;
}

ADATA* wrap_pieces(unsigned char tag, ADATA* first, va_list list) {
    return wrap(tag, first, [&] { return va_arg(list, ADATA*); });
}

ADATA* integer_piece(const unsigned char* bytes, unsigned long length) {
    // The first byte is looked at whatever the length; a zero in front of it keeps the value positive.
    const bool looks_negative = bytes != nullptr && (bytes[0] & 0x80) != 0;
    ADATA* number = create_piece(bytes, length, length);
    if (!looks_negative) return wrap(der::TAG_INTEGER, number, [] { return NO_PIECE; });
    return wrap(der::TAG_INTEGER, create_piece(nullptr, 1, 0),
                [number]() mutable { return std::exchange(number, NO_PIECE); });
}

} // namespace zv
