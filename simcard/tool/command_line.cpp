#include "simcard/tool/command_line.h"

#include "simcard/tool/commands.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <memory>

namespace fs = std::filesystem;

namespace simcard {
namespace {

constexpr const char* DESCRIPTION =
    "Makes simulated smart cards for demonstrations and tests, and plays the authority that certifies them.\n"
    "Exit codes: 0 done, 1 failed, 2 refused or mistyped.";

void add_holder_options(CLI::App& command, Holder& holder) {
    command.add_option("--given-name", holder.given_name, "The holder's given name")->capture_default_str();
    command.add_option("--surname", holder.surname, "The holder's surname")->capture_default_str();
    command.add_option("--codice-fiscale", holder.tax_code, "The holder's tax code")->capture_default_str();
    command.add_option("--organisation", holder.organisation, "O of the subject")->capture_default_str();
}

// Name, reader and PIN.
void add_card_options(CLI::App& command, CardPlan& plan) {
    command.add_option("--name", plan.name, "Name of the card's folder")->capture_default_str();
    command.add_option("--reader", plan.reader,
                       "Reader that holds it (default: the first free \"Simulated Reader\")");
    command.add_option("--pin", plan.pin.text(), "The user's PIN")->capture_default_str();
}

template <class Options> void add_making_options(CLI::App& command, Options& options) {
    command.add_option("--keys", options.keys, "PEM file with ready-made RSA keys (default: new ones)");
    command.add_option("--config", options.configuration, "Write the zvcrypt.conf of all cards to this file");
}

void add_create_command(CLI::App& program, const Home& home) {
    CLI::App& command = *program.add_subcommand("create", "Makes a card and puts it into a reader");
    const auto options = std::make_shared<CreateOptions>();
    CardPlan& plan = options->plan;
    plan.name = "card";
    add_card_options(command, plan);
    command
        .add_option("--profile", options->profile,
                    "signature, signature-pin (its keys want the PIN before each signature), cns, or "
                    "cns-signature (cns with a signature pair)")
        ->capture_default_str();
    command.add_option("--serial", plan.serial, "Serial number (default: a random one)");
    command.add_option("--days", plan.signature_days, "Days until the signature certificate ends")
        ->capture_default_str();
    command
        .add_option("--auth-days", plan.authentication_days, "Days until the authentication certificate ends")
        ->capture_default_str();
    command.add_option("--cns-days", plan.cns_days, "Days until a services card's own certificate ends")
        ->capture_default_str();
    add_holder_options(command, plan.holder);
    command.add_option("--memory", plan.memory_left, "Bytes that still fit (default: no limit)");
    add_making_options(command, *options);
    command.callback([options, &home] { create(*options, home.path()); });
}

void add_twin_command(CLI::App& program, const Home& home) {
    CLI::App& command = *program.add_subcommand(
        "twin", "Makes a card like another one, as far as that shows without its PIN");
    const auto options = std::make_shared<TwinOptions>();
    command.add_option("description", options->description, "JSON file that says what the other one shows")
        ->required();
    options->plan.name = "twin";
    add_card_options(command, options->plan);
    add_making_options(command, *options);
    command.add_option("--module", options->module,
                       "Name of the module in that file, where it is a copy of the simulated card's");
    command.callback([options, &home] { twin(*options, home.path()); });
}

void add_list_command(CLI::App& program, const Home& home) {
    CLI::App& command = *program.add_subcommand("list", "Shows the cards, or one card and its objects");
    const auto options = std::make_shared<ListOptions>();
    command.add_option("card", options->card, "Name of the card to look into");
    command.add_option("--pin", options->pin.text(),
                       "The card's PIN, to see private objects too; costs no try");
    command.add_flag("--json", options->json, "As JSON");
    command.callback([options, &home] { list(*options, home); });
}

void add_card_command(CLI::App& program, const Home& home, const char* name, const char* what,
                      void (*act)(const fs::path&)) {
    CLI::App& command = *program.add_subcommand(name, what);
    const auto card = std::make_shared<std::string>();
    command.add_option("card", *card, "Name of the card")->required();
    command.callback([card, act, &home] { act(home.card(*card)); });
}

void add_issue_command(CLI::App& program, const Home& home) {
    CLI::App& command =
        *program.add_subcommand("issue", "Verifies a signed request and issues the certificate");
    const auto options = std::make_shared<IssueOptions>();
    command.add_option("request", options->request, "Request file: base64, PEM or binary PKCS#7")->required();
    command.add_option("--kind", options->kind,
                       "signature, authentication or cns (default: the kind of the certificate that signed)");
    command.add_option("--days", options->terms.days, "Days that the certificate holds")
        ->capture_default_str();
    command.add_option("--starts-in", options->terms.starts_in,
                       "Days until it begins; less than 0 for the past");
    command.add_option("--other-person", options->terms.other_person,
                       "Issue it to the person with this codice fiscale, not to the one who asks");
    command.add_flag("--bare", options->terms.bare_requests,
                     "Take a PKCS#10 request that nobody signed; needs --kind");
    command.add_option("--out", options->out, "File to write (default: standard output)");
    command.add_flag("--der", options->der, "Binary instead of PEM");
    command.add_flag("--p7b", options->bundle, "A PKCS#7 bundle with the authority's certificate");
    command.callback([options, &home] { issue(*options, home.path()); });
}

void add_config_command(CLI::App& program, const Home& home) {
    CLI::App& command = *program.add_subcommand("config", "Writes the zvcrypt.conf that brings in the cards");
    const auto file = std::make_shared<std::string>();
    command.add_option("--out", *file, "File to write (default: standard output)");
    command.callback([file, &home] { write_configuration(*file, home.path()); });
}

} // namespace

zv::ExitCode run_command_line(int argc, char** argv) {
    CLI::App program(DESCRIPTION, "zvsimcard-tool");
    Home home;
    program.add_option("--home", home.given,
                       "Folder of cards (default: $ZVSIMCARD_HOME, else the user's own)");
    program.require_subcommand(1);
    program.fallthrough();
    add_create_command(program, home);
    add_twin_command(program, home);
    add_list_command(program, home);
    add_card_command(program, home, "reset", "Puts a card's objects and PIN back as they were made", reset);
    add_card_command(program, home, "remove", "Deletes a card", remove);
    add_card_command(program, home, "eject", "Takes a card out of its reader", eject);
    add_card_command(program, home, "insert", "Puts a card back into its reader", insert);
    add_issue_command(program, home);
    add_config_command(program, home);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? zv::ExitCode::done : zv::ExitCode::refused;
    }
    return zv::ExitCode::done;
}

} // namespace simcard
