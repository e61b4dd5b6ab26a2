#include "host/remove.h"

#include "cli/card_json.h"
#include "cli/carry_out.h"
#include "cli/commands.h"
#include "cli/pin_input.h"
#include "words/on_card.h"
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
        "removed", {{"id", removed.id}, {"backup", removed.backup}, {"now", words::of(removed.now)}}});
    report.unsaid = [now = removed.now](Error& error) { error.card = now; };
    return report;
}

} // namespace

Report run_remove(const RemoveOptions& options) {
    PinInput pin(options);
    return carry_out(options, plan_removal(options.wishes, options.choice, pin), removal_report);
}

Report run_discard(const DiscardOptions& options) {
    PinInput pin(options);
    return carry_out(options, plan_discard(options.wishes, options.choice, pin), removal_report);
}

} // namespace cli
