#include "simcard/common/environment.h"

#include <unistd.h>

#include <cstdlib>

namespace simcard {

std::string environment(const char* name) {
#ifdef __linux__
    const char* value = secure_getenv(name);
#else
    const char* value = issetugid() ? nullptr : std::getenv(name);
#endif
    return value ? value : "";
}

} // namespace simcard
