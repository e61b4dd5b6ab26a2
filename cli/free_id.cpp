#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/pin_input.h"
#include "host/free_ids.h"
#include "words/words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace cli {
namespace {

std::string in_words(const FreeId& free) {
    const std::string& id = free.proposal.id;
    if (free.proposal.none_free) return words::of(Sentence{"free-none", {}});
    if (id.empty()) return words::of(Sentence{"free-unasked", {}});
    if (free.pending) return words::of({"free-of-pending", {{"id", id}}});
    return free.retired ? words::of({"free-of-retired", {{"id", id}}}) : id;
}

Json as_json(const FreeId& free) {
    Json entry = cli::as_json(free.proposal);
    if (!free.proposal.id.empty()) entry.update({{"pending", free.pending}, {"retired", free.retired}});
    return entry;
}

} // namespace

Report run_free_id(const CardOptions& options) {
    PinInput pin(options);
    const FreeIds found = find_free_ids(options.choice, pin);
    Report report;
    report.json = as_json(found.card);
    for (const FreeId& free : found.kinds) {
        report.json[kind_name(free.kind)] = as_json(free);
        report.text +=
            fmt::format("{}{:<16}{}", report.text.empty() ? "" : "\n", words::of(free.kind), in_words(free));
    }
    return report;
}

} // namespace cli
