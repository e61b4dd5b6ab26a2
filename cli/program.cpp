#include "cli/program.h"

#include "cli/answer.h"
#include "cli/card_json.h"
#include "cli/command_line.h"
#include "cli/dumps.h"
#include "cli/note.h"
#include "cli/on_card.h"
#include "cli/output.h"
#include "cli/signals.h"
#include "cli/spoken.h"
#include "cli/twin_programs.h"
#include "host/error.h"
#include "host/journal.h"
#include "host/log_folder.h"
#include "host/printable.h"
#include "words/words.h"
#include "zvRenew.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

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
    if (stop.card) note(Sentence{"now-on-card", {{"now", cli::in_words(*stop.card)}}});
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

OnCard as_before() {
    return {{}, {}, true};
}

// What cannot be printed is told on standard error.
Exit answer(const Invocation& invocation, const Report& report) {
    try {
        print_report(invocation, report);
        return report.exit;
    } catch (Error& stop) {
        stop.card = as_before();
        if (report.unsaid) report.unsaid(stop);
        return tell_stop(stop);
    }
}

Exit run(const Invocation& invocation) {
    try {
        return answer(invocation, invocation.run());
    } catch (const Error& stop) {
        return print_stop(invocation, stop);
    } catch (const std::exception& error) {
        return print_stop(invocation, Error(Exit::failed, {"unexpected", {{"text", error.what()}}}));
    }
}

// A rehearsal's log goes with it.
void log_in_rehearsal() {
    if (const char* folder = std::getenv(REHEARSAL_FOLDER); folder != nullptr)
        log_to(std::string(folder) + "/" + REHEARSAL_LOG);
}

int start(int argc, char** argv, Memory memory) {
    forbid_cores();
    if (memory == Memory::closed) forbid_reading();
    let_writes_fail();
    choose_language(argc, argv);
    if (!open_standard_descriptors()) {
        Error closed(Exit::failed, Sentence{"output-closed", {}});
        closed.card = as_before();
        return static_cast<int>(tell_stop(closed));
    }
    log_in_rehearsal();
    const Invocation invocation = read_command_line(argc, argv);
    if (invocation.uses_library) {
        if (const Sentence problem = make_log_folder(); !problem.empty()) note(problem);
    }
    loadErrorCodes();
    const Exit exit = run(invocation);
    if (const Sentence problem = journal_problem(); !problem.empty()) note(problem);
    return static_cast<int>(exit);
}

} // namespace

int run_program(int argc, char** argv, Memory memory) {
    // What could not be reported as an answer, such as that standard output takes none.
    try {
        return start(argc, argv, memory);
    } catch (const Error& stop) {
        return static_cast<int>(tell_stop(stop));
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "zvrenew: %s\n", error.what());
    } catch (...) {
        (void)std::fputs("zvrenew: unknown failure\n", stderr);
    }
    return static_cast<int>(Exit::failed);
}

} // namespace cli
