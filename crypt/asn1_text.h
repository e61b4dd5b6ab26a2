#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zvcrypt {

// A string of a certificate, given by its universal tag and its bytes, as UTF-8 that is safe to show:
//  - T61String and the other types of one byte a character are Latin-1, as authorities use them; a BMPString is
//    UTF-16; of types that hold no text, ASCII is kept;
//  - a control character and a backslash come as \xNN, a C1 control and what would reorder or break a line as
//    \UNNNN, bytes that are no character of the type each as \xNN.
[[nodiscard]] std::string display_text(int tag, std::span<const unsigned char> value);

// A card's text as UTF-8 of the same length: a '?' stands for a byte that is no character and for what display_text
// would escape, but for a backslash.
[[nodiscard]] std::string plain_text(std::string_view text);

} // namespace zvcrypt
