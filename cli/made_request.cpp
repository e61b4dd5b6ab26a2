#include "cli/made_request.h"

#include "cli/card_json.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace cli {
namespace {

const char* which_pair(const RequestPlan& plan) {
    if (plan.old.kind == Kind::services) return "card's own";
    return plan.reuse ? "waiting" : "new";
}

Advice next_step(const MadeRequest& made) {
    const bool remove_old = made.kind == Kind::services;
    return {"install",
            fmt::format("Send it to the authority. When the certificate comes:\n"
                        "  zvrenew install CERTIFICATE --request {}{}",
                        made.file.empty() ? "REQUEST" : made.file, remove_old ? " --remove-old" : ""),
            {{"kind", kind_name(made.kind)},
             {"pair", made.plan.pair},
             {"request", made.file.empty() ? Value() : Value(made.file)},
             {"remove_old", remove_old}}};
}

// A discarding that was broken off leaves one key of the two, which no request and no installation uses.
Advice say_left_keys(const std::vector<std::string>& left) {
    return {"card-software",
            fmt::format("Left on the card of a pair that is no longer whole: {}. The card's own "
                        "software can remove it.",
                        fmt::join(left, ", ")),
            {{"remove", left}}};
}

} // namespace

std::string in_words(const MadeRequest& made) {
    const RequestPlan& plan = made.plan;
    const std::string saved = made.file.empty() ? "" : fmt::format("\n{} {}", made.saved_as, made.file);
    return fmt::format("Request for the {} certificate {}, with the {} pair {}\nSubject: {}{}",
                       kind_name(made.kind), plan.old.id, which_pair(plan), plan.pair,
                       plan.subject.readable(), saved);
}

Json as_json(const MadeRequest& made) {
    Json json = as_json(made.card);
    json.update({{"kind", kind_name(made.kind)},
                 {"renews", made.plan.old.id},
                 {"pair", made.plan.pair},
                 {"pair_reused", made.plan.reuse},
                 {"subject", as_json(made.plan.subject)}});
    if (!made.file.empty()) json["file"] = made.file;
    if (!made.text.empty()) json["request"] = made.text;
    return json;
}

std::vector<Advice> advice_on(const MadeRequest& made) {
    std::vector<Advice> advice{next_step(made)};
    if (!made.plan.left.empty()) advice.push_back(say_left_keys(made.plan.left));
    return advice;
}

} // namespace cli
