#include "cli/examination.h"

#include "words/words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace cli {
namespace {

// Such as "WRONG", which is seen in a long list.
std::string in_a_word(const char* what, const std::string& which) {
    return words::of(Sentence(std::string("doctor-") + what + "-" + which, {}));
}

std::string indented(std::string text) {
    constexpr const char* indent = "         ";
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;)
        text.insert(++at, indent);
    return indent + text;
}

Json as_json(const Finding& finding) {
    Json json = {{"topic", finding.topic},
                 {"state", word_for(finding.health)},
                 {"sentence", finding.says.id},
                 {"text", words::of(finding.says)},
                 {"advice", Json::array()}};
    for (const Advice& one : finding.advice)
        json["advice"].push_back(one.key);
    return json;
}

} // namespace

std::string in_lines(const Examination& examination) {
    std::string text;
    for (const Finding& finding : examination.findings) {
        text += fmt::format("{:<8} {}: {}\n", in_a_word("state", word_for(finding.health)),
                            in_a_word("topic", finding.topic), words::of(finding.says));
        for (const Advice& one : finding.advice)
            text += indented(words::of(one.says)) + "\n";
    }
    return text;
}

Json as_json(const Examination& examination) {
    Json findings = Json::array();
    for (const Finding& finding : examination.findings)
        findings.push_back(as_json(finding));
    return findings;
}

} // namespace cli
