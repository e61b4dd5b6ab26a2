#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zvcrypt {

// A reader of the PC/SC service; the ATR, in upper-case hexadecimal, is empty when its card does not answer.
struct PcscReader {
    std::string name;
    bool has_card = false;
    std::string atr;
};

// Asks PC/SC for its readers and the cards in them, without talking to the cards. A service that does not
// answer is ZVC_ERR_NO_SERVICE, another failure ZVC_ERR_READER; no readers is an empty list.
[[nodiscard]] std::vector<PcscReader> pcsc_readers();

// The same for the reader of that name; nothing when there is none.
[[nodiscard]] std::optional<PcscReader> pcsc_reader(const std::string& name);

} // namespace zvcrypt
