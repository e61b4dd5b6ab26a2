#pragma once

#include "api/command_block.h"

// What the entry points have in common.
namespace zv {

// Formats the selected module's path after prefix, logs it and clears szBuffErr again.
void trace_module(const char* prefix);

// Puts the crypto library's last reason into szBuffErr.
void fetch_reason();

// Puts a text into szBuffErr, the crypto library's last reason when none is given; logs it, then the line.
// Returns code.
int fail(const char* line, int code, const char* text = nullptr);

// Logs "Funzione '", the entry point's name and after.
void trace_entry(const char* function, const char* after);

// Writes the command block, runs the command unless the block is not faithful, and forgets the PIN. The result
// is in szBufferDatiOut.
[[nodiscard]] int run_command(std::string_view command, const BlockValues& values);

// Ends a call whose command was not sent or failed. Returns code.
int fail_command(int code);

// fail_command for one that there was no memory for.
int command_without_memory();

} // namespace zv
