#include "cli/answer.h"
#include "cli/command_line.h"
#include "cli/library_text.h"
#include "cli/log_folder.h"
#include "cli/note.h"
#include "cli/outcome.h"
#include "zvRenew.h"

#include <cstdio>
#include <exception>
#include <fmt/format.h>

namespace {

using namespace cli;

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
    }
    return "";
}

// Cards may hold texts that are no UTF-8.
void print_json(const std::string& command, Exit exit, const Json& facts) {
    Json all = {{"command", command.empty() ? Json() : Json(command)}, {"result", result_name(exit)}};
    all.update(facts);
    all["log"] = log_path();
    fmt::print("{}\n", all.dump(2, ' ', false, Json::error_handler_t::replace));
}

void print_report(const Invocation& invocation, const Report& report) {
    if (invocation.json) {
        print_json(invocation.command, Exit::done, report_json(report));
    } else if (report.payload.empty()) {
        fmt::print("{}\n", printable(in_words(report)));
    } else {
        fmt::print("{}", report.payload);
        note(in_words(report));
    }
}

Exit print_stop(const Invocation& invocation, const Stop& stop) {
    if (invocation.json) {
        print_json(invocation.command, stop.exit, stop_json(stop));
        return stop.exit;
    }
    note(stop.exit == Exit::nothing_due ? stop.sentence : "zvrenew: " + stop.sentence);
    if (stop.card) note("Now on the card: " + stop.card->in_words());
    for (const Advice& one : advice_of(stop))
        note(one.text);
    if (stop.logged) note("The log has the details: " + log_path());
    return stop.exit;
}

Exit run(const Invocation& invocation) {
    try {
        print_report(invocation, invocation.run());
        return Exit::done;
    } catch (const Stop& stop) {
        return print_stop(invocation, stop);
    } catch (const std::exception& error) {
        return print_stop(invocation, Stop(Exit::failed, error.what()));
    }
}

int start(int argc, char** argv) {
    int exit = 0;
    const std::optional<Invocation> invocation = read_command_line(argc, argv, exit);
    if (!invocation) return exit;
    if (invocation->uses_library) {
        if (const std::string problem = make_log_folder(); !problem.empty()) note(problem);
    }
    loadErrorCodes();
    exit = static_cast<int>(run(*invocation));
    if (std::fflush(stdout) != 0) return static_cast<int>(Exit::failed);
    return exit;
}

} // namespace

int main(int argc, char** argv) {
    // What could not be reported as an answer, such as that standard output takes none.
    try {
        return start(argc, argv);
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "zvrenew: %s\n", error.what());
    } catch (...) {
        (void)std::fputs("zvrenew: unknown failure\n", stderr);
    }
    return static_cast<int>(Exit::failed);
}
