#include "cli/options.h"

namespace cli {

const char* kind_name(Kind kind) {
    switch (kind) {
    case Kind::signature:
        return "signature";
    case Kind::authentication:
        return "authentication";
    case Kind::services:
        return "services";
    }
    return "";
}

} // namespace cli
