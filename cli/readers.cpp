#include "cli/advice.h"
#include "cli/commands.h"
#include "cli/module_folder.h"
#include "cli/pin_gate.h"
#include "cli/place.h"

#include <fmt/format.h>

#include <algorithm>

namespace cli {
namespace {

Json with_state(const Reader& reader, const std::string& module_dir, std::string& tries) {
    Json entry = {{"reader", reader.name}, {"card", reader.card}, {"state", reader.state}};
    if (!reader.problem.empty()) entry["problem"] = reader.problem;
    if (reader.module.empty()) return entry;
    entry["module"] = reader.module;
    entry["services_card"] = reader.services;
    try {
        const auto folder = folder_of_module(reader.module, module_dir);
        entry["module_path"] = (folder / reader.module).string();
        const CardState state = card_state({reader.name, reader.module, folder, folder / reader.module});
        entry["slot"] = state.slot;
        entry["label"] = state.label;
        entry["serial"] = state.serial;
        entry["pin"] = pin_state(state.flags);
        tries = tries_text(state.flags);
    } catch (const Stop& stop) {
        entry["problem"] = stop.sentence;
    }
    return entry;
}

std::string line_for(const Json& entry, const std::string& tries) {
    const auto text = [&](const char* key) { return entry.value(key, std::string()); };
    std::string line = fmt::format("{}: ", text("reader"));
    if (!entry["card"].get<bool>()) return line + (entry.contains("problem") ? text("problem") : "no card");
    if (entry.contains("serial"))
        line += fmt::format("card {} (\"{}\"), module {}", text("serial"), text("label"), text("module"));
    else
        line += text("problem");
    if (!tries.empty()) line += "; " + tries;
    return line;
}

} // namespace

Report run_readers(const CommonOptions& options) {
    Report report;
    report.json["readers"] = Json::array();
    const std::vector<Reader> readers = list_readers();
    for (const Reader& reader : readers) {
        std::string tries;
        const Json entry = with_state(reader, options.module_dir, tries);
        report.text += (report.text.empty() ? "" : "\n") + line_for(entry, tries);
        report.json["readers"].push_back(entry);
    }
    if (report.text.empty()) {
        report.text = "There is no card reader.";
        report.advice.push_back({"plug-reader", "Plug the reader in and put the card in it."});
    }
    if (std::any_of(readers.begin(), readers.end(),
                    [](const Reader& one) { return one.state == "unknown card"; }))
        report.advice.push_back(enter_card());
    return report;
}

} // namespace cli
