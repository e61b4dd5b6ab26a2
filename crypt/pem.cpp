#include "pem.h"

#include "base64.h"
#include "failure.h"

namespace zvcrypt {
namespace {

constexpr std::string_view dashes = "-----";
constexpr std::string_view begin = "-----BEGIN ";

// Cuts the text after the mark and gives what stood before it; ZVC_ERR_TEXT_FORM without the mark.
std::string_view takeUpTo(std::string_view& text, const std::string& mark) {
    const auto found = text.find(mark);
    if (found == std::string_view::npos)
        throw Failure(ZVC_ERR_TEXT_FORM, "Il testo PEM è incompleto: manca " + mark);
    const auto before = text.substr(0, found);
    text.remove_prefix(found + mark.size());
    return before;
}

} // namespace

std::vector<PemBlock> pemBlocks(std::string_view text) {
    std::vector<PemBlock> blocks;
    for (auto found = text.find(begin); found != std::string_view::npos; found = text.find(begin)) {
        text.remove_prefix(found + begin.size());
        const std::string label{takeUpTo(text, std::string(dashes))};
        const auto body = takeUpTo(text, "-----END " + label + std::string(dashes));
        blocks.push_back({label, decodeBase64(body)});
    }
    return blocks;
}

} // namespace zvcrypt
