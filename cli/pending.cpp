#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/pin_input.h"
#include "host/card_list.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

namespace cli {

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
