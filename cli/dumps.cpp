#include "cli/dumps.h"

#include <sys/resource.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace cli {

void forbid_cores() {
    const rlimit none{0, 0};
    (void)::setrlimit(RLIMIT_CORE, &none);
}

void forbid_reading() {
#ifdef __linux__
    (void)::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
#endif
}

} // namespace cli
