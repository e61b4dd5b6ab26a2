#include "simcard/authority/files.h"
#include "simcard/tool/commands.h"
#include "simcard/tool/reader_configuration.h"
#include "simcard/tool/twin_description.h"

#include <iostream>

namespace simcard {

void twin(TwinOptions& options, const std::filesystem::path& home) {
    const CardDescription seen = read_description(read_file(options.description));
    CardPlan& plan = options.plan;
    plan.profile = &profile_named(seen.services_card ? "cns" : "signature");
    plan.serial = seen.serial;
    plan.label = seen.label;
    plan.memory_left = seen.memory_left;
    KeySource keys = options.keys.empty() ? KeySource() : KeySource::from_file(options.keys);
    const Card card = make_twin(home, plan, seen.objects, keys);
    if (!options.configuration.empty())
        write_file(options.configuration, reader_configuration(home, options.module), Access::everyone_reads);
    std::cout << "Made the card \"" << plan.name << "\" in the reader \"" << card.reader
              << "\", like the one with the serial number " << card.serial << ".\n";
}

} // namespace simcard
