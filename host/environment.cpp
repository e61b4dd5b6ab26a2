#include "host/environment.h"

#include <unistd.h>

#include <cstdlib>

namespace zvhost {

std::string environment(const char* name) {
#ifdef __GLIBC__
    const char* value = ::secure_getenv(name);
#else
    const char* value = ::issetugid() != 0 ? nullptr : std::getenv(name);
#endif
    return value == nullptr ? std::string() : std::string(value);
}

} // namespace zvhost
