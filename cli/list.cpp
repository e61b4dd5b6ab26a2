#include "cli/commands.h"
#include "cli/listed.h"
#include "cli/pin_input.h"

namespace cli {

Report run_list(const ListOptions& options) {
    PinInput pin(options);
    const CardList list = list_card(options.choice, pin, options.days);
    Report report;
    report.text = in_words(list);
    report.json = as_json(list);
    report.advice = list.advice;
    return report;
}

} // namespace cli
