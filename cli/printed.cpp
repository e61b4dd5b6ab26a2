#include "cli/printed.h"

#include "cli/answer.h"
#include "cli/card_json.h"
#include "cli/note.h"
#include "cli/output.h"
#include "host/log_folder.h"
#include "host/printable.h"
#include "words/on_card.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

namespace cli {
namespace {

const char* result_name(Exit exit) {
    switch (exit) {
    case Exit::done:
        return "done";
    case Exit::failed:
        return "failed";
    case Exit::refused:
        return "refused";
    case Exit::nothing_due:
        return "nothing due";
    case Exit::due:
        return "due";
    case Exit::expired:
        return "expired";
    case Exit::under_way:
        return "request under way";
    case Exit::nothing_there:
        return "nothing on the card";
    }
    return "";
}

// Cards may hold texts that are no UTF-8.
void print_json(const std::string& command, Exit exit, const Json& facts) {
    Json all = {{"command", or_null(command)}, {"result", result_name(exit)}};
    all.update(facts);
    all["log"] = log_path();
    print_out(all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

} // namespace

void print_report(const Invocation& invocation, const Report& report) {
    if (invocation.json) {
        print_json(invocation.command, report.exit, report_json(report));
    } else if (report.payload.empty()) {
        print_out(printable(cli::in_words(report)) + "\n");
    } else {
        if (const std::string words = cli::in_words(report); !words.empty()) note(words);
        print_out(report.payload);
    }
}

Exit tell_stop(const Error& stop) {
    const std::string sentence = words::of(stop.sentence);
    note(stop.exit == Exit::nothing_due ? sentence : "zvrenew: " + sentence);
    if (stop.card) note(Sentence{"now-on-card", {{"now", words::of(*stop.card)}}});
    for (const Advice& one : advice_of(stop))
        note(one.says);
    if (stop.logged) note(Sentence{"log-has-details", {{"log", log_path()}}});
    return stop.exit;
}

Exit print_stop(const Invocation& invocation, const Error& stop) {
    if (invocation.json) {
        print_json(invocation.command, stop.exit, stop_json(stop));
        return stop.exit;
    }
    return tell_stop(stop);
}

} // namespace cli
