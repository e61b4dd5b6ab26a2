#pragma once

#include <cstddef>

// Distinguished names in slash form, rewritten to numeric OIDs in place and cut to their buffers.
namespace zv {

// Attributes follow each other without a separator: the host expects that form. Returns 0.
int rewrite_name(char* name, std::size_t size);

// The form of a services card: the common name goes last. Returns 0; 1, the name unchanged, without a common
// name.
int rewrite_name_cns(char* name, std::size_t size);

using NameRewrite = int (*)(char* name, std::size_t size);

} // namespace zv
