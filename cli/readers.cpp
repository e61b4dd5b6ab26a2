#include "cli/commands.h"
#include "cli/module_folder.h"
#include "cli/pin_gate.h"
#include "cli/place.h"

#include <fmt/format.h>

namespace cli {
namespace {

Json with_state(const Reader& reader, const std::string& module_dir) {
    Json entry = {{"reader", reader.name}, {"card", reader.card}};
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
        entry["pin"] = tries_text(state.flags);
    } catch (const Stop& stop) {
        entry["problem"] = stop.sentence;
    }
    return entry;
}

std::string in_words(const Json& entry) {
    const auto text = [&](const char* key) { return entry.value(key, std::string()); };
    std::string line = fmt::format("{}: ", text("reader"));
    if (!entry["card"].get<bool>()) return line + (entry.contains("problem") ? text("problem") : "no card");
    if (entry.contains("serial"))
        line += fmt::format("card {} (\"{}\"), module {}", text("serial"), text("label"), text("module"));
    else
        line += text("problem");
    if (!text("pin").empty()) line += "; " + text("pin");
    return line;
}

} // namespace

Report run_readers(const CommonOptions& options) {
    Report report;
    report.json["readers"] = Json::array();
    for (const Reader& reader : list_readers()) {
        const Json entry = with_state(reader, options.module_dir);
        report.text += (report.text.empty() ? "" : "\n") + in_words(entry);
        report.json["readers"].push_back(entry);
    }
    if (report.text.empty()) report.text = "There is no card reader.";
    return report;
}

} // namespace cli
