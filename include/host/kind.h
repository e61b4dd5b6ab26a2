#pragma once

#include "kinds.h"

namespace zvhost {

using zv::Kind, zv::kind_row;

[[nodiscard]] inline const char* kind_name(Kind kind) {
    return kind_row(kind).name;
}

} // namespace zvhost
