#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/rehearsal.h"

#include <nlohmann/json.hpp>

namespace cli {
namespace {

Report report_on(const Rehearsal& rehearsal) {
    Report report;
    report.exit = rehearsal.exit();
    report.text = in_words(rehearsal);
    report.json = as_json(rehearsal);
    report.advice = advice_on(rehearsal);
    return report;
}

} // namespace

Report run_rehearse(const RehearseOptions& options) {
    const SimulatedCard programs = find_simulated_card();
    const HeldSignals signals;
    return report_on(rehearse(options, read_public_card(options.choice), programs, signals));
}

} // namespace cli
