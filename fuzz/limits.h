#pragma once

#include "zvConstants.h"

// Stands in front of every file while fuzzing: a search without end comes often there, and 4,096 objects say no more
// than these. The replays keep the library's own limit.
#undef ZV_OBJECTS_MAX
#define ZV_OBJECTS_MAX 64
