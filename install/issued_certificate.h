#pragma once

namespace zv {

// From the text that the authority issued to the certificate on the card, next to its pair, both called certAlias.
// Lower-cases the module's path in place. Returns 0 or ZV_FAILED.
[[nodiscard]] int install_issued(char* text, char* module_path);

} // namespace zv
