#include "simcard/authority/files.h"
#include "simcard/tool/commands.h"
#include "simcard/tool/personalise.h"
#include "simcard/tool/reader_configuration.h"

#include <iostream>

namespace simcard {

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

} // namespace simcard
