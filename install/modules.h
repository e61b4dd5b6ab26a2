#pragma once

#include "routines.h"

#include <cstddef>
#include <cstring>

namespace zv {

// Lower-cases a module's path in place and says whether it contains one of the names.
template <std::size_t N> bool module_named(char* path, const char* const (&names)[N]) {
    if (_strlwr(path) == nullptr) return false;
    for (const char* name : names)
        if (std::strstr(path, name) != nullptr) return true;
    return false;
}

} // namespace zv
