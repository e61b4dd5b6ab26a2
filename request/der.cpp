#include "request/der.h"

#include <algorithm>
#include <cstdlib>

bool zv::pieceMissing = false;

namespace {

ADATA* newPiece(unsigned long length) {
    zv::Der piece(static_cast<ADATA*>(std::calloc(1, sizeof(ADATA))));
    if (piece != nullptr && length != 0) {
        piece->data = static_cast<unsigned char*>(std::calloc(length, 1));
        if (piece->data != nullptr)
            piece->length = length;
        else
            piece.reset();
    }
    zv::pieceMissing = zv::pieceMissing || piece == nullptr;
    return piece.release();
}

unsigned char byteOf(unsigned long value, unsigned shift) {
    return static_cast<unsigned char>(value >> shift);
}

ADATA* header(unsigned char tag, unsigned long length) {
    unsigned char bytes[4] = {tag};
    unsigned long size = 1;
    if (length < 0x80) {
        bytes[size++] = byteOf(length, 0);
    } else if (length < 0x100) {
        bytes[size++] = 0x81;
        bytes[size++] = byteOf(length, 0);
    } else if (length < 0x10000) {
        bytes[size++] = 0x82;
        bytes[size++] = byteOf(length, 8);
        bytes[size++] = byteOf(length, 0);
    }
    // Longer pieces have no length bytes: a request never comes near them.
    return CreateADATA(bytes, size, size);
}

} // namespace

ADATA* CreateADATA(unsigned char* src, unsigned long size, unsigned long copyLength) {
    ADATA* piece = newPiece(size);
    if (piece != nullptr && src != nullptr) std::copy_n(src, std::min(copyLength, size), piece->data);
    return piece;
}

ADATA* ConcatenateADATA(ADATA* first, ADATA* second) {
    const auto lengthOf = [](const ADATA* piece) { return piece != nullptr ? piece->length : 0; };
    ADATA* joined = newPiece(lengthOf(first) + lengthOf(second));
    if (joined == nullptr) return nullptr;
    unsigned char* end = joined->data;
    for (ADATA* piece : {first, second}) {
        if (piece == nullptr) continue;
        end = std::copy_n(piece->data, piece->length, end);
        zv::Release()(piece);
    }
    return joined;
}

ADATA* ConstructADATA(unsigned char tag, ADATA* first, va_list list) {
    ADATA* content = first != nullptr ? ConcatenateADATA(nullptr, first) : nullptr;
    if (first != nullptr) {
        while (ADATA* next = va_arg(list, ADATA*))
            content = ConcatenateADATA(content, next);
    }
    return ConcatenateADATA(header(tag, content != nullptr ? content->length : 0), content);
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
    ADATA* piece = ConstructADATA(zv::TAG_SET, first, list);
    va_end(list);
    return piece;
}

ADATA* SEQUENCE(ADATA* first, ...) {
    va_list list;
    va_start(list, first);
    ADATA* piece = ConstructADATA(zv::TAG_SEQUENCE, first, list);
    va_end(list);
    return piece;
}

ADATA* _INTEGER(unsigned char* bytes, unsigned long length) {
    ADATA* content = CreateADATA(bytes, length, length);
    if (bytes == nullptr || (bytes[0] & 0x80) == 0) return var_tlv(zv::TAG_INTEGER, content, zv::END);
    // A zero in front keeps the value positive.
    return var_tlv(zv::TAG_INTEGER, CreateADATA(nullptr, 1, 0), content, zv::END);
}

namespace zv {

ADATA* leaf(std::span<const unsigned char> bytes) {
    return CreateADATA(const_cast<unsigned char*>(bytes.data()), bytes.size(), bytes.size());
}

ADATA* nullParameters() {
    static constexpr unsigned char bytes[] = {0x05, 0x00};
    return leaf(bytes);
}

void Release::operator()(ADATA* piece) const {
    std::free(piece->data);
    std::free(piece);
}

} // namespace zv
