#pragma once

#include "records.h"

#include <cstdarg>

// The DER pieces of the interface: records from the C heap around what request/der.h encodes. Without
// memory these throw or give null, and release nothing.
namespace zv {

[[nodiscard]] ADATA* create_piece(const unsigned char* bytes, unsigned long size, unsigned long copy_length);

// Releases both.
[[nodiscard]] ADATA* join_pieces(ADATA* first, ADATA* second);

// Releases the pieces up to the first that is null, which ends the list.
[[nodiscard]] ADATA* wrap_pieces(unsigned char tag, ADATA* first, va_list list);

[[nodiscard]] ADATA* integer_piece(const unsigned char* bytes, unsigned long length);

} // namespace zv
