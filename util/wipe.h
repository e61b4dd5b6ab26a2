#pragma once

#include <cstddef>
#include <cstring>

namespace zv {

// Overwrites memory that held a secret; not left out by the compiler.
inline void wipe(void* memory, std::size_t size) {
    std::memset(memory, 0, size);
    asm volatile("" : : "r"(memory) : "memory"); // as if it were read
}

} // namespace zv
