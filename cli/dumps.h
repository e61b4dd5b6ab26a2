#pragma once

namespace cli {

// No core is written when the program is ended by a fault: the PIN would be in it.
void forbid_cores();

// Nor does the system hand a picture of the program to another one, or let others of the same user read its memory.
void forbid_reading();

} // namespace cli
