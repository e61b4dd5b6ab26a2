#pragma once

#include "crypt/bytes.h"

#include <string>
#include <string_view>

namespace zvcrypt {

// A part of a text from its BEGIN to its END.
struct PemBlock {
    std::string label;
    std::string_view body;
};

// The PEM blocks of a text; none in a text without any. What stands between the blocks is passed over. A block that
// does not end, or not as it began, is ZVC_ERR_TEXT_FORM. Read by hand: hosts' texts may have lost their line ends, and
// OpenSSL reads lines.
[[nodiscard]] std::vector<PemBlock> pem_blocks(std::string_view text);

// What the block's base64 stands for. ZVC_ERR_TEXT_FORM for a block with headers: it may be encrypted, and
// without line ends nobody can tell where they stop.
[[nodiscard]] Bytes pem_content(const PemBlock& block);

} // namespace zvcrypt
