#pragma once

#include <string>

namespace zv {

// Writes every object of the card as a line of text, in a session of its own, which is closed in any case. Returns 0,
// also when the text stops early, or what the session was refused with.
int dump_card(const char* lib_path, const char* pin, int slot_index, std::string& out);

} // namespace zv
