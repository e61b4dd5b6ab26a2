#include "host/doctor.h"

#include "cli/commands.h"
#include "words/examination.h"
#include "words/help_desk_file.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

namespace cli {
namespace {

// What is wrong first, then what is only to be known.
std::vector<Advice> advice_by_need(const Examination& examination) {
    std::vector<Advice> all;
    for (const Health health : {Health::wrong, Health::warning, Health::unknown})
        for (const Finding& finding : examination.findings)
            if (finding.health == health) all.insert(all.end(), finding.advice.begin(), finding.advice.end());
    return all;
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

Json as_json(const Examination& examination) {
    Json findings = Json::array();
    for (const Finding& finding : examination.findings)
        findings.push_back(as_json(finding));
    return findings;
}

} // namespace

Report run_doctor(const DoctorOptions& options) {
    const Examination examination = examine(options.choice.module_dir);
    Report report;
    report.exit = examination.any_wrong() ? Exit::failed : Exit::done;
    report.text = words::in_lines(examination);
    report.text.pop_back();
    report.json["findings"] = as_json(examination);
    report.advice = advice_by_need(examination);
    report.advice_told = true;
    if (options.bundle.empty()) return report;
    save_for_help_desk(options.bundle,
                       words::help_desk_text(examination, options.with_names, "zvrenew " ZV_VERSION));
    report.json["file"] = options.bundle;
    report.text += "\n" + words::of(Sentence("help-desk-saved", {{"file", options.bundle}}));
    return report;
}

} // namespace cli
