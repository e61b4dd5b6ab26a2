#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ossl {

// One block of a text: what its frame calls it and its DER.
struct PemBlock {
    std::string name;
    std::string der;

    [[nodiscard]] bool operator==(const PemBlock&) const = default;
};

// The blocks of a text up to the first that is broken; what stands between them is passed over.
[[nodiscard]] std::vector<PemBlock> pem_blocks(std::string_view text);

[[nodiscard]] std::string pem_text(const PemBlock& block);

} // namespace ossl
