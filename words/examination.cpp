#include "words/examination.h"

#include "words/words.h"

#include <fmt/format.h>

namespace words {
namespace {

using zvhost::Advice, zvhost::Finding, zvhost::Sentence, zvhost::word_for;

// Such as "WRONG", which is seen in a long list.
std::string in_a_word(const char* what, const std::string& which) {
    return of(Sentence(std::string("doctor-") + what + "-" + which, {}));
}

std::string indented(std::string text) {
    constexpr const char* indent = "         ";
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;)
        text.insert(++at, indent);
    return indent + text;
}

} // namespace

std::string in_lines(const zvhost::Examination& examination) {
    std::string text;
    for (const Finding& finding : examination.findings) {
        text += fmt::format("{:<8} {}: {}\n", in_a_word("state", word_for(finding.health)),
                            in_a_word("topic", finding.topic), of(finding.says));
        for (const Advice& one : finding.advice)
            text += indented(of(one.says)) + "\n";
    }
    return text;
}

} // namespace words
