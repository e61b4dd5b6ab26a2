#include "cli/command_line.h"

#include "cli/commands.h"
#include "cli/completion.h"
#include "words/language.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <sstream>

namespace cli {
namespace {

constexpr const char* ABOUT = N_("Renews the certificates on a smart card.");

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

constexpr const char* STEPS = N_(R"(A renewal:
  zvrenew status                                 what is due, without the PIN
  zvrenew list                                   what is on the card, and what is due
  zvrenew request signature --out request.b64    new keys on the card, a request for them
  zvrenew install certificate.pem --request request.b64
                                                 the authority's certificate, beside its keys

  zvrenew doctor                                 what is wrong, when something does not work

The PIN is asked for at the terminal or by --pinentry, or read from --pin-file or --pin-fd; it is never an argument.
)");

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

std::string joined(const std::vector<const char*>& texts) {
    std::string all;
    for (const char* text : texts)
        all += words::tr(text);
    return all;
}

// The parser's own words, as far as it lets them be told. Each command takes them over.
void translate(CLI::App& app) {
    app.set_help_flag("-h,--help", words::tr("Print this help message and exit"));
    app.get_help_ptr()->group(words::tr("Options"));
    app.option_defaults()->group(words::tr("Options"));
    app.group(words::tr("Subcommands"));
    for (const char* label :
         {N_("Usage"), N_("OPTIONS"), N_("Positionals"), N_("REQUIRED"), N_("SUBCOMMAND"), N_("SUBCOMMANDS")})
        app.get_formatter()->label(label, words::tr(label));
}

// Shows "--wait [=SECONDS]", a value that may be left out, in place of "--wait{SECONDS}".
class Help : public CLI::Formatter {
  public:
    [[nodiscard]] std::string make_option_name(const CLI::Option* option, bool positional) const override {
        std::string name = CLI::Formatter::make_option_name(option, positional);
        const auto value = name.find('{');
        if (value == std::string::npos) return name;
        return name.substr(0, value) + " [=" + name.substr(value + 1, name.size() - value - 2) + "]";
    }
};

// A command with its options, which live as long as the parser.
template <class Options>
CLI::App& add_command(CLI::App& app, Invocation& chosen, const char* name, const char* text,
                      Report (*run)(const Options&), const std::vector<const char*>& footer = {EXITS}) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(name, words::tr(text));
    command->footer(joined(footer));
    command->get_help_ptr()->group(words::tr("Options"));
    OptionList list(*command);
    options->declare(list);
    // A command's own commands come first.
    command->callback([&chosen, command, options, name = full_name(*command), run] {
        if (!command->get_subcommands().empty()) return;
        chosen = {name, options->json, true, [options, run] { return run(*options); }};
    });
    return *command;
}

void add_commands(CLI::App& app, Invocation& chosen) {
    add_command(app, chosen, "readers",
                "Shows the readers, their cards and how it stands with the PIN (asks for none)", run_readers);
    add_command(app, chosen, "doctor",
                "Looks at all that a renewal needs and says what is wrong and what to do (asks for no PIN)",
                run_doctor, {DOCTOR_EXITS});
    add_command(app, chosen, "status",
                "Tells by the exit code which certificates end soon or have ended (asks for no PIN)",
                run_status, {STATUS_EXITS});
    add_command(app, chosen, "list", "Shows what is on the card, and what is due", run_list);
    add_command(app, chosen, "remind",
                "Shows a desktop notification for what ends soon or has ended (needs no card)", run_remind);
    add_command(
        app, chosen, "renew",
        "Renews a certificate: request, authority, installation, proof; goes on where it was broken off",
        run_renew, {RENEW_EXITS});
    add_command(app, chosen, "free-id", "Shows the identifiers for new keys", run_free_id);
    add_command(app, chosen, "request",
                "Makes new keys on the card and a request for them; a services card's own stay", run_request);
    add_command(
        app, chosen, "rehearse",
        "Renews on a simulated twin of the card and shows how it went; the card is only read, without "
        "the PIN",
        run_rehearse, {REHEARSE_EXITS});
    add_command(app, chosen, "install", "Stores the certificate that the authority issued, beside its keys",
                run_install, {ABOUT_REMOVAL, EXITS});
    CLI::App& pending =
        add_command(app, chosen, "pending", "Shows what waits for a certificate", run_pending);
    add_command(pending, chosen, "discard",
                "Removes a pair that waits: no certificate can be installed for it then", run_discard);
    add_command(app, chosen, "remove", "Removes a certificate that is no longer needed, with its keys",
                run_remove);
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
    return {command, json, false, [text = std::string(error.what())]() -> Report {
                throw Error(Exit::refused, Sentence{"mistyped", {{"text", text}}},
                            Advice{"help", Sentence{"help", {}}});
            }};
}

// What the shells' completion asks, with the words behind it. People are not told of it.
bool is_completed(int argc, char** argv) {
    return argc > 1 && std::string_view(argv[1]) == "--complete";
}

Invocation as_completion(const CLI::App& app, const std::vector<std::string>& words) {
    Report report;
    report.payload = completions(app, words);
    return {"", false, false, [report] { return report; }};
}

} // namespace

Invocation read_command_line(int argc, char** argv) {
    CLI::App app(words::tr(ABOUT), "zvrenew");
    Invocation chosen;
    std::string language;
    app.formatter(std::make_shared<Help>());
    translate(app);
    app.set_version_flag("--version", ZV_VERSION, words::tr("Display program version information and exit"));
    OptionList(app).language("--lang", language);
    app.require_subcommand(1);
    app.footer(joined({STEPS, EXITS}));
    app.get_formatter()->column_width(34);
    add_commands(app, chosen);
    if (is_completed(argc, argv)) return as_completion(app, {argv + 2, argv + argc});
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return as_answer(app, error, wants_json(argc, argv));
    }
    return chosen;
}

} // namespace cli
