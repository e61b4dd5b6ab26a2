#include "cli/answer.h"

#include "cli/card_json.h"
#include "host/log_folder.h"
#include "words/words.h"

#include <type_traits>

namespace cli {
namespace {

Json value_json(const Value& value) {
    const auto convert = [](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>)
            return Json();
        else if constexpr (std::is_same_v<Held, Kind>)
            return Json(kind_name(held));
        else if constexpr (std::is_same_v<Held, Moment>)
            return Json(instant(held.time));
        else if constexpr (std::is_same_v<Held, std::vector<Sentence>>)
            return Json(words::of(held));
        else
            return Json(held);
    };
    return std::visit(convert, value);
}

Json advice_json(const std::vector<Advice>& advice) {
    Json list = Json::array();
    for (const Advice& one : advice) {
        list.push_back({{"key", one.key}, {"text", words::of(one.says)}, {"sentence", or_null(one.says.id)}});
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

// What is true of a text of the library that names files of another program.
std::vector<Advice> explain_quotes(const std::string& text) {
    std::vector<Advice> advice;
    if (text.find("molvastra.ini") != std::string::npos)
        advice.push_back({"quoted-file", Sentence{"quoted-file", {}}});
    if (text.find("molvastra.exe") != std::string::npos)
        advice.push_back({"quoted-program", Sentence{"quoted-program", {}}});
    return advice;
}

} // namespace

std::string in_words(const Report& report) {
    std::string text = report.text;
    if (!report.advice_told)
        for (const Advice& one : report.advice)
            text += "\n" + words::of(one.says);
    if (report.logged) text += "\n" + words::of(Sentence{"log-is", {{"log", log_path()}}});
    return text;
}

Json report_json(const Report& report) {
    Json facts = report.json;
    facts["advice"] = advice_json(report.advice);
    return facts;
}

std::vector<Advice> advice_of(const Error& stop) {
    std::vector<Advice> advice =
        explain_quotes(words::of(stop.sentence) + (stop.card ? words::of(stop.card->problem) : ""));
    advice.insert(advice.end(), stop.advice.begin(), stop.advice.end());
    return advice;
}

Json stop_json(const Error& stop) {
    Json facts = {{"message", words::of(stop.sentence)}, {"sentence", or_null(stop.sentence.id)}};
    if (stop.code) facts["code"] = *stop.code;
    facts.update(std::visit([](const auto& found) { return as_json(found); }, stop.found));
    if (stop.about) facts.update(as_json(*stop.about));
    if (stop.card) {
        facts["on_card"] = as_json(*stop.card);
        if (!stop.card->problem.empty()) facts["on_card_problem"] = words::of(stop.card->problem);
    }
    facts["advice"] = advice_json(advice_of(stop));
    return facts;
}

} // namespace cli
