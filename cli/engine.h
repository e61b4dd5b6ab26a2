#pragma once

// The engine's names are the program's daily words.
namespace zvhost {}
namespace cli {
using namespace zvhost; // NOLINT(google-build-using-namespace)
} // namespace cli
