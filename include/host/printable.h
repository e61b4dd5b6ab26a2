#pragma once

#include <string>

namespace zvhost {

// A text from a card or a file without what would move a terminal's cursor; line feeds stay.
[[nodiscard]] std::string printable(std::string text);

} // namespace zvhost
