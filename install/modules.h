#ifndef ZV_INSTALL_MODULES_H
#define ZV_INSTALL_MODULES_H

#include <cstddef>
#include <cstring>

#include "routines.h"

namespace zv {

/** Lower-cases a module's path in place and says whether it contains one of the names. */
template <std::size_t N> bool moduleNamed(char* path, const char* const (&names)[N]) {
    if (_strlwr(path) == nullptr) return false;
    for (const char* name : names)
        if (std::strstr(path, name) != nullptr) return true;
    return false;
}

} // namespace zv

#endif
