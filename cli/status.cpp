#include "cli/card_status.h"
#include "cli/commands.h"
#include "cli/pin_gate.h"
#include "cli/place.h"

namespace cli {
namespace {

// What is known of the card is added to `facts` as soon as it is.
CardStatus look_at_card(const Place& place, int days, CardFacts& facts) {
    const CardState state = card_state(place);
    facts = facts_of(place, state);
    return status_of(facts, view_public(place, state), days);
}

Report report_on(const CardStatus& status) {
    Report report;
    report.exit = status.exit;
    report.text = in_words(status);
    report.json = as_json(status);
    report.advice = advice_on(status);
    return report;
}

} // namespace

Report run_status(const StatusOptions& options) {
    const Place place = find_place(options);
    CardFacts facts = facts_of(place, {});
    try {
        return report_on(look_at_card(place, options.days, facts));
    } catch (Stop& stop) {
        stop.tell_card(facts);
        if (stop.exit == Exit::failed) stop.card = OnCard{{}, {}, true};
        throw;
    }
}

} // namespace cli
