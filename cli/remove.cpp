#include "host/remove.h"

#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/on_card.h"
#include "cli/pin_input.h"
#include "cli/plan_shown.h"
#include "cli/progress_lines.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

namespace cli {
namespace {

Report removal_report(const Removed& removed) {
    Report report;
    report.json = cli::as_json(removed.card);
    report.json.update({{"removed", std::vector{removed.id}},
                        {"backup", removed.backup},
                        {"on_card", cli::as_json(removed.now)}});
    report.text = words::of(Sentence{
        "removed", {{"id", removed.id}, {"backup", removed.backup}, {"now", cli::in_words(removed.now)}}});
    report.unsaid = [now = removed.now](Error& error) { error.card = now; };
    return report;
}

Report carry_out(const RemoveOptions& options, PlannedRemoval planned) {
    if (auto plan = plan_alone(options, planned.plan())) return *plan;
    ProgressLines progress;
    return removal_report(planned.apply(progress));
}

} // namespace

Report run_remove(const RemoveOptions& options) {
    PinInput pin(options);
    return carry_out(options, plan_removal(options.wishes, options.choice, pin));
}

Report run_discard(const DiscardOptions& options) {
    PinInput pin(options);
    return carry_out(options, plan_discard(options.wishes, options.choice, pin));
}

Report run_pending(const CardOptions& options) {
    PinInput pin(options);
    CardList list = list_card(options.choice, pin, USUAL_DAYS);
    Report report;
    report.json = as_json(list.card);
    report.json["pending"] = Json::array();
    report.json["services_pending"] = list.services_pending;
    for (const ListedPair& listed : list.pending)
        report.json["pending"].push_back({{"kind", kind_name(listed.pair.kind)}, {"id", listed.pair.id}});
    const bool none = list.pending.empty() && !list.services_pending;
    report.text = words::of(Sentence{none ? "none-pending" : "pending-heading", {}});
    std::erase_if(list.advice, [](const Advice& one) {
        return one.key != "install" && one.key != "request-again" && one.key != "pin-each-signature";
    });
    for (const ListedPair& listed : list.pending)
        list.advice.push_back(
            {"pending-discard", {"pending-discard", {{"pair", listed.pair.id}}}, {{"pair", listed.pair.id}}});
    report.advice = list.advice;
    return report;
}

} // namespace cli
