#pragma once

#include "pkcs11.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace simcard {

// The text of a fixed-size PKCS#11 text field, without its padding.
template <std::size_t Size> [[nodiscard]] std::string unpadded(const CK_UTF8CHAR (&field)[Size]) {
    const std::string text(reinterpret_cast<const char*>(field), Size);
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

// Fills a fixed-size PKCS#11 text field, cut to it or padded with blanks.
template <std::size_t Size> void pad(CK_UTF8CHAR (&field)[Size], std::string_view text) {
    const std::size_t length = std::min(text.size(), Size);
    std::copy_n(text.begin(), length, field);
    std::fill(field + length, field + Size, static_cast<CK_UTF8CHAR>(' '));
}

} // namespace simcard
