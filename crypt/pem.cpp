#include "crypt/pem.h"

#include "crypt/base64.h"
#include "crypt/failure.h"

#include <algorithm>

namespace zvcrypt {
namespace {

constexpr std::string_view DASHES = "-----";
constexpr std::string_view BEGIN = "-----BEGIN ";

[[noreturn]] void fail(const std::string& sentence) {
    throw Failure(ZVC_ERR_TEXT_FORM, sentence);
}

// Cuts the text after the label and its dashes. A label is short and plain, so that it can stand in a message.
std::string take_label(std::string_view& text) {
    constexpr std::size_t longest_label = 64;
    const auto end = text.find(DASHES);
    const auto label = text.substr(0, end);
    if (end == std::string_view::npos || label.empty() || label.size() > longest_label ||
        std::any_of(label.begin(), label.end(), [](char c) { return c < ' ' || c > '~'; }))
        fail("Il testo PEM non è valido: la riga -----BEGIN non finisce con -----");
    text.remove_prefix(end + DASHES.size());
    return std::string(label);
}

// Cuts the text after the block's end.
std::string_view take_body(std::string_view& text, const std::string& label) {
    const std::string mark = "-----END " + label + "-----";
    const auto end = text.find(mark);
    const auto body = text.substr(0, end);
    // Dashes inside are the marks of another block: this one has lost its end.
    if (end == std::string_view::npos || body.find(DASHES) != std::string_view::npos)
        fail("Il testo PEM è incompleto: manca " + mark);
    text.remove_prefix(end + mark.size());
    return body;
}

} // namespace

std::vector<PemBlock> pem_blocks(std::string_view text) {
    std::vector<PemBlock> blocks;
    for (auto found = text.find(BEGIN); found != std::string_view::npos; found = text.find(BEGIN)) {
        text.remove_prefix(found + BEGIN.size());
        std::string label = take_label(text);
        const auto body = take_body(text, label);
        blocks.push_back({std::move(label), body});
    }
    if (blocks.empty() && text.find(DASHES) != std::string_view::npos)
        fail("Il testo PEM è incompleto: manca una riga -----BEGIN intera");
    return blocks;
}

Bytes pem_content(const PemBlock& block) {
    if (block.body.find(':') != std::string_view::npos)
        fail("Il blocco PEM " + block.label + " ha delle intestazioni, che qui non sono ammesse");
    return decode_base64(block.body);
}

} // namespace zvcrypt
