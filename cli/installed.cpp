#include "cli/installed.h"

#include "cli/card_json.h"
#include "cli/log_folder.h"
#include "cli/suitability.h"
#include "zvRenew.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace cli {
namespace {

constexpr const char* MARK_LEFT =
    "The mark " ZV_PENDING_MARKER " of the request is still on the card: the list "
    "shows a request under way until the "
    "next\ncertificate is installed, or the card's own software removes it.";

std::string old_in_words(const InstallPlan& plan) {
    if (!plan.old) return {};
    if (plan.removed.empty() && !plan.old->on_card) return "\nThe old certificate is no longer on the card.";
    if (plan.kind == Kind::services)
        return plan.removed.empty()
                   ? fmt::format("\nThe old certificate is still on the card, under the same identifier {}: "
                                 "programs may take it for the new\none. Only the card's own software can "
                                 "remove it now; --remove-old does so before storing.",
                                 plan.pair)
                   : fmt::format("\nRemoved: the old certificate {}.", plan.pair);
    if (!plan.removed.empty()) return fmt::format("\nRemoved: {}.", fmt::join(plan.removed, ", "));
    return fmt::format("\nThe old certificate {} is still on the card.", plan.old->id);
}

} // namespace

Advice say_mark_left() {
    return {"mark", MARK_LEFT};
}

Advice say_left(const std::vector<std::string>& left) {
    return {
        "card-software",
        fmt::format(
            "Left on the card of a certificate removed before: {}. The card's own software can remove it.",
            fmt::join(left, ", ")),
        {{"remove", left}}};
}

std::string in_words(const Installed& installed) {
    const InstallPlan& plan = installed.plan;
    std::string text = fmt::format("The new {0} certificate is on the card, with its keys, as {1}.\n"
                                   "{2}{3}",
                                   kind_name(plan.kind), plan.pair, in_words(installed.proof, plan.pair),
                                   old_in_words(plan));
    if (!installed.backup.empty())
        text += fmt::format("\nA copy of the old certificate: {}", installed.backup);
    return text + fmt::format("\nNow on the card: {}\nLog: {}", installed.now.in_words(), log_path());
}

Json as_json(const Installed& installed) {
    const InstallPlan& plan = installed.plan;
    Json json = as_json(installed.card);
    json.update({{"kind", kind_name(plan.kind)},
                 {"stored", plan.pair},
                 {"verified", installed.proof.signed_with},
                 {"replaces", plan.old ? or_null(plan.old->id) : Json()},
                 {"removed", plan.removed},
                 {"left", plan.left},
                 {"other_issuer", !new_issuer(plan).empty()},
                 {"backup", or_null(installed.backup)},
                 {"on_card", as_json(installed.now)},
                 {"mark_left", installed.mark_left}});
    return json;
}

std::vector<Advice> advice_on(const Installed& installed) {
    std::vector<Advice> advice;
    if (installed.mark_left) advice.push_back(say_mark_left());
    if (!installed.plan.left.empty()) advice.push_back(say_left(installed.plan.left));
    return advice;
}

} // namespace cli
