#ifndef ZV_REQUEST_DER_H
#define ZV_REQUEST_DER_H

#include <memory>
#include <span>

#include "routines.h"

/** Pieces for the DER builder (X.690) and the owner of a finished one. */
namespace zv {

constexpr unsigned char TAG_INTEGER = 0x02, TAG_BIT_STRING = 0x03, TAG_OCTET_STRING = 0x04,
                        TAG_SEQUENCE = 0x30, TAG_SET = 0x31;
constexpr unsigned char TAG_CONTEXT_0 = 0xA0;

/** Set when there was no memory for a piece: what is built from it may lack parts. Never cleared here. */
extern bool pieceMissing;

/** Ends the lists of the variadic builders. */
inline constexpr ADATA* END = nullptr;

/** A ready-made piece: a copy of the bytes, which the builder only reads. */
ADATA* leaf(std::span<const unsigned char> bytes);

/** NULL (05 00), the parameters of the algorithms used here. */
ADATA* nullParameters();

struct Release {
    void operator()(ADATA* piece) const;
};

using Der = std::unique_ptr<ADATA, Release>;

} // namespace zv

#endif
