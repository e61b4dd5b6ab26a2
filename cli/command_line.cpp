#include "cli/command_line.h"

#include "cli/command_tree.h"
#include "cli/completion.h"
#include "cli/mistake.h"
#include "cli/option_list.h"
#include "host/error.h"
#include "words/language.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <sstream>

namespace cli {
namespace {

constexpr const char* ABOUT = N_("Renews the certificates on a smart card.");

constexpr const char* STEPS = N_(R"(A renewal:
  zvrenew status                                 what is due, without the PIN
  zvrenew list                                   what is on the card, and what is due
  zvrenew request signature --out request.b64    new keys on the card, a request for them
  zvrenew install certificate.pem --request request.b64
                                                 the authority's certificate, beside its keys
Or all of it in one command:
  zvrenew renew signature --from certificate.pem

  zvrenew doctor                                 what is wrong, when something does not work

The PIN is asked for at the terminal or by --pinentry, or read from --pin-file or --pin-fd; it is never an argument.
)");

// Shows "--wait [=SECONDS]", a value that may be left out, in place of "--wait{SECONDS}", and what is given without a
// name in the language.
class Help : public CLI::Formatter {
  public:
    [[nodiscard]] std::string make_option_name(const CLI::Option* option, bool positional) const override {
        const std::string name = CLI::Formatter::make_option_name(option, positional);
        const auto value = name.find('{');
        if (value == std::string::npos) return positional ? words::tr(name.c_str()) : name;
        const std::string shown = name.substr(value + 1, name.size() - value - 2);
        return name.substr(0, value) + " [=" + words::tr(shown.c_str()) + "]";
    }
};

// The parser's own words, as far as it lets them be told. Each command takes them over.
void describe(CLI::App& app) {
    app.formatter(std::make_shared<Help>());
    app.get_formatter()->column_width(34);
    app.set_help_flag("-h,--help", words::tr("Print this help message and exit"));
    app.get_help_ptr()->group(words::tr("Options"));
    app.option_defaults()->group(words::tr("Options"));
    app.group(words::tr("Subcommands"));
    app.footer(joined({STEPS, exit_codes_text()}));
    for (const char* label :
         {N_("Usage"), N_("OPTIONS"), N_("Positionals"), N_("REQUIRED"), N_("SUBCOMMAND"), N_("SUBCOMMANDS")})
        app.get_formatter()->label(label, words::tr(label));
}

using Words = std::vector<std::string>;

// The program's parser, with the commands that are wanted.
class Parser {
  public:
    explicit Parser(const Wanted& wanted) {
        describe(app_);
        app_.set_version_flag("--version", ZV_VERSION,
                              words::tr("Display program version information and exit"));
        OptionList(app_).language("--lang", language_);
        app_.require_subcommand(1);
        add_commands(app_, chosen_, wanted);
    }

    [[nodiscard]] const CLI::App& app() const { return app_; }
    Invocation read(int argc, char** argv) {
        app_.parse(argc, argv);
        return chosen_;
    }

  private:
    CLI::App app_{words::tr(ABOUT), "zvrenew"};
    Invocation chosen_;
    std::string language_;
};

// A mistake ends the reading before every option is known.
bool wants_json(const Words& words) {
    return std::find(words.begin(), words.end(), "--json") != words.end();
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
    return {command, json, false, [mistake = mistake_in(app, error)]() -> Report {
                throw Error(Exit::refused, mistake, Advice{"help", Sentence{"help", {}}});
            }};
}

// What the shells' completion asks, with the words behind it. People are not told of it.
bool is_completed(const Words& words) {
    return !words.empty() && words.front() == "--complete";
}

Invocation as_completion(const CLI::App& app, const Words& words) {
    Report report;
    report.payload = completions(app, words);
    return {"", false, false, [report] { return report; }};
}

bool every_command(const std::string&) {
    return true;
}

// By a parser that knows the commands that are named among the words alone: all of them take more than half of the
// program's own start. None: help and mistakes, which tell of the others too.
std::optional<Invocation> read_named(int argc, char** argv, const Words& words) {
    Parser parser(
        [&](const std::string& name) { return std::find(words.begin(), words.end(), name) != words.end(); });
    try {
        return parser.read(argc, argv);
    } catch (const CLI::CallForVersion& version) {
        return as_answer(parser.app(), version, wants_json(words));
    } catch (const CLI::ParseError&) {
        return std::nullopt;
    }
}

} // namespace

Invocation read_command_line(int argc, char** argv) {
    const Words words(argv + std::min(argc, 1), argv + argc);
    if (is_completed(words))
        return as_completion(Parser(every_command).app(), {words.begin() + 1, words.end()});
    // Without a parser, which takes a twentieth of the program's start.
    if (words == Words{"--version"}) return {"", false, false, [] { return told(ZV_VERSION); }};
    if (const auto invocation = read_named(argc, argv, words)) return *invocation;
    Parser parser(every_command);
    try {
        return parser.read(argc, argv);
    } catch (const CLI::ParseError& error) {
        return as_answer(parser.app(), error, wants_json(words));
    }
}

} // namespace cli
