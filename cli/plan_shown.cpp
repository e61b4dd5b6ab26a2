#include "cli/plan_shown.h"

#include "cli/card_json.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

namespace cli {
namespace {

Sentence told(const Change& change) {
    const Values about = {{"id", change.id},
                          {"label", change.label},
                          {"size", static_cast<long>(change.size)},
                          {"what", std::vector{Sentence{std::string("object-") + word_for(change.what), {}}}},
                          {"why", std::vector{change.why}}};
    if (change.what == ObjectClass::data)
        return {change.action == Action::create ? "change-create-data" : "change-remove-data", about};
    if (change.action == Action::relabel) return Sentence{"change-relabel", about};
    const bool create = change.action == Action::create;
    if (change.what == ObjectClass::certificate)
        return {create ? "change-create-certificate" : "change-remove-certificate", about};
    return {create ? "change-create-key" : "change-remove-key", about};
}

Json change_json(const Change& change) {
    return {{"action", word_for(change.action)},
            {"what", word_for(change.what)},
            {"id", or_null(change.id)},
            {"label", change.label},
            {"size", change.size > 0 ? Json(change.size) : Json()},
            {"why", words::of(change.why)}};
}

std::string line(const Sentence& sentence) {
    return "\n" + words::of(sentence);
}

void refuse_changed(const std::string& expected, const Plan& plan) {
    if (expected.empty() || expected == plan.fingerprint) return;
    throw Error(Exit::refused, {"plan-changed", {{"fingerprint", plan.fingerprint}}},
                Advice{"plan-again", {"plan-again", {}}, {{"fingerprint", plan.fingerprint}}});
}

} // namespace

std::string in_words(const Plan& plan) {
    std::string text = words::of(Sentence{plan.changes.empty() ? "plan-empty" : "plan-heading", {}});
    for (const Change& change : plan.changes)
        text += line(told(change));
    for (const Sentence& notice : plan.notices)
        text += line(notice);
    text += line({"plan-logins", {{"logins", long{plan.logins}}}});
    if (plan.room) text += line({"plan-room", {{"room", static_cast<long>(*plan.room)}}});
    return text + line({"plan-fingerprint", {{"fingerprint", plan.fingerprint}}});
}

Json as_json(const Plan& plan) {
    Json json = {{"changes", Json::array()}, {"notices", Json::array()}, {"logins", plan.logins}};
    for (const Change& change : plan.changes)
        json["changes"].push_back(change_json(change));
    for (const Sentence& notice : plan.notices)
        json["notices"].push_back(words::of(notice));
    json["room"] = plan.room ? Json(*plan.room) : Json();
    json["fingerprint"] = plan.fingerprint;
    return json;
}

std::optional<Report> plan_alone(const ChangingOptions& options, const Plan& plan) {
    refuse_changed(options.apply_if, plan);
    if (!options.dry_run) return std::nullopt;
    Report report;
    report.json = as_json(plan.card);
    report.json["plan"] = as_json(plan);
    report.text = in_words(plan);
    return report;
}

} // namespace cli
