#include "host/readers.h"

#include "host/advice.h"
#include "host/module_folder.h"
#include "host/pin_gate.h"
#include "host/place.h"

#include <algorithm>

namespace zvhost {
namespace {

ReaderFacts look_into(const Reader& reader, const std::string& module_dir) {
    ReaderFacts facts{reader, reader.problem, {}, {}};
    if (reader.module.empty()) return facts;
    try {
        const auto folder = folder_of_module(reader.module, module_dir);
        facts.module_path = (folder / reader.module).string();
        facts.state =
            card_state(Module(facts.module_path), {reader.name, reader.module, folder, facts.module_path});
    } catch (const Error& error) {
        facts.problem = error.sentence;
    }
    return facts;
}

std::vector<Advice> advice_on(const std::vector<ReaderFacts>& readers) {
    if (readers.empty()) return {{"plug-reader", Sentence{"plug-reader", {}}}};
    if (std::any_of(readers.begin(), readers.end(),
                    [](const ReaderFacts& one) { return one.reader.state == "unknown card"; }))
        return {enter_card()};
    return {};
}

} // namespace

Readers look_into_readers(const std::string& module_dir) {
    Readers found;
    for (const Reader& reader : list_readers())
        found.readers.push_back(look_into(reader, module_dir));
    found.advice = advice_on(found.readers);
    return found;
}

std::string reader_of_interest(const std::vector<ReaderFacts>& readers, const std::string& chosen,
                               const std::string& card) {
    const auto first = [&](const auto& is_it) {
        const auto found = std::find_if(readers.begin(), readers.end(), is_it);
        return found == readers.end() ? std::string() : found->reader.name;
    };
    for (const std::string& name :
         {first([&](const ReaderFacts& one) { return one.reader.name == chosen; }),
          first([&](const ReaderFacts& one) { return one.state && one.state->serial == card; }),
          first([](const ReaderFacts& one) { return !one.reader.module.empty(); }),
          first([](const ReaderFacts& one) { return one.reader.card; })})
        if (!name.empty()) return name;
    return readers.empty() ? std::string() : readers.front().reader.name;
}

} // namespace zvhost
