#include "cli/command_line.h"

#include "cli/commands.h"
#include "cli/suitability.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>
#include <sstream>

namespace cli {
namespace {

constexpr const char* ABOUT = "Renews the certificates on a smart card.";

constexpr const char* EXITS =
    "Exit codes: 0 done, 1 failed, 2 refused or mistyped (no PIN try spent, nothing on the card changed), "
    "3 nothing due.";

constexpr const char* STEPS = R"(A renewal:
  zvrenew list                                   what is on the card, and what is due
  zvrenew request signature --out request.b64    new keys on the card, a request for them
  zvrenew install certificate.pem --request request.b64
                                                 the authority's certificate, beside its keys

The PIN is asked for at the terminal, or read from --pin-file; it is never an argument.
)";

constexpr const char* ABOUT_REMOVAL =
    R"(The old certificate and its keys stay on the card unless --remove-old is given. That removes them before the
new certificate is stored; with a signature certificate the authority's own certificate goes too, and nothing
puts it back. A services card keeps its keys: only its certificate is removed, and without --remove-old it then
holds two of the same identifier. What is replaced or removed is saved to the backup file first. At the end the
new key signs and the new certificate verifies. The same command, given again, finishes what was broken off.

A certificate that has ended, is for another person or for another purpose is refused; with --remove-old also one
that ends before the old one or begins later than now. --accept takes what it names all the same.

)";

void add_common(CLI::App& command, CommonOptions& options) {
    command.add_flag("--json", options.json, "Print the result as JSON on standard output");
    command
        .add_option("--module-dir", options.module_dir,
                    "Folder of the cards' PKCS#11 modules (else this program's own, then the system's)")
        ->type_name("DIR");
}

void add_card(CLI::App& command, CommonOptions& options) {
    add_common(command, options);
    command
        .add_option("--reader", options.reader,
                    "Reader to use, its whole name (else the only one with a card)")
        ->type_name("NAME");
    command.add_option("--pin-file", options.pin_file, "Read the PIN from a file (else it is asked for)")
        ->type_name("FILE");
    command.add_flag("--final-try", options.final_try,
                     "Use the PIN even if it is the last try before the card locks");
}

void add_days(CLI::App& command, int& days) {
    command.add_option("--days", days, "A certificate is due when it ends within so many days")
        ->type_name("N")
        ->check(CLI::Range(0, 36500).description(""))
        ->capture_default_str();
}

// A command and its options, which live as long as the parser.
template <class Options> struct Command {
    CLI::App& parser;
    Options& options;
};

template <class Options>
Command<Options> add_command(CLI::App& app, Invocation& chosen, const char* name, const char* text,
                             Report (*run)(const Options&)) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(name, text);
    command->footer(EXITS);
    command->callback([&chosen, options, name, run] {
        chosen = {name, options->json, true, [options, run] { return run(*options); }};
    });
    return {*command, *options};
}

void add_reading_commands(CLI::App& app, Invocation& chosen) {
    const auto readers = add_command(
        app, chosen, "readers",
        "Shows the readers, their cards and how it stands with the PIN (asks for none)", run_readers);
    add_common(readers.parser, readers.options);
    const auto list =
        add_command(app, chosen, "list", "Shows what is on the card, and what is due", run_list);
    add_card(list.parser, list.options);
    add_days(list.parser, list.options.days);
    const auto free_id =
        add_command(app, chosen, "free-id", "Shows the identifiers for new keys", run_free_id);
    add_card(free_id.parser, free_id.options);
}

// Turns the name of a kind into its number, which is what the parser reads into an enumeration.
std::string kind_number(std::string& word) {
    for (const zv::KindRow& row : zv::KINDS) {
        if (word != row.name) continue;
        word = std::to_string(static_cast<int>(row.id));
        return {};
    }
    return "signature, authentication or services, not \"" + word + "\"";
}

void add_request(CLI::App& app, Invocation& chosen) {
    const auto [command, options] = add_command(
        app, chosen, "request",
        "Makes new keys on the card and a request for them; a services card's own stay", run_request);
    command
        .add_option("KIND", options.kind, "signature, authentication, or services (a services card's own)")
        ->required()
        ->type_name("")
        ->transform(CLI::Validator(kind_number, "", "kind"));
    command.add_option("--out", options.out, "New file for the request (else standard output)")
        ->type_name("FILE");
    command
        .add_option("--subject", options.subject, "Subject, as /C=IT/O=.../CN=... (else the certificate's)")
        ->type_name("NAME");
    command
        .add_option("--certificate", options.certificate,
                    "Identifier of the certificate to renew (else the one that ends last)")
        ->type_name("ID");
    command.add_flag("--force", options.force, "Renew also what is not due");
    command.add_flag("--new-pair", options.new_pair,
                     "Discard the pair that waits on the card and make another (else it is used again)");
    add_days(command, options.days);
    add_card(command, options);
}

void add_install(CLI::App& app, Invocation& chosen) {
    const auto [command, options] =
        add_command(app, chosen, "install",
                    "Stores the certificate that the authority issued, beside its keys", run_install);
    command.footer(std::string(ABOUT_REMOVAL) + EXITS);
    command
        .add_option("CERTIFICATE", options.certificate_file,
                    "The authority's file: PEM, DER or a PKCS#7 bundle")
        ->required()
        ->type_name("");
    command
        .add_option("--request", options.request_file,
                    "The request that it answers (else the pairs that wait on the card are compared)")
        ->type_name("FILE");
    command
        .add_option("--replace", options.replace,
                    "Identifier of the certificate it replaces (else the one that signed the request, or "
                    "the only one of its kind)")
        ->type_name("ID");
    command.add_flag("--remove-old", options.remove_old,
                     "Remove the old certificate and its keys from the card");
    command
        .add_option("--backup", options.backup,
                    "New file for the old certificate (else IDENTIFIER-SERIAL.pem in this folder)")
        ->type_name("FILE");
    command
        .add_option("--accept", options.accept,
                    "Take the certificate although: " +
                        fmt::format("{}", fmt::join(accepted_reasons(), ", ")))
        ->type_name("REASON,...")
        ->delimiter(',')
        ->check(CLI::IsMember(accepted_reasons()).description(""));
    add_card(command, options);
}

// A mistake ends the reading before every option is known.
bool wants_json(int argc, char** argv) {
    return std::any_of(argv, argv + argc,
                       [](const char* word) { return std::string_view(word) == "--json"; });
}

Report told(const std::string& text) {
    Report report;
    report.text = text.substr(0, text.find_last_not_of('\n') + 1);
    report.json["text"] = text;
    return report;
}

// Help, the version, or what is wrong with the command line.
Invocation as_answer(const CLI::App& app, const CLI::ParseError& error, bool json) {
    const auto commands = app.get_subcommands();
    const std::string command = commands.empty() ? "" : commands.front()->get_name();
    std::ostringstream out, none;
    if (app.exit(error, out, none) == 0)
        return {command, json, false, [text = out.str()] { return told(text); }};
    return {command, json, false, [sentence = std::string(error.what())]() -> Report {
                throw Stop(Exit::refused, sentence, Advice{"help", "Run with --help for more information."});
            }};
}

} // namespace

Invocation read_command_line(int argc, char** argv) {
    CLI::App app(ABOUT, "zvrenew");
    Invocation chosen;
    app.set_version_flag("--version", ZV_VERSION);
    app.require_subcommand(1);
    app.footer(std::string(STEPS) + EXITS);
    app.get_formatter()->column_width(34);
    add_reading_commands(app, chosen);
    add_request(app, chosen);
    add_install(app, chosen);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return as_answer(app, error, wants_json(argc, argv));
    }
    return chosen;
}

} // namespace cli
