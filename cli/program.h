#pragma once

namespace cli {

// Whether other programs of the same user can look into this one's memory.
enum class Memory { closed, readable };

// The whole run of the program: reads the command line, does what it says, tells the outcome.
//
// @return its exit code; nothing is thrown
[[nodiscard]] int run_program(int argc, char** argv, Memory memory);

} // namespace cli
