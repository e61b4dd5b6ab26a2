#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zvcrypt {

// A reader of the PC/SC service; the ATR, in upper-case hexadecimal, is empty when its card does not answer.
struct PcscReader {
    std::string name;
    bool hasCard = false;
    std::string atr;
};

// Asks PC/SC for its readers and the cards in them, without talking to the cards. A service that does not
// answer is ZVC_ERR_NO_SERVICE, another failure ZVC_ERR_READER; no readers is an empty list.
[[nodiscard]] std::vector<PcscReader> pcscReaders();

// The same for the reader of that name; nothing when there is none.
[[nodiscard]] std::optional<PcscReader> pcscReader(const std::string& name);

} // namespace zvcrypt
