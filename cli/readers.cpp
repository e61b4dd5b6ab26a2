#include "host/readers.h"

#include "cli/card_json.h"
#include "cli/commands.h"
#include "words/language.h"
#include "words/words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace cli {
namespace {

Json as_json(const ReaderFacts& shown) {
    const Reader& reader = shown.reader;
    Json entry = {{"reader", reader.name}, {"card", reader.card}, {"state", reader.state}};
    if (!shown.problem.empty()) entry["problem"] = words::of(shown.problem);
    if (reader.module.empty()) return entry;
    entry["module"] = reader.module;
    entry["services_card"] = reader.services;
    if (!shown.module_path.empty()) entry["module_path"] = shown.module_path;
    if (!shown.state) return entry;
    entry["slot"] = shown.state->slot;
    entry.update(cli::as_json(*shown.state));
    return entry;
}

std::string what_is_in(const ReaderFacts& shown) {
    if (!shown.reader.card) return shown.problem.empty() ? words::tr("no card") : words::of(shown.problem);
    if (!shown.state) return words::of(shown.problem);
    const std::string tries = words::of(tries_told(shown.state->pin.value_or(PinState::no_warning)));
    return words::of(Sentence{"card-in-reader",
                              {{"serial", shown.state->serial},
                               {"label", shown.state->label},
                               {"module", shown.reader.module},
                               {"tries", tries.empty() ? "" : "; " + tries}}});
}

std::string in_words(const std::vector<ReaderFacts>& readers) {
    std::string lines;
    for (const ReaderFacts& shown : readers)
        lines += fmt::format("{}{}: {}", lines.empty() ? "" : "\n", shown.reader.name, what_is_in(shown));
    return lines.empty() ? words::of(Sentence{"no-reader", {}}) : lines;
}

} // namespace

Report run_readers(const CommonOptions& options) {
    const Readers found = look_into_readers(options.choice.module_dir);
    Report report;
    report.text = in_words(found.readers);
    report.json["readers"] = Json::array();
    for (const ReaderFacts& shown : found.readers)
        report.json["readers"].push_back(as_json(shown));
    report.advice = found.advice;
    return report;
}

} // namespace cli
