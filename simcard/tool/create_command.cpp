#include "simcard/authority/files.h"
#include "simcard/tool/commands.h"
#include "simcard/tool/personalise.h"
#include "simcard/tool/reader_configuration.h"

#include <iostream>
#include <memory>

namespace simcard {
namespace {

struct CreateOptions {
    CardPlan plan;
    std::string profile = "signature";
    std::string keys;
    std::string configuration;
};

void create(CreateOptions& options, const std::filesystem::path& home) {
    options.plan.profile = &profile_named(options.profile);
    KeySource keys = options.keys.empty() ? KeySource() : KeySource::from_file(options.keys);
    const Card card = personalise_card(home, options.plan, keys);
    std::cout << "Made the card \"" << card.label << "\" in the reader \"" << card.reader << "\": profile "
              << card.profile << ", serial number " << card.serial << ".\n";
    const std::string text = reader_configuration(home);
    if (options.configuration.empty()) {
        std::cout << "These lines in zvcrypt.conf bring in the cards of " << home.string() << ":\n\n" << text;
    } else {
        write_file(options.configuration, text, Access::everyone_reads);
        std::cout << "The configuration that brings it in is in " << options.configuration << ".\n";
    }
}

void add_holder_options(CLI::App& command, Holder& holder) {
    command.add_option("--given-name", holder.given_name, "The holder's given name")->capture_default_str();
    command.add_option("--surname", holder.surname, "The holder's surname")->capture_default_str();
    command.add_option("--codice-fiscale", holder.codice_fiscale, "The holder's tax code")
        ->capture_default_str();
    command.add_option("--organisation", holder.organisation, "O of the subject")->capture_default_str();
}

} // namespace

void add_create_command(CLI::App& program, const Home& home) {
    CLI::App& command = *program.add_subcommand("create", "Makes a card and puts it into a reader");
    const auto options = std::make_shared<CreateOptions>();
    CardPlan& plan = options->plan;
    plan.name = "card";
    command.add_option("--name", plan.name, "Name of the card's folder")->capture_default_str();
    command
        .add_option("--profile", options->profile,
                    "signature, cns, or cns-signature (cns with a signature pair)")
        ->capture_default_str();
    command.add_option("--reader", plan.reader,
                       "Reader that holds it (default: the first free \"Simulated Reader\")");
    command.add_option("--serial", plan.serial, "Serial number (default: a random one)");
    command.add_option("--pin", plan.pin.text(), "The user's PIN")->capture_default_str();
    command.add_option("--days", plan.signature_days, "Days until the signature certificate ends")
        ->capture_default_str();
    command
        .add_option("--auth-days", plan.authentication_days, "Days until the authentication certificate ends")
        ->capture_default_str();
    command.add_option("--cns-days", plan.cns_days, "Days until a services card's own certificate ends")
        ->capture_default_str();
    add_holder_options(command, plan.holder);
    command.add_option("--keys", options->keys, "PEM file with ready-made RSA keys (default: new ones)");
    command.add_option("--config", options->configuration,
                       "Write the zvcrypt.conf of all cards to this file");
    command.callback([options, &home] { create(*options, home.path()); });
}

} // namespace simcard
