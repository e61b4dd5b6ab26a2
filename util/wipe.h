#pragma once

#include <cstddef>

namespace zv {

// Overwrites memory that held a secret; not left out by the compiler.
inline void wipe(void* memory, std::size_t size) {
    auto* byte = static_cast<volatile unsigned char*>(memory);
    while (size-- > 0)
        *byte++ = 0;
}

} // namespace zv
