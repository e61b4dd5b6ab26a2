#include "cli/advice.h"
#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/module_folder.h"
#include "cli/pin_gate.h"
#include "cli/place.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace cli {
namespace {

// A reader, and what the card in it says of itself.
struct ShownReader {
    Reader reader;
    std::string problem;     // why nothing is known of the card, or not all
    std::string module_path; // empty: there is no such module
    std::optional<CardState> state;
};

ShownReader look_into(const Reader& reader, const std::string& module_dir) {
    ShownReader shown{reader, reader.problem, {}, {}};
    if (reader.module.empty()) return shown;
    try {
        const auto folder = folder_of_module(reader.module, module_dir);
        shown.module_path = (folder / reader.module).string();
        shown.state = card_state({reader.name, reader.module, folder, shown.module_path});
    } catch (const Stop& stop) {
        shown.problem = stop.sentence;
    }
    return shown;
}

Json as_json(const ShownReader& shown) {
    const Reader& reader = shown.reader;
    Json entry = {{"reader", reader.name}, {"card", reader.card}, {"state", reader.state}};
    if (!shown.problem.empty()) entry["problem"] = shown.problem;
    if (reader.module.empty()) return entry;
    entry["module"] = reader.module;
    entry["services_card"] = reader.services;
    if (!shown.module_path.empty()) entry["module_path"] = shown.module_path;
    if (!shown.state) return entry;
    entry["slot"] = shown.state->slot;
    entry.update(as_json(*shown.state));
    return entry;
}

std::string what_is_in(const ShownReader& shown) {
    if (!shown.reader.card) return shown.problem.empty() ? "no card" : shown.problem;
    if (!shown.state) return shown.problem;
    const std::string tries = tries_text(shown.state->pin.value_or(PinState::no_warning));
    return fmt::format("card {} (\"{}\"), module {}{}{}", shown.state->serial, shown.state->label,
                       shown.reader.module, tries.empty() ? "" : "; ", tries);
}

std::string in_words(const std::vector<ShownReader>& readers) {
    std::string lines;
    for (const ShownReader& shown : readers)
        lines += fmt::format("{}{}: {}", lines.empty() ? "" : "\n", shown.reader.name, what_is_in(shown));
    return lines.empty() ? "There is no card reader." : lines;
}

std::vector<Advice> advice_on(const std::vector<ShownReader>& readers) {
    if (readers.empty()) return {{"plug-reader", "Plug the reader in and put the card in it."}};
    if (std::any_of(readers.begin(), readers.end(),
                    [](const ShownReader& one) { return one.reader.state == "unknown card"; }))
        return {enter_card()};
    return {};
}

} // namespace

Report run_readers(const CommonOptions& options) {
    std::vector<ShownReader> readers;
    for (const Reader& reader : list_readers())
        readers.push_back(look_into(reader, options.module_dir));
    Report report;
    report.text = in_words(readers);
    report.json["readers"] = Json::array();
    for (const ShownReader& shown : readers)
        report.json["readers"].push_back(as_json(shown));
    report.advice = advice_on(readers);
    return report;
}

} // namespace cli
