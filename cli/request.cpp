#include "host/request.h"

#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/pin_input.h"
#include "cli/plan_shown.h"
#include "cli/progress_lines.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace cli {
namespace {

const char* which_pair(const MadeRequest& made) {
    if (made.kind == Kind::services) return "card's own";
    return made.reused ? "waiting" : "new";
}

std::string in_words(const MadeRequest& made) {
    const char* saved = made.there_already ? "It is there already, as" : "Saved as";
    return fmt::format("Request for the {} certificate {}, with the {} pair {}\nSubject: {}{}",
                       kind_name(made.kind), made.renews, which_pair(made), made.pair,
                       made.subject.readable(),
                       made.file.empty() ? "" : fmt::format("\n{} {}", saved, made.file));
}

Json as_json(const MadeRequest& made) {
    Json json = cli::as_json(made.card);
    json.update({{"kind", kind_name(made.kind)},
                 {"renews", made.renews},
                 {"pair", made.pair},
                 {"pair_reused", made.reused},
                 {"subject", cli::as_json(made.subject)}});
    if (!made.file.empty()) json["file"] = made.file;
    if (!made.text.empty()) json["request"] = made.text;
    return json;
}

} // namespace

Report run_request(const RequestOptions& options) {
    PinInput pin(options);
    ProgressLines progress;
    PlannedRequest planned = plan_request(options.wishes, options.choice, pin);
    if (auto plan = plan_alone(options, planned.plan())) return *plan;
    const MadeRequest made = planned.apply(progress);
    Report report;
    report.json = as_json(made);
    report.text = in_words(made);
    report.payload = made.text;
    report.advice = made.advice;
    report.logged = true;
    report.unsaid = made.unsaid;
    return report;
}

} // namespace cli
