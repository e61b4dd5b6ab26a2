#pragma once

#include "openssl_ptr.h"

#include <string>
#include <string_view>

namespace zvcrypt {

struct PemBlock {
    std::string label;
    Bytes content;
};

// The PEM blocks of a text, which may have lost its line ends; none in a text without any. What stands
// between the blocks is passed over. A block that does not end, or not as it began, is ZVC_ERR_TEXT_FORM.
[[nodiscard]] std::vector<PemBlock> pemBlocks(std::string_view text);

} // namespace zvcrypt
