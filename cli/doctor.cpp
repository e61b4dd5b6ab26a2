#include "host/doctor.h"

#include "cli/answer.h"
#include "cli/commands.h"
#include "cli/help_desk_file.h"
#include "words/words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace cli {
namespace {

using zvhost::Examination, zvhost::Finding, zvhost::Health;

// Such as "WRONG", which is seen in a long list.
std::string in_a_word(const char* what, const std::string& which) {
    return words::of(zvhost::Sentence(std::string("doctor-") + what + "-" + which, {}));
}

std::string indented(std::string text) {
    constexpr const char* indent = "         ";
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;)
        text.insert(++at, indent);
    return indent + text;
}

Json finding_json(const Finding& finding) {
    Json json = {{"topic", finding.topic},
                 {"state", word_for(finding.health)},
                 {"sentence", finding.says.id},
                 {"text", words::of(finding.says)},
                 {"advice", Json::array()}};
    for (const Advice& one : finding.advice)
        json["advice"].push_back(one.key);
    return json;
}

// What is wrong first, then what is only to be known.
std::vector<Advice> advice_by_need(const Examination& examination) {
    std::vector<Advice> all;
    for (const Health health : {Health::wrong, Health::warning, Health::unknown})
        for (const Finding& finding : examination.findings)
            if (finding.health == health) all.insert(all.end(), finding.advice.begin(), finding.advice.end());
    return all;
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

Report run_doctor(const DoctorOptions& options) {
    const Examination examination = zvhost::examine(options.choice.module_dir);
    Report report;
    report.exit = examination.any_wrong() ? Exit::failed : Exit::done;
    report.text = in_lines(examination);
    report.text.pop_back();
    report.json["findings"] = Json::array();
    for (const Finding& finding : examination.findings)
        report.json["findings"].push_back(finding_json(finding));
    report.advice = advice_by_need(examination);
    report.advice_told = true;
    if (options.bundle.empty()) return report;
    zvhost::save_for_help_desk(options.bundle, help_desk_text(examination, options.with_names));
    report.json["file"] = options.bundle;
    report.text += "\n" + words::of(zvhost::Sentence("help-desk-saved", {{"file", options.bundle}}));
    return report;
}

} // namespace cli
