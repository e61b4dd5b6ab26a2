#include "host/request.h"

#include "cli/card_json.h"
#include "cli/carry_out.h"
#include "cli/commands.h"
#include "cli/pin_input.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

namespace cli {
namespace {

const char* with_which_pair(const MadeRequest& made) {
    if (made.kind == Kind::services) return "made-request-services";
    return made.reused ? "made-request-again" : "made-request";
}

std::string in_words(const MadeRequest& made) {
    std::string text = words::of({with_which_pair(made),
                                  {{"kind", made.kind},
                                   {"id", made.renews},
                                   {"pair", made.pair},
                                   {"subject", made.subject.readable()}}});
    if (made.file.empty()) return text;
    const char* saved = made.there_already ? "request-saved-before" : "request-saved";
    return text + "\n" + words::of({saved, {{"file", made.file}}});
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

Report request_report(const MadeRequest& made) {
    Report report;
    report.json = as_json(made);
    report.text = in_words(made);
    report.payload = made.text;
    report.advice = made.advice;
    report.logged = true;
    report.unsaid = made.unsaid;
    return report;
}

} // namespace

Report run_request(const RequestOptions& options) {
    PinInput pin(options);
    return carry_out(options, plan_request(options.wishes, options.choice, pin), request_report);
}

} // namespace cli
