#include "cli/answer.h"

#include "cli/advice.h"
#include "cli/card_json.h"
#include "cli/log_folder.h"

#include <type_traits>

namespace cli {
namespace {

Json value_json(const Value& value) {
    const auto convert = [](const auto& held) {
        if constexpr (std::is_same_v<decltype(held), const std::monostate&>)
            return Json();
        else
            return Json(held);
    };
    return std::visit(convert, value);
}

Json advice_json(const std::vector<Advice>& advice) {
    Json list = Json::array();
    for (const Advice& one : advice) {
        list.push_back({{"key", one.key}, {"text", one.text}});
        for (const auto& [name, value] : one.values)
            list.back()[name] = value_json(value);
    }
    return list;
}

Json as_json(const std::monostate&) {
    return Json::object();
}

Json as_json(const NotDue& found) {
    return {{"renews", found.id}, {"not_after", instant(found.ends)}, {"days_left", found.days_left}};
}

Json as_json(const AlreadyStored& found) {
    return {{"stored", found.id}, {"verified", found.verified}};
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
    if (stop.code) facts["code"] = *stop.code;
    facts.update(std::visit([](const auto& found) { return as_json(found); }, stop.found));
    if (stop.about) facts.update(as_json(*stop.about));
    if (stop.card) {
        facts["on_card"] = as_json(*stop.card);
        if (!stop.card->problem.empty()) facts["on_card_problem"] = stop.card->problem;
    }
    facts["advice"] = advice_json(advice_of(stop));
    return facts;
}

} // namespace cli
