#pragma once

#include "simcard/virtual/virtual_readers.h"

#include <gtest/gtest.h>

// Skips a test where there can be no virtual readers.
#define ZVTEST_NEEDS_READERS()                                                                               \
    if (const auto reason = simcard::VirtualReaders::missing(); !reason.empty()) GTEST_SKIP() << reason
