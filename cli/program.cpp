#include "cli/program.h"

#include "cli/command_line.h"
#include "cli/dumps.h"
#include "cli/note.h"
#include "cli/output.h"
#include "cli/printed.h"
#include "cli/signals.h"
#include "cli/spoken.h"
#include "cli/twin_programs.h"
#include "host/error.h"
#include "host/journal.h"
#include "host/log_folder.h"
#include "zvRenew.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace cli {
namespace {

OnCard as_before() {
    return {{}, {}, true};
}

// What cannot be printed is told on standard error.
Exit answer(const Invocation& invocation, const Report& report) {
    try {
        print_report(invocation, report);
        if (report.afterwards) report.afterwards();
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
        loadErrorCodes();
        if (const Sentence problem = make_log_folder(); !problem.empty()) note(problem);
    }
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
