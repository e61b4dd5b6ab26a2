#include "cli/command_tree.h"

#include "cli/commands.h"
#include "words/language.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace cli {
namespace {

constexpr const char* EXITS =
    N_("Exit codes: 0 done, 1 failed, 2 refused or mistyped (no PIN try spent, nothing on the card changed), "
       "3 nothing due.");

constexpr const char* DOCTOR_EXITS =
    N_("Exit codes: 0 nothing is wrong (a warning may be), 1 something is, 2 refused or mistyped.");

constexpr const char* STATUS_EXITS = N_(
    "Exit codes: 0 no certificate is due, 10 one is, 11 one has ended, 12 a request is under way, 13 there "
    "is nothing on "
    "the card (of several 11, then 12, then 10); 1 failed, 2 refused or mistyped.");

constexpr const char* RENEW_EXITS =
    N_("Exit codes: 0 done, 1 failed, 2 refused or mistyped (no PIN try spent, nothing on the card changed), "
       "3 nothing due, 12 the authority's certificate is waited for.");
constexpr const char* REHEARSE_EXITS = N_("Exit codes: 0 the renewal would go through, 1 it would fail, 2 it "
                                          "would be refused (or: refused or mistyped), 3 nothing due.");

constexpr const char* ABOUT_REMOVAL = N_(
    R"(The old certificate and its keys stay on the card unless --remove-old is given. That removes them before the
new certificate is stored; with a signature certificate the authority's own certificate goes too, and nothing
puts it back. A services card keeps its keys: only its certificate is removed, and without --remove-old it then
holds two of the same identifier. What is replaced or removed is saved to the backup file first. At the end the
new key signs and the new certificate verifies. The same command, given again, finishes what was broken off.

A certificate that has ended, is for another person or for another purpose is refused; with --remove-old also one
that ends before the old one or begins later than now. --accept takes what it names all the same.

)");

// "pending discard"
std::string full_name(const CLI::App& command) {
    const CLI::App* parent = command.get_parent();
    const bool top = parent == nullptr || parent->get_parent() == nullptr;
    return top ? command.get_name() : parent->get_name() + " " + command.get_name();
}

// Where a command is added, and how.
struct Branch {
    CLI::App& app;
    Invocation& chosen;
    const Wanted& wanted;
};

// Null: it is not wanted.
template <class Options>
CLI::App* add_command(const Branch& branch, const char* name, const char* text, Report (*run)(const Options&),
                      const std::vector<const char*>& footer = {EXITS}) {
    if (!branch.wanted(name)) return nullptr;
    auto options = std::make_shared<Options>(); // lives as long as the parser
    CLI::App* command = branch.app.add_subcommand(name, words::tr(text));
    command->footer(joined(footer));
    command->get_help_ptr()->group(words::tr("Options"));
    OptionList list(*command);
    options->declare(list);
    // A command's own commands come first.
    command->callback([&chosen = branch.chosen, command, options, name = full_name(*command), run] {
        if (!command->get_subcommands().empty()) return;
        chosen = {name, options->json, true, [options, run] { return run(*options); }};
    });
    return command;
}

} // namespace

void add_commands(CLI::App& app, Invocation& chosen, const Wanted& wanted) {
    const Branch top{app, chosen, wanted};
    add_command(top, "readers",
                "Shows the readers, their cards and how it stands with the PIN (asks for none)", run_readers);
    add_command(top, "doctor",
                "Looks at all that a renewal needs and says what is wrong and what to do (asks for no PIN)",
                run_doctor, {DOCTOR_EXITS});
    add_command(top, "status",
                "Tells by the exit code which certificates end soon or have ended (asks for no PIN)",
                run_status, {STATUS_EXITS});
    add_command(top, "list", "Shows what is on the card, and what is due", run_list);
    add_command(top, "remind", "Shows a desktop notification for what ends soon or has ended (needs no card)",
                run_remind);
    add_command(
        top, "renew",
        "Renews a certificate: request, authority, installation, proof; goes on where it was broken off",
        run_renew, {RENEW_EXITS});
    add_command(top, "free-id", "Shows the identifiers for new keys", run_free_id);
    add_command(top, "request",
                "Makes new keys on the card and a request for them; a services card's own stay", run_request);
    add_command(
        top, "rehearse",
        "Renews on a simulated twin of the card and shows how it went; the card is only read, without "
        "the PIN",
        run_rehearse, {REHEARSE_EXITS});
    add_command(top, "install", "Stores the certificate that the authority issued, beside its keys",
                run_install, {ABOUT_REMOVAL, EXITS});
    if (CLI::App* pending = add_command(top, "pending", "Shows what waits for a certificate", run_pending)) {
        const Branch below{*pending, chosen, wanted};
        add_command(below, "discard",
                    "Removes a pair that waits: no certificate can be installed for it then", run_discard);
    }
    add_command(top, "remove", "Removes a certificate that is no longer needed, with its keys", run_remove);
}

const char* exit_codes_text() {
    return EXITS;
}

std::string joined(const std::vector<const char*>& texts) {
    std::string all;
    for (const char* text : texts)
        all += words::tr(text);
    return all;
}

} // namespace cli
