#pragma once

#include "records.h"

#include <cstdarg>

// The DER pieces of the interface: records from the C heap around what request/der.h encodes. Without memory a piece
// is null, and a null piece ends the list in which it stands.
namespace zv {

[[nodiscard]] ADATA* create_piece(const unsigned char* bytes, unsigned long size, unsigned long copy_length);

// Releases both.
[[nodiscard]] ADATA* join_pieces(ADATA* first, ADATA* second);

// Releases the pieces up to the first that is null, which ends the list.
[[nodiscard]] ADATA* wrap_pieces(unsigned char tag, ADATA* first, va_list list);

[[nodiscard]] ADATA* integer_piece(const unsigned char* bytes, unsigned long length);

} // namespace zv
