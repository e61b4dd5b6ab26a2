#include "cli/answer.h"

#include "cli/advice.h"
#include "cli/log_folder.h"

namespace cli {
namespace {

Json advice_json(const std::vector<Advice>& advice) {
    Json list = Json::array();
    for (const Advice& one : advice) {
        list.push_back({{"key", one.key}, {"text", one.text}});
        list.back().update(one.values);
    }
    return list;
}

} // namespace

std::string in_words(const Report& report) {
    std::string words = report.text;
    for (const Advice& one : report.advice)
        words += "\n" + one.text;
    if (report.logged) words += "\nLog: " + log_path();
    return words;
}

Json report_json(const Report& report) {
    Json facts = report.json;
    facts["advice"] = advice_json(report.advice);
    return facts;
}

std::vector<Advice> advice_of(const Stop& stop) {
    std::vector<Advice> advice = explain_quotes(stop.sentence + (stop.card ? stop.card->problem : ""));
    advice.insert(advice.end(), stop.advice.begin(), stop.advice.end());
    return advice;
}

Json stop_json(const Stop& stop) {
    Json facts = {{"message", stop.sentence}};
    facts.update(stop.facts);
    if (stop.card) {
        facts["on_card"] = stop.card->as_json();
        if (!stop.card->problem.empty()) facts["on_card_problem"] = stop.card->problem;
    }
    facts["advice"] = advice_json(advice_of(stop));
    return facts;
}

} // namespace cli
