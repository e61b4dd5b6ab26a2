#pragma once

#include <string>

namespace zvhost {

// A text from a card or a file as a terminal shows it, of the same length: a '?' stands for each byte that is no UTF-8 or
// would move the cursor; line feeds stay.
[[nodiscard]] std::string printable(std::string text);

} // namespace zvhost
