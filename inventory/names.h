#pragma once

#include <cstddef>

// Distinguished names in slash form, rewritten to numeric OIDs in place and cut to their buffers.
namespace zv {

// Bytes of a name that a host hands in.
constexpr std::size_t NAME_SIZE = 4096;

// Attributes follow each other without a separator: the host expects that form.
void rewrite_name(char* name, std::size_t size);

// The form of a services card: the common name goes last. False, the name unchanged, without a common name.
bool rewrite_name_cns(char* name, std::size_t size);

} // namespace zv
